#include "Import/Schema/Full/SchemaTypes.h"

#include "Import/Full/RootNames.h"
#include "Import/Schema/SchemaBuiltIns.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

// The components of the sources are read first: elements become candidates for the main type, complex types become
// records, named enumerations become types. The fields of a record are read later, from a list of pending records, so
// types may refer to each other in cycles and nest without bound. Reading fields makes further records pending, and so
// reaches all that the components refer to, in any document.
//
// Names and descriptions are copied into the types, each once, because the types outlive the documents.
void SchemaTypes::read(const std::vector<SchemaSet::Source>& sources, const std::vector<CString>& roots,
                       const std::vector<SchemaSet::Message>& messages)
{
    std::vector<char> isVisited(tree.size());
    // Returns true for the first visit: a component may come from several documents, or twice from one.
    const auto visit = [&isVisited](Index component) { return std::exchange(isVisited[component], 1) == 0; };
    for (const SchemaSet::Message& message : messages)
        messageNumbers.emplace(message.element, static_cast<SourceTypes::Index>(messageNumbers.size()));
    std::unordered_map<NameTable::Id, std::uint32_t> sourcesBySpace;
    for (const auto& [document, number] : sources) {
        for (const Index component : set.componentsOf(document))
            if (visit(component))
                readComponent(component, number);
        // A requested component of a document that is not a source belongs to the first source of its namespace.
        sourcesBySpace.try_emplace(tree.documents[document].space, number);
        for (const auto& [prefix, space] : tree.documents[document].prefixes)
            types.prefixes.emplace_back(keep(prefix), keep(space));
    }
    for (const auto& [element, source] : messages)
        if (visit(element))
            addCandidate(element, source);
    std::unordered_set<Index> asked; // several roots may have the same local name
    for (const CString& root : roots)
        for (const Index component : set.componentsCalled(localNameOf(root)))
            // A complex type that has been read is a record, but not yet a candidate.
            if (asked.insert(component).second && (visit(component) || tree[component].tag == SchemaTag::complexType)) {
                const auto source = sourcesBySpace.find(tree.documentOf(component).space);
                addCandidate(component, source == sourcesBySpace.end() ? SourceTypes::kNone : source->second);
            }
    readPending();
}

void SchemaTypes::readAlone(const std::vector<Index>& wanted)
{
    for (const Index component : wanted) {
        set.reach(component);
        readComponent(component, SourceTypes::kNone);
    }
    readPending();
}

// Reads the fields of all records and choices. A choice adds records, and these add choices.
void SchemaTypes::readPending()
{
    std::size_t record = 0;
    SourceTypes::Index choice = 0;
    while (record < pending.size() || choice < choices.size()) {
        if (record < pending.size())
            readFields(pending[record++]);
        else
            readChoice(choice++);
    }
}

// Returns the index of the choice of a declaration whose type is abstract or has alternatives; kNone for others, and
// for an abstract type that no named type is derived from. readPending() reads the choice later. A type that is not
// abstract may be replaced, too, but then the field has its own type only, which is reported.
SourceTypes::Index SchemaTypes::choiceOf(const Declared& type, Index declaration)
{
    const unsigned blocked = tree[declaration].flags & (SchemaNode::blocksExtension | SchemaNode::blocksRestriction);
    const unsigned all = blocked | tree[type.complexType].flags;
    const bool isReplaceable = type.complexType != 0 && (derivedFrom(type.complexType).ways & ~all) != 0;
    const bool isAbstract = tree[type.complexType].is(SchemaNode::isAbstract);
    const bool hasAlternatives = tree.childOf(declaration, SchemaTag::alternative) != 0;
    if (isReplaceable && !isAbstract)
        set.note(SourceReport::replaceableType, type.complexType);
    if (!hasAlternatives && (!isReplaceable || !isAbstract))
        return SourceTypes::kNone;
    const Choice choice{hasAlternatives ? declaration : type.complexType, blocked};
    const auto [place, isNew] = choiceNumbers.try_emplace(choice, static_cast<SourceTypes::Index>(choices.size()));
    if (isNew) {
        choices.push_back(choice);
        types.choices.emplace_back();
    }
    return place->second;
}

// Reads the types that may replace that of a declaration.
void SchemaTypes::readChoice(SourceTypes::Index choice)
{
    if (tree[choices[choice].node].tag == SchemaTag::complexType)
        readDerived(choice, choices[choice].node);
    else
        readAlternatives(choice);
}

// Reads the types that the attributes of an element choose instead of its own (XML Schema 1.1 Part 1, 3.12). A simple
// one is derived from the element's type, so the field can hold its values.
void SchemaTypes::readAlternatives(SourceTypes::Index choice)
{
    const auto add = [&](Index type, bool isOwn) {
        if (tree[type].is(SchemaNode::isAbstract))
            return readDerived(choice, type);
        const SourceTypes::Type record = type == 0 || isOwn ? SourceTypes::Type() : recordOf(type, SourceTypes::kNone);
        if (record.kind == SourceTypes::kindRecord)
            types.choices[choice].push_back(record.index);
    };
    const Index element = choices[choice].node;
    add(declared(element).complexType, true);
    for (Index at = tree.childOf(element, SchemaTag::alternative); at != 0;
         at = tree.firstOf(tree[at].next, SchemaTag::alternative))
        add(declared(at).complexType, false);
}

