#include "Import/Schema/Literal/SchemaMsg.h"

#include "Base/Progress.h"
#include "Files/FileFinder.h"
#include "Import/Schema/SchemaDocuments.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <set>
#include <system_error>

// The schema and the documents that it refers to are parsed once each, into outlines. The table is filled from these,
// and the model from the table: a record for each entry with children, and a field for each child. If the result
// differs from the meaning of a declaration, SchemaFieldCheck reports that when all fields are known.

SchemaMessage::SchemaMessage() :
    MsgBase(1), table(report, kinds, [this](const SourceFault& fault) { showFault(loadText(IDS_CYCLIC), fault); })
{}

int SchemaMessage::parse(const CString& source, const CString& basePath, const CString& fileName)
{
    SchemaTable::Outlines outlines;
    table.clear();
    kinds.clear();
    previousNames = table.queryNames();
    int result = 0;
    try {
        result = import(source, basePath, fileName, outlines);
    } catch (const SourceRefusal& refusal) {
        fail(refusal.text, refusal.fault);
    }
    table.clear();      // its texts are freed with the outlines
    report.release({}); // after a failure all that was found counts
    return result;
}

void SchemaMessage::onCancelled()
{
    table.clear();
    table.setNames(previousNames);
}

// Runs both passes; the file is parsed once for both. A schema with a target namespace is read alone.
int SchemaMessage::import(const CString& source, const CString& basePath, const CString& fileName,
                          SchemaTable::Outlines& outlines)
{
    XmlDocument document;
    if (!readFile(source, report.addFile(source), document, outlines))
        return fail(document.queryParseError(), document.queryFault());
    SchemaOutline& main = outlines.front();
    if (main.hasTargetNamespace()) {
        reportSkipped(main);
    } else if (!fileName.empty()) {
        report.hold(); // until it is known which types of the other documents are pulled
        readIncluded(fileName, outlines);
    }
    table.readIncluded(outlines, !fileName.empty());
    baseFolder = basePath.ends_with('\\') ? basePath : basePath + "\\";
    return doParse(main, source);
}

// Reads a document into a new outline at the end of `outlines`. Returns false, without an outline and without its
// simple types, on failure. The memory of the outline is estimated from the size of the file, because growing would
// copy the outline.
bool SchemaMessage::readFile(const CString& fileName, std::uint32_t file, XmlDocument& document,
                             SchemaTable::Outlines& outlines)
{
    const std::size_t most = outlines.empty() ? kAnySize : kMaxNamedFile;
    const std::size_t typesBefore = kinds.size();
    SchemaOutline& outline = outlines.emplace_back(report, file, kinds);
    std::error_code isUnknown; // the size of a pipe
    if (const std::uintmax_t size = std::filesystem::file_size(fileName, isUnknown); !isUnknown)
        outline.reserve(std::min<std::uintmax_t>(size, kMaxNamedFile)); // a sparse file can have any size
    if (document.streamFile(fileName, outline, most)) {
        outline.finish();
        return true;
    }
    kinds.resize(typesBefore);
    outlines.pop_back();
    return false;
}

// Reads the documents that the schema includes, imports and redefines, and those that they refer to in turn: local
// files, depth first in document order, each once, whatever its name. A missing or ill-formed one is left out. One that
// exists but can't be read ends the import by SourceRefusal.
void SchemaMessage::readIncluded(const CString& fileName, SchemaTable::Outlines& outlines)
{
    struct Holder // of locations
    {
        CString folder;
        CString shownName;
    };
    std::deque<Holder> holders;
    std::vector<std::pair<const SchemaOutline::Location*, const Holder*>> waiting; // a stack
    std::set<FileId> visited;
    FileFinder finder;
    const auto add = [&](const CString& name, const CString& shownName) {
        const Holder& holder = holders.emplace_back(Holder{folderOf(name), shownName});
        const std::vector<SchemaOutline::Location>& locations = outlines.back().locations();
        for (auto location = locations.rbegin(); location != locations.rend(); ++location)
            waiting.emplace_back(&*location, &holder);
    };
    if (const auto id = identify(fileName))
        visited.insert(*id);
    add(fileName, fileName);
    while (!waiting.empty()) {
        const auto [location, holder] = waiting.back();
        waiting.pop_back();
        const CString path = localPath(location->text);
        const auto file = finder.find(holder->folder, path);
        if (!file) {
            const bool isRemote = path.empty() && !location->text.empty();
            report.add(isRemote ? SourceReport::moduleRemote : SourceReport::moduleMissing, location->place,
                       location->text);
        } else if (visited.insert(file->id).second) {
            const CString shownName = shownFrom(holder->shownName, holder->folder, path, *file);
            const std::uint32_t number = report.addFile(shownName);
            XmlDocument document;
            if (readFile(file->name, number, document, outlines))
                add(file->name, shownName);
            else
                reportUnread({number, location->place, location->text}, document, report);
        }
    }
}

