#include "Import/Schema/Full/WsdlReader.h"

#include <algorithm>
#include <iterator>
#include <span>

// The reader follows the elements around the schemas itself, and passes everything inside of a schema on to a
// SchemaReader. The root shows whether the file is a WSDL; any other file is passed on as a whole. Parts of messages
// are collected while the file is read; finish() makes roots of them, because all parts of a message are needed for
// that.

namespace {

// Prefixes, counted once for each schema in their scope: 4,000 prefixes around 100,000 empty schemas took gigabytes.
constexpr std::size_t kMaxReplayed = 1'000'000;

bool isStatement(const XmlScope& scope)
{
    return scope.uri && isWsdlNamespace(scope.uri);
}

// Returns whether WSDL 1.1 or 2.0 has a statement for this place. Below the statements of a description, only those of
// messages and interfaces are checked. A draft of 2.0 has features and properties.
bool isKnownThere(std::string_view local, std::size_t depth, std::string_view section)
{
    constexpr std::string_view sections[] = {"types",   "portType", "interface", "binding",
                                             "service", "message",  "import",    "include"};
    constexpr std::string_view ofInterfaces[] = {"operation", "fault",  "feature", "property",
                                                 "input",     "output", "infault", "outfault"};
    if (depth == 1 || depth > 4 || local == "documentation")
        return true;
    if (depth == 2)
        return std::ranges::find(sections, local) != std::end(sections);
    if (section == "portType" || section == "interface")
        return std::ranges::find(ofInterfaces, local) != std::end(ofInterfaces);
    return depth > 3 || section != "message";
}

} // namespace

bool isWsdlNamespace(std::string_view uri)
{
    return uri == "http://schemas.xmlsoap.org/wsdl/" || uri == "http://www.w3.org/ns/wsdl" ||
           uri == "http://www.w3.org/2006/01/wsdl";
}

WsdlReader::WsdlReader(SchemaTree& tree, SourceReport& report) :
    tree(tree), report(report), document(static_cast<std::uint32_t>(tree.documents.size() - 1))
{}

void WsdlReader::startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope)
{
    if (depth > 0) {
        ++depth;
        return schemas.back().startElement(name, attributes, scope);
    }
    const std::string_view local = name.local;
    if (open.empty())
        beginFile(local, isStatement(scope));
    if (!isWsdl || (local == "schema" && schemaEditionOf(scope.uri) != SchemaEdition::none))
        return beginSchema(name, attributes, scope);
    open.push_back(declared.size());
    for (std::size_t i = 0; i < scope.count; ++i)
        declared.push_back(scope[i]);
    if (open.size() == 2)
        section = isStatement(scope) ? local : "";
    const auto [line, column] = scope.place();
    const SourcePlace place{tree.documents[document].file, line, column};
    if (isStatement(scope))
        readStatement(local, attributes, place);
    else if (section == "types" && open.size() == 3)
        readOther(local, attributes, schemaEditionOf(scope.uri) != SchemaEdition::none, place);
    else if (section == "binding" && (local == "header" || local == "headerfault")) // of SOAP
        addUse("", attributes.valueOf("message"), place);
}

// Begins the file, whose root shows whether it is a WSDL. Of a WSDL, only what its messages reach is imported and
// reported, so the report holds constructs back from here on.
void WsdlReader::beginFile(std::string_view local, bool isOfWsdl)
{
    isWsdl = isOfWsdl && (local == "definitions" || local == "description");
    if (isWsdl)
        report.hold();
}

// Reads an element beside the schemas: an import of a schema, as in WSDL 2.0, or another schema language.
void WsdlReader::readOther(std::string_view local, XmlAttributes attributes, bool isOfSchemas, SourcePlace place)
{
    if (isOfSchemas && local == "import")
        addImport(attributes.valueOf("schemaLocation"), attributes.valueOf("namespace"), place);
    else
        report.add(SourceReport::declarationSkipped, place, local);
}

// Adds a document in the file of the WSDL.
SchemaDocument& WsdlReader::addDocument()
{
    SchemaDocument& made = tree.documents.emplace_back();
    made.folder = tree.documents[document].folder;
    made.file = tree.documents[document].file;
    return made;
}