// Reads the types that may replace an abstract one: those derived from it, directly or indirectly. Each step is
// counted, because each abstract type of a chain has all types after it.
void SchemaTypes::readDerived(SourceTypes::Index choice, Index base)
{
    const unsigned blocked = choices[choice].blocked | tree[base].flags;
    std::vector<Index> bases{base};
    std::unordered_set<Index> met{base};
    for (std::size_t i = 0; i < bases.size(); ++i)
        for (const Index type : derivedFrom(bases[i]).types) {
            contents.spendStep();
            if ((tree.blockOf(type) & blocked) != 0 || !met.insert(type).second)
                continue;
            bases.push_back(type);
            set.reach(type);
            // A message can't choose an abstract type, nor a redefined one, whose redefinition has its name.
            if (tree[type].is(SchemaNode::isAbstract) ||
                set.find(SchemaSet::type, set.nameOf(type), tree[type].parent) != type)
                continue;
            const SourceTypes::Type record = recordOf(type, SourceTypes::kNone);
            if (record.kind == SourceTypes::kindRecord)
                types.choices[choice].push_back(record.index);
            if (reported.insert(type).second)
                set.noteText(SourceReport::derivedType, base,
                             CString(tree.text(tree[type].name)) + " for " + CString(tree.text(tree[bases[i]].name)));
        }
}

// Returns the types derived from a type. A message may choose them by xsi:type
// (https://www.w3.org/TR/xmlschema-1/#xsi_type).
const SchemaTypes::Derived& SchemaTypes::derivedFrom(Index type)
{
    if (!std::exchange(isDerivedCollected, true))
        collectDerived();
    static const Derived none;
    const auto found = derived.find(type);
    return found == derived.end() ? none : found->second;
}

// Collects the derived types of all documents.
void SchemaTypes::collectDerived()
{
    const auto add = [this](Index type) {
        const Index derivation = tree[type].tag == SchemaTag::complexType ? tree.derivationOf(type) : 0;
        const SchemaName base = tree.referenceOf(derivation);
        if (base.local != 0)
            if (const Index found = set.find(SchemaSet::type, base, derivation); found != 0 && found != type) {
                Derived& all = derived[found];
                all.types.push_back(type);
                all.ways |= tree.blockOf(type);
            }
    };
    for (const SchemaDocument& document : tree.documents)
        tree.visitTop(document, add);
}

// Reads a top-level component. A simple type becomes a type of its own only if it is an enumeration.
void SchemaTypes::readComponent(Index component, SourceTypes::Index source)
{
    const SchemaNode& node = tree[component];
    if (node.tag == SchemaTag::complexType) {
        recordOf(component, SourceTypes::kNone);
    } else if (node.tag == SchemaTag::simpleType) {
        if (const Value value = simple.of(component); value.named != 0)
            typeOf(value, component, node.name);
    } else {
        addCandidate(component, source);
    }
}

// Adds a candidate for the main type: an element, or a requested complex type.
void SchemaTypes::addCandidate(Index component, SourceTypes::Index source)
{
    const SchemaNode& node = tree[component];
    SourceTypes::Candidate candidate{.name = keep(node.name),
                                     .type = {},
                                     .isAbstract = node.is(SchemaNode::isAbstract),
                                     .place = set.placeOf(component),
                                     .uri = keep(tree.documentOf(component).space),
                                     .source = source,
                                     .isType = node.tag == SchemaTag::complexType,
                                     .space = spaceOf(component)};
    if (const auto message = messageNumbers.find(component); message != messageNumbers.end())
        candidate.message = message->second;
    if (candidate.isType) {
        candidate.type = recordOf(component, SourceTypes::kNone);
        candidate.choice = choiceOf({component, {}, 0}, 0);
    } else {
        const Declared type = declared(component);
        candidate.hasAbstractType = tree[type.complexType].is(SchemaNode::isAbstract);
        candidate.type = typeOf(type, component, node.name, SourceTypes::kNone);
        candidate.choice = choiceOf(type, component);
        candidate.description = keepDocumentation(node.documentation != 0 ? node.documentation : type.documentation);
    }
    types.addCandidate(candidate);
    candidates.push_back(component);
}

// Reads the fields of a record: the text, then elements, then attributes. The description of a field is that of its
// reference, else of the declaration, else of the type.
void SchemaTypes::readFields(Pending record)
{
    fields.clear();
    if (const Value text = simple.of(record.type); text.isThere)
        fields.push_back({"value", {}, typeOf(text, record.type, SchemaTree::kValueName), SourceTypes::roleValue});
    const std::span<const SchemaField> content = contents.of(record.type);
    // Copied, because the types of the fields add to the contents.
    copiedFields.assign(content.begin(), content.end());
    for (const SchemaField& field : copiedFields) {
        cancelPoint.pass();
        const Declared type = declared(field.declaration);
        std::uint32_t said = field.documentation;
        if (said == 0)
            said = tree[field.declaration].documentation;
        fields.push_back(
            {keep(field.name.local), keepDocumentation(said != 0 ? said : type.documentation),
             typeOf(type, field.declaration != 0 ? field.declaration : record.type, field.name.local, record.record),
             field.role, field.repeats});
        if (const SourceTypes::Index choice = choiceOf(type, field.declaration); choice != SourceTypes::kNone)
            types.choosers.emplace_back(record.record, choice);
    }
    types.setFields(record.record, fields);
}