// Reports the documents of a schema with a target namespace, which the literal reading skips.
void SchemaMessage::reportSkipped(const SchemaOutline& outline)
{
    for (const SchemaOutline::Location& location : outline.locations())
        report.add(SourceReport::declarationSkipped, location.place, location.text);
}

// Makes the model. Before that, all of the schema's outline is freed except its texts.
int SchemaMessage::doParse(SchemaOutline& outline, const CString& source)
{
    if (queryMainTypeName().empty())
        return fail(loadText(IDS_NO_ROOT), {source, "this document does not contain a root element"});
    beginWork(Work::arranging);
    table.readMain(outline);
    const NumberTable reached = table.findReached();
    report.release([&reached](SourceReport::Component component) { return reached.find(component) != nullptr; });
    noteMain(outline);
    outline.keepTextsOnly(); // the model takes its place
    const CString path = baseFolder + table.queryMainType() + "\\";
    knownTypes.clear();
    SchemaFieldCheck check(table, kinds, model, report);
    check.reserve(countFields());
    declareRecords(path, check);
    setKnownTypes();
    check.reportAll(path);
    return 1;
}

// Reports a main element that is abstract, or that gives no type.
void SchemaMessage::noteMain(const SchemaOutline& outline)
{
    const SchemaOutline::Index main = table.queryMainElement();
    const SchemaOutline::Index type = outline.typeOf(main);
    if (outline[main].isAbstract || (type != SchemaOutline::kNone && outline[type].isAbstract))
        report.add(SourceReport::mainTypeAbstract, outline.placeOf(main), outline[main].name());
    const SchemaElement* const record = table.find(Fingerprint(table.queryMainType()));
    if (!record || !record->queryChildren()) // without fields no type results
        report.add(SourceReport::declarationSkipped, outline.placeOf(main), outline[main].name());
}

// Returns the number of usages: one for each record and each of its fields.
std::size_t SchemaMessage::countFields() const
{
    std::size_t count = 0;
    for (const SchemaElement* entry : table.queryDeclared())
        count += entry->queryChildren() ? 1 + entry->queryChildren()->size() : 0;
    for (const SchemaElement* entry : table.queryPulled())
        count += entry->queryChildren() ? 1 + entry->queryChildren()->size() : 0;
    return count;
}

// Declares each entry with children as a record. The types and names of its fields are prefetched while the record
// before it is declared, so that the cache misses in the large tables overlap.
void SchemaMessage::declareRecords(const CString& path, SchemaFieldCheck& check)
{
    Record current, next;
    const auto pass = [&](const SchemaElement* entry) {
        if (!entry->queryChildren())
            return;
        readRecord(*entry, next);
        if (current.entry)
            declareRecord(current, path, check);
        std::swap(current, next);
    };
    std::ranges::for_each(table.queryDeclared(), pass);
    std::ranges::for_each(table.queryPulled(), pass);
    if (current.entry)
        declareRecord(current, path, check);
}

// Replaces `record` with that of an entry with children.
void SchemaMessage::readRecord(const SchemaElement& entry, Record& record)
{
    const bool mayBeMissing = entry.queryPull() == SchemaElement::pulledAsChild;
    record.entry = &entry;
    record.fields.clear();
    for (const SchemaElement* child : *entry.queryChildren()) {
        Field& field = record.fields.emplace_back();
        field.declared = mayBeMissing ? table.find(child->queryKey()) : child;
        getType(field.declared, field.typeName, field.name);
        if (field.declared)
            table.prefetchType(field.declared->queryType());
        else
            report.add(SourceReport::declarationSkipped, child->queryPlace(), unmarkedName(child->queryName()));
        field.mark = getModifiers(*child);
        field.hash = keyHash(field.name);
        model.queryNames().prefetch(field.hash);
    }
}