// Starts a schema, which inherits the prefixes declared around it.
void WsdlReader::beginSchema(XmlName name, XmlAttributes attributes, const XmlScope& scope)
{
    // Each schema reads all prefixes around it, so their product is bounded.
    replayed += declared.size();
    if (replayed > kMaxReplayed)
        throw XmlRefusal{"more than " + std::to_string(kMaxReplayed) + " prefixes around the schemas of a WSDL"};
    if (isWsdl)
        addDocument();
    SchemaReader& schema = schemas.emplace_back(tree, report);
    for (const XmlNamespace& outer : declared)
        schema.bind(outer);
    depth = 1;
    schema.startElement(name, attributes, scope);
}

void WsdlReader::endElement()
{
    if (depth > 0) {
        schemas.back().endElement();
        if (--depth == 0)
            tree.documents.back().end = static_cast<Index>(tree.size());
        return;
    }
    declared.resize(open.back());
    open.pop_back();
}

void WsdlReader::text(std::string_view text)
{
    if (depth > 0)
        schemas.back().text(text);
}

void WsdlReader::entityLeftOut(std::string_view name, XmlPlace place)
{
    if (depth > 0)
        schemas.back().entityLeftOut(name, place);
}

// Reads a statement of WSDL by its level: 1 is the root, 2 its children. A part is only read in a message, and
// statements inside of a message that was left out are not checked.
void WsdlReader::readStatement(std::string_view local, XmlAttributes attributes, SourcePlace place)
{
    if (open.size() == 1)
        target = tree.names.intern(attributes.valueOf("targetNamespace"));
    if (open.size() == 2)
        message = 0;
    report.enter(message == 0 ? 0 : kMessages + messages[message]);
    if (open.size() == 2 && (local == "import" || local == "include"))
        addImport(attributes.valueOf("location"), attributes.valueOf("namespace"), place);
    else if (open.size() == 2 && local == "message")
        beginMessage(attributes.valueOf("name"), place);
    else if (open.size() == 3 && local == "part" && message != 0)
        readPart(attributes, place);
    else if (local == "input" || local == "output" || local == "fault")
        readContent(local, attributes, place);
    else if (!isKnownThere(local, open.size(), message == 0 && section == "message" ? "" : section))
        report.add(SourceReport::unknownStatement, place, local);
    else if (message != 0 && local == "documentation")
        report.count(SourceReport::documentationCut);
    readNames(local, attributes, place);
    report.enter(0);
}

// Reads the names of interfaces and their faults, and references to them (WSDL 2.0 Part 1, 2.2 and 2.3).
void WsdlReader::readNames(std::string_view local, XmlAttributes attributes, SourcePlace place)
{
    const std::string_view name = attributes.valueOf("name");
    if (section == "interface" && open.size() == 2) {
        names.insert(tree.names.intern("interface " + CString(name)));
        forEachName(attributes.valueOf("extends"), [&](std::string_view base) { addUse("interface ", base, place); });
    } else if (section == "interface" && open.size() == 3 && local == "fault") {
        names.insert(tree.names.intern("fault " + CString(name)));
    } else if (local == "fault" || local == "infault" || local == "outfault") {
        addUse("fault ", attributes.valueOf("ref"), place);
    }
}

// Adds a reference, unless its name is empty. `kind` is the first word of the text under which a name is kept, so that
// a message and a fault may have the same name.
void WsdlReader::addUse(const CString& kind, std::string_view name, SourcePlace place)
{
    if (!name.empty())
        uses.push_back({tree.names.intern(kind + CString(name.substr(name.find(':') + 1))), place});
}

void WsdlReader::addImport(std::string_view location, std::string_view space, SourcePlace place)
{
    if (!location.empty())
        imports.push_back({CString(location), CString(space), place});
}

// Starts a message. One without a valid name is left out. If two have the same name, the first one takes precedence.
void WsdlReader::beginMessage(std::string_view name, SourcePlace place)
{
    const NameTable::Id id = tree.names.intern(name);
    report.enter(kMessages + id);
    if (name.empty())
        return report.add(SourceReport::nameMissing, place, "message");
    if (!isXmlName(name))
        return report.add(SourceReport::impossibleName, place, name);
    if (!names.insert(id).second)
        return report.add(SourceReport::declaredTwice, place, name);
    message = static_cast<std::uint32_t>(messages.size());
    messages.push_back(id);
}