// Returns the type of an element or attribute: the one it names, else the one inside it, else that of its substitution
// group's head; text if it has none.
SchemaTypes::Declared SchemaTypes::declared(Index declaration)
{
    declaration = contents.typedBy(declaration);
    Declared out;
    const bool isNamed = tree[declaration].reference.local != 0;
    Index type = isNamed ? 0 : tree.childOf(declaration, SchemaTag::complexType, SchemaTag::simpleType);
    if (isNamed) {
        const SchemaName name = tree.referenceOf(declaration);
        if (const auto builtIn = set.builtInKind(name)) {
            if (tree.text(name.local) == "anyType")
                set.note(SourceReport::anyContent, declaration);
            else if (isBuiltInList(tree.text(name.local)))
                set.note(SourceReport::listType, declaration);
            out.value = {true, *builtIn};
            return out;
        }
        type = set.reach(SchemaSet::type, name, declaration);
        if (tree[declaration].tag == SchemaTag::attribute && tree[type].tag == SchemaTag::complexType)
            type = 0; // a value has no fields
        if (type == 0)
            set.note(SourceReport::unresolvedReference, declaration);
    }
    if (type == 0)
        return out;
    out.documentation = tree[type].documentation;
    if (tree[type].tag == SchemaTag::complexType)
        out.complexType = type;
    else
        out.value = simple.of(type);
    return out;
}

SourceTypes::Type SchemaTypes::typeOf(const Declared& declared, Index declaration, NameTable::Id fieldName,
                                      SourceTypes::Index home)
{
    return declared.complexType == 0 ? typeOf(declared.value, declaration, fieldName)
                                     : recordOf(declared.complexType, home);
}

// Returns the type of a value. An anonymous enumeration belongs to the namespace of the declaration that uses it. It is
// named after its field, so the same constants may be several enumerations, one for each name.
SourceTypes::Type SchemaTypes::typeOf(const Value& value, Index declaration, NameTable::Id fieldName)
{
    if (value.kind != SourceTypes::kindEnumeration)
        return {value.kind};
    const bool isNamed = value.named != 0;
    const SchemaNode& named = tree[value.named];
    const NameTable::Id name = isNamed ? named.name : fieldName;
    const auto [known, isNew] =
        enumerations.insert(static_cast<std::uint64_t>(value.firstConstant) << 32 | name, SourceTypes::kNone);
    if (isNew) {
        constants.clear();
        for (const auto& [constant, documentation] : simple.constantsOf(value))
            constants.push_back({keep(constant), keepDocumentation(documentation)});
        known = types.addEnumeration({keep(name), keepDocumentation(named.documentation), isNamed,
                                      set.placeOf(value.named), spaceOf(isNamed ? value.named : declaration)},
                                     constants);
    }
    return {SourceTypes::kindEnumeration, known};
}

// Returns the record of a complex type, added if it is new. It is named after the type, else after the declaration
// around it. `home` is the record that contains this declaration, for a name that is taken.
SourceTypes::Type SchemaTypes::recordOf(Index complexType, SourceTypes::Index home)
{
    auto [known, isNew] = records.insert(complexType);
    if (!isNew)
        return known;
    const SchemaNode& node = tree[complexType];
    const SchemaNode& named = tree[set.namedAround(complexType)];
    const Value text = simple.of(complexType);
    // A type without fields becomes text.
    if (!text.isThere && contents.of(complexType).empty())
        return known;
    const std::uint32_t said = node.documentation != 0 ? node.documentation : named.documentation;
    const SourceTypes::Index record =
        types.addRecord({keep(named.name), keepDocumentation(said), set.placeOf(complexType),
                         node.hasName() ? SourceTypes::kNone : home, spaceOf(complexType)});
    pending.push_back({complexType, record});
    if (node.is(SchemaNode::isAbstract))
        set.note(SourceReport::abstractType, complexType);
    if (text.isMixed)
        set.note(SourceReport::mixedContent, complexType);
    return known = {SourceTypes::kindRecord, record};
}

std::string_view SchemaTypes::keep(NameTable::Id name)
{
    keptNames.resize(std::max(keptNames.size(), tree.names.size()));
    std::string_view& kept = keptNames[name];
    if (kept.empty())
        kept = types.keep(tree.text(name));
    return kept;
}

std::string_view SchemaTypes::keepDocumentation(std::uint32_t documentation)
{
    if (documentation == 0)
        return {};
    keptDocumentations.resize(tree.documentations.size());
    std::string_view& kept = keptDocumentations[documentation];
    if (kept.empty())
        kept = types.keep(tree.documentations[documentation]);
    return kept;
}