void SchemaMessage::declareRecord(const Record& record, const CString& path, SchemaFieldCheck& check)
{
    const SchemaElement& entry = *record.entry;
    const bool isRoot = entry.queryName() == table.queryRootTypeName();
    const std::string_view name = isRoot ? std::string_view(table.queryMainType()) : entry.queryName();
    const TypeModel::Declared row = model.addRecord(path, name);
    Element* const element = row.element;
    if (row.sharedWith)
        noteSharedKey(row, nullptr, 1, entry.queryPlace());
    check.addRecord(entry, *element);
    for (const Field& field : record.fields) {
        const SchemaElement* const type = field.declared ? table.findType(field.declared->queryType()) : nullptr;
        const TypeModel::Declared made = declareField(field, type, element);
        if (!field.declared)
            continue;
        if (made.sharedWith)
            noteSharedKey(made, element, field.mark == modStar ? 2 : 1, field.declared->queryPlace());
        if (field.declared->isAttribute() && !made.isFirst && !made.sharedWith) // after an element that repeats
            report.add(SourceReport::mergedByName, field.declared->queryPlace(), field.name);
        check.add(*field.declared, *made.element, *element, type,
                  !made.isFirst && !made.sharedWith && (field.mark == modStar || field.declared->isDeclaredAgain()));
    }
}

// Declares a repeated field twice: the model makes a table of a usage that occurs more than once. Returns the last
// declaration. A field with a type that isn't built in becomes typeOther; if the table has no entry of that type,
// setKnownTypes() makes it "String". `type` is the entry of the type; null for a built-in one and for none.
TypeModel::Declared SchemaMessage::declareField(const Field& field, const SchemaElement* type, Element* record)
{
    TypeModel::Declared made{};
    std::string_view typeName = field.typeName;
    const Element::ElementTypes kind = typeName.empty() ? Element::typeString : getBrokerType(typeName, type);
    Name& name = model.queryNames().intern(field.name, field.hash);
    for (int instances = field.mark == modStar ? 2 : 1; instances > 0; --instances) {
        made = model.addField(record, name, kind);
        if (typeName.empty())
            continue;
        const bool isOurs = typeName != SchemaDeclaration::kAnonymousType && kind != Element::typeString;
        knownTypes.push_back({made.element, isOurs ? typeName : std::string_view()});
        made.element->setType(Element::typeOther);
    }
    return made;
}

// Sets the types that fields name. All fields of a name share one element, and the last field decides, so the list is
// walked backwards and each element is set once. The full names and those of the types, which the ordering looks up,
// are prefetched.
void SchemaMessage::setKnownTypes()
{
    constexpr std::size_t kAhead = 8;
    NamePool& names = model.queryNames();
    for (std::size_t left = knownTypes.size(); left-- > 0;) {
        if (left >= kAhead) {
            const KnownType& ahead = knownTypes[left - kAhead];
            names.prefetch(keyHash(RunningHash(ahead.element->queryPath()).append(ahead.typeName)));
            names.prefetch(keyHash(ahead.typeName));
        }
        const auto [element, typeName] = knownTypes[left];
        if (element->hasKnownType())
            continue;
        Name& name = names.intern(typeName.empty() ? "String" : element->queryPath() + CString(typeName));
        name.behind(element->queryPath().size());
        element->setKnownType(name);
    }
}

// Sets name and type of a declaration; both are empty if there is none. A repeated one has no type. Returns nonzero if
// there is a type.
int SchemaMessage::getType(const SchemaElement* entry, std::string_view& typeName, std::string_view& fieldName)
{
    typeName = fieldName = {};
    if (entry) {
        fieldName = entry->queryName();
        if (!removeModifiers(fieldName))
            typeName = entry->queryType();
    }
    return !typeName.empty();
}

// Trims `name` and removes a '*' at its end. Returns 1 if there was one.
int SchemaMessage::removeModifiers(std::string_view& name)
{
    const std::size_t size = trimmed(name).size();
    name = unmarkedName(name);
    return name.size() < size ? 1 : 0;
}

// Returns the kind of a field of this type. The name of a built-in type is cleared, because the kind is sufficient. For
// other types typeDate only means that the schema declares the type.
Element::ElementTypes SchemaMessage::getBrokerType(std::string_view& typeName, const SchemaElement* type)
{
    if (!SchemaTable::isBuiltIn(typeName))
        return type ? Element::typeDate : Element::typeString;
    const std::string_view builtIn = typeName.substr(typeName.find(':') + 1);
    typeName = {};
    if (builtIn == "date")
        return Element::typeDate;
    return builtIn == "decimal" ? Element::typeNumber : Element::typeString;
}