// Reads a part of a message (WSDL 1.1, 2.3): it names an element, or a type for which the part's name is needed.
void WsdlReader::readPart(XmlAttributes attributes, SourcePlace place)
{
    const std::string_view name = attributes.valueOf("name");
    const SchemaName element = resolve(attributes.valueOf("element"));
    const SchemaName type = resolve(attributes.valueOf("type"));
    if (element.local == 0 && type.local == 0)
        report.add(SourceReport::unresolvedReference, place, name);
    else if (type.local != 0 && !isXmlName(name))
        report.add(SourceReport::nameMissing, place, "part");
    else
        parts.push_back({message, tree.names.intern(name), element, type, place});
    if (element.local != 0 && type.local != 0)
        report.add(SourceReport::unknownAttribute, place, "element beside type");
}

// Reads the content of an operation: in WSDL 1.1 the name of a message, in 2.0 an element, or one of the words #none,
// #any and #other (WSDL 2.0 Part 1, 2.5). The prefix of a message is not resolved, see SchemaSet::findMessages().
void WsdlReader::readContent(std::string_view local, XmlAttributes attributes, SourcePlace place)
{
    const std::string_view content = attributes.valueOf("element"), named = attributes.valueOf("message");
    report.enter(kMessages);
    addUse("", named, place);
    if (const SchemaName element = resolve(content); element.local != 0)
        parts.push_back({0, 0, element, {}, place, local == "fault"});
    else if (content == "#any")
        report.add(SourceReport::anyElement, place, local);
    else if (!content.empty() && content != "#none")
        report.add(SourceReport::declarationSkipped, place, CString(local) + " " + CString(content));
}

// Resolves a QName in the current scope. Returns an empty name for a missing one, for "#any" and the like, and for an
// undeclared prefix.
SchemaName WsdlReader::resolve(std::string_view qualified) const
{
    const std::size_t colon = qualified.find(':');
    const std::string_view prefix = colon == qualified.npos ? "" : qualified.substr(0, colon);
    const std::string_view local = qualified.substr(colon == qualified.npos ? 0 : colon + 1);
    if (!isXmlName(local))
        return {};
    // Backwards, because the innermost declaration of a prefix applies.
    for (std::size_t i = declared.size(); i-- > 0;)
        if (declared[i].prefix == prefix)
            return {tree.names.intern(trimmed(declared[i].uri)), tree.names.intern(local)};
    return prefix.empty() ? SchemaName{0, tree.names.intern(local)} : SchemaName();
}

void WsdlReader::finish()
{
    for (SchemaReader& schema : schemas)
        schema.finish();
    if (!isWsdl)
        return;
    // The file of a WSDL is not a schema itself; its schemas are documents of their own.
    tree.documents[document].end = tree.documents[document].root = 0;
    makeMessages();
}

// Turns messages into root elements. A message whose parts are elements becomes these elements. If a part has a type, a
// new element is made that holds the parts as a sequence. It is in no symbol table, so the schemas may declare an
// element of the same name. The faults of an interface, which usually precede its operations, come last, because the
// first root names the folder.
void WsdlReader::makeMessages()
{
    SchemaDocument& made = addDocument();
    made.space = target;
    made.hasTarget = target != 0;
    std::stable_partition(parts.begin(), parts.end(), [](const Part& part) { return !part.isFault; });
    for (std::size_t first = 0, end; first < parts.size(); first = end) {
        const std::uint32_t number = parts[first].message;
        for (end = first + 1; end < parts.size() && number != 0 && parts[end].message == number;)
            ++end;
        const auto own = std::span(parts).subspan(first, end - first);
        if (std::ranges::none_of(own, [](const Part& part) { return part.type.local != 0; }))
            for (const Part& part : own)
                roots.push_back({part.element, part.place});
        else
            roots.push_back({{target, messages[number]}, own.front().place, makeMessage(own, messages[number])});
    }
}

// Makes an element with an anonymous type that is a sequence of the parts. Returns the element.
WsdlReader::Index WsdlReader::makeMessage(std::span<const Part> own, NameTable::Id name)
{
    const auto made = static_cast<std::uint32_t>(tree.documents.size() - 1);
    const SourcePlace place = own.front().place;
    const Index element = tree.add(SchemaTag::element, made, place, 0);
    tree.nodes[element].name = name;
    const Index type = tree.add(SchemaTag::complexType, made, place, element);
    const Index sequence = tree.add(SchemaTag::sequence, made, place, type);
    Index last = 0;
    for (const Part& part : own) {
        last = tree.add(SchemaTag::element, made, part.place, sequence, last);
        SchemaNode& node = tree.nodes[last];
        const bool isReference = part.type.local == 0;
        node.name = isReference ? 0 : part.name;
        node.reference = isReference ? part.element : part.type;
        node.flags = isReference ? SchemaNode::isReference : 0;
    }
    return element;
}
