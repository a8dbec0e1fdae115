#include "Import/Schema/Literal/SchemaTable.h"

// A pass adds the top-level elements of all its documents to the table, then their complex types with all that they
// contain. The key of an entry is that of its record followed by its name, so a field has a separate entry for each
// record, but takes the type of an earlier entry whose key is its name alone. After the second pass, the types that
// fields name are pulled from the entries of the first one.
//
// If the schema refers to no other document, both passes would give the same table, so the second one is left out.

namespace {

constexpr std::string_view kAnonymousType = SchemaDeclaration::kAnonymousType;
constexpr std::string_view kStringType = "xsd:string";
constexpr SchemaOutline::Index kMostExpected = 16; // children of a record

// Returns whether a declaration has its type inside, at any depth.
bool holdsType(const SchemaOutline& outline, SchemaOutline::Index at)
{
    return outline[at].type == kAnonymousType &&
           outline.getNode(at, SchemaOutline::complexType) != SchemaOutline::kNone;
}

// Returns the type to register. A declaration that lacks both a type and one inside is text.
std::string_view typeOf(const SchemaOutline& outline, SchemaOutline::Index at)
{
    const std::string_view type = outline[at].type;
    return type == kAnonymousType && !holdsType(outline, at) ? kStringType : type;
}

} // namespace

void SchemaTable::readIncluded(Outlines& outlines, bool isFile)
{
    earlierMainType = mainType;
    mainName = earlierMainType;
    isComplete = isFile && getSchemaIncludeList(outlines);
    if (isComplete)
        return;
    copyElementList();
    setMainType(getRootTag(outlines.front()));
}

void SchemaTable::readMain(const SchemaOutline& main)
{
    if (!isComplete) {
        processElement(main);
        processComplexType(main, SchemaOutline::kRoot, {});
    }
    mergeLists();
    main.reportUnread(report);
}

// Adds the schema and the documents that it refers to: first the top-level elements of each, then the complex types. A
// schema with a target namespace is skipped. Returns true if a second pass would give the same table and no messages,
// because the schema refers to no other document.
bool SchemaTable::getSchemaIncludeList(Outlines& outlines)
{
    const SchemaOutline& main = outlines.front();
    const bool hadRootType = !rootTypeName.empty();
    setMainType(getRootTag(main));
    if (main.hasTargetNamespace())
        return false;
    std::size_t declarations = 0;
    for (const SchemaOutline& outline : outlines)
        declarations += outline.size();
    schemaElements.reserve(declarations);
    for (const SchemaOutline& outline : outlines)
        processElement(outline);
    for (const SchemaOutline& outline : outlines)
        processComplexType(outline, SchemaOutline::kRoot, {});
    for (auto included = outlines.begin() + 1; included != outlines.end(); ++included) {
        included->reportUnread(report);
        included->keepTextsOnly();
    }
    // True if the names are still those with which the main element's own type was read.
    const bool sameNames = !hadRootType || earlierMainType == mainType;
    return outlines.size() == 1 && sameNames && !mainType.empty() && cyclicReferences == 0;
}

// Makes the table of the first pass the include table, and leaves the element table empty. Entries are not copied.
void SchemaTable::copyElementList()
{
    std::swap(includedElements, schemaElements);
}

void SchemaTable::setMainType(std::string_view name)
{
    mainType = name;
    mainName = name;
}

void SchemaTable::clear()
{
    schemaElements.clear();
    includedElements.clear();
    pulled.clear();
    memory.release();
    cyclicReferences = 0;
    mainElement = SchemaOutline::kNone;
}

// Returns the name of the main element: the first top-level element that has no type attribute, whose own type is then
// read, or whose type is among the document's complex types. Empty if there is none. Elements without any attribute are
// skipped. In a document without complex types, the search ends at the first element with a type.
std::string_view SchemaTable::getRootTag(const SchemaOutline& outline)
{
    for (Index at = outline.getChildNode(SchemaOutline::kRoot, SchemaOutline::element); at != SchemaOutline::kNone;
         at = outline.getNextSibling(at)) {
        const SchemaDeclaration& element = outline[at];
        if (!element.hasAttributes)
            continue;
        const std::string_view name = element.isReference ? std::string_view() : element.name();
        mainElement = at;
        if (!element.hasType || element.type == kAnonymousType) {
            processComplexType(outline, at, name);
            return name;
        }
        if (!outline.holdsTypes())
            return {};
        if (outline.holdsTypeNamed(element.type)) {
            rootTypeName = element.type;
            return name;
        }
    }
    return {};
}

// Adds the top-level elements. An anonymous type is only searched below the first complex type in the element, so only
// that of the main element, which getRootTag() has read, is read as a whole.
void SchemaTable::processElement(const SchemaOutline& outline)
{
    for (Index at = outline.getChildNode(SchemaOutline::kRoot, SchemaOutline::element); at != SchemaOutline::kNone;
         at = outline.getNextSibling(at)) {
        const SchemaDeclaration& element = outline[at];
        outline.enterComponent(report, at);
        if (holdsType(outline, at))
            processComplexType(outline, outline.getNode(at, SchemaOutline::complexType), element.name());
        outline.markRead(at);
        if (!element.name().empty())
            addSchemaElement(contentOf(outline, at, element.name()), {});
    }
    report.enter(0);
}

// The state of reading the complex types of a container. Of the current type, elements come first, then attributes.
struct SchemaTable::TypeWalk
{
    std::string_view owner; // name for anonymous types
    Index type;
    Record record;
    SchemaOutline::Tag list = SchemaOutline::element;
    Index field = SchemaOutline::kNone;
    bool isEntered = false; // the type inside the field has been read
    bool isAtTop = false;   // the types are at the top of the document
};

// Reads the complex types directly inside `container`, with everything nested in them. Nested types are read before the
// declaration that holds them is added. The walks are on a stack of our own, because types may nest without bound.
void SchemaTable::processComplexType(const SchemaOutline& outline, Index container, std::string_view parentName)
{
    std::vector<TypeWalk> walks;
    ahead = {container + 1, outline.endOf(container), {}};
    const auto enter = [&](Index from, std::string_view owner) {
        TypeWalk walk{owner, outline.getChildNode(from, SchemaOutline::complexType), {}};
        if (walk.type == SchemaOutline::kNone)
            return;
        walk.isAtTop = from == SchemaOutline::kRoot;
        enterType(outline, walk);
        walks.push_back(walk);
    };
    enter(container, parentName);
    while (!walks.empty()) {
        TypeWalk& walk = walks.back();
        if (walk.field == SchemaOutline::kNone) {
            if (!nextList(outline, walk))
                walks.pop_back();
        } else if (!walk.isEntered && holdsType(outline, walk.field)) {
            walk.isEntered = true;
            enter(walk.field, outline[walk.field].name()); // may move `walk`
        } else {
            processTag(outline, walk);
        }
    }
    if (container == SchemaOutline::kRoot)
        report.enter(0);
}

// Adds the current complex type as a record, and moves to its first element at any depth. Only that element's siblings
// follow; elements in other groups are not read.
void SchemaTable::enterType(const SchemaOutline& outline, TypeWalk& walk)
{
    const SchemaDeclaration& type = outline[walk.type];
    if (walk.isAtTop)
        outline.enterComponent(report, walk.type);
    std::string_view name = type.isReference ? walk.owner : type.name();
    if (!name.empty() && name == rootTypeName)
        name = mainName;
    const SourcePlace place = outline.placeOf(walk.type);
    // Declarations at any depth, up to a bound, because types may nest deeply.
    const std::size_t inside = std::min(outline.endOf(walk.type) - walk.type - 1, kMostExpected);
    walk.record = {name, RunningHash(name), addSchemaElement({place, name}, {}), inside};
    if (SchemaElement* const entry = walk.record.entry) {
        if (entry->queryChildren() || entry->isOpen())
            report.add(SourceReport::mergedByName, place, name);
        entry->setOpen(true);
    }
    walk.list = SchemaOutline::element;
    walk.field = outline.getNode(walk.type, SchemaOutline::element);
}

// Moves from the elements of the current type to its attributes, then to the next type. Returns false at the end.
bool SchemaTable::nextList(const SchemaOutline& outline, TypeWalk& walk)
{
    if (walk.list == SchemaOutline::element) {
        walk.list = SchemaOutline::attribute;
        walk.field = outline.getChildNode(walk.type, SchemaOutline::attribute);
        return true;
    }
    if (walk.record.entry)
        walk.record.entry->setOpen(false);
    walk.type = outline.getNextSibling(walk.type);
    if (walk.type == SchemaOutline::kNone)
        return false;
    enterType(outline, walk);
    return true;
}

// Prefetches the slots of the declarations up to some after `at`, so that cache misses in the large table overlap. Each
// is looked up by its own key and by its name alone.
void SchemaTable::prefetchBehind(const SchemaOutline& outline, Index at)
{
    constexpr Index kAhead = 12; // about a record
    for (const Index end = std::min(at + kAhead, ahead.end); ahead.next < end; ++ahead.next) {
        const std::string_view name = outline[ahead.next].markedName();
        schemaElements.prefetch(keyHash(name));
        if (outline.tagOf(ahead.next) == SchemaOutline::complexType)
            ahead.record = RunningHash(name);
        else
            schemaElements.prefetch(keyHash(RunningHash(ahead.record).append(name)));
    }
}

// Registers the current field and moves to the next one.
void SchemaTable::processTag(const SchemaOutline& outline, TypeWalk& walk)
{
    const SchemaDeclaration& field = outline[walk.field];
    prefetchBehind(outline, walk.field);
    // The repetition mark is a part of the name, so a field without a name is left out only if it occurs once.
    const std::string_view name = field.markedName();
    if (!name.empty())
        addSchemaElement(contentOf(outline, walk.field, name), walk.record);
    outline.markRead(walk.field);
    walk.field = outline.getNextSibling(walk.field);
    walk.isEntered = false;
}

// Returns the contents of a declaration, under the name that it is registered by.
SchemaEntryContent SchemaTable::contentOf(const SchemaOutline& outline, Index at, std::string_view name) const
{
    const SchemaDeclaration& declaration = outline[at];
    SchemaEntryContent content{outline.placeOf(at),
                               name,
                               typeOf(outline, at),
                               declaration.isReference,
                               declaration.isSingle,
                               declaration.isInRepeated,
                               outline.tagOf(at) == SchemaOutline::attribute};
    if (declaration.simpleType != SchemaKinds::kNone && kinds.kindOf(declaration.simpleType) != SchemaKinds::text)
        content.loss = SchemaTypeLoss::innerType;
    return content;
}

// Returns whether two types have the same effect. A declaration without a type takes that of its record.
bool SchemaTable::areSameType(std::string_view oneType, std::string_view otherType) const
{
    if (oneType == otherType || oneType.empty() || otherType.empty())
        return true;
    const SchemaKinds::Kind kind = kinds.builtInKindOf(oneType);
    return kind != SchemaKinds::unknown && kind == kinds.builtInKindOf(otherType);
}

// Returns whether a field that takes the type of an earlier declaration of its name has the same effect with its own. A
// complex type, which becomes a record, has no type.
bool SchemaTable::matchesEarlier(const SchemaEntryContent& content, const SchemaElement& earlier) const
{
    const bool isRecord = earlier.queryType().empty() && !earlier.isReference();
    if (!isRecord || content.type.empty() || content.type == kAnonymousType)
        return areSameType(content.type, earlier.queryType());
    return content.type.substr(content.type.find(':') + 1) == earlier.queryName();
}

// Adds a declaration once, and appends it to its parent. Returns the entry; null if it has the name of its parent. A
// type that is already registered under the name alone takes precedence. A declaration that is there already is
// appended again: two usages in a record make a table, which is a loss if the declarations are alternatives.
SchemaElement* SchemaTable::addSchemaElement(const SchemaEntryContent& content, const Record& parent)
{
    cancelPoint.pass();
    const Fingerprint alone(content.name);
    const Fingerprint key = parent.entry ? Fingerprint(RunningHash(parent.key).append(content.name)) : alone;
    SchemaElement* entry = schemaElements.find(key);
    if (!entry) {
        const SchemaElement* const earlier = schemaElements.find(alone);
        if (parent.name == content.name) {
            onCycle(report.faultAt(content.place, CString(content.name) + " stands inside itself", true));
            report.add(SourceReport::recursiveDeclaration, content.place, content.name);
            ++cyclicReferences;
            return nullptr;
        }
        const std::string_view parentName = parent.entry ? parent.name : std::string_view();
        entry = std::pmr::polymorphic_allocator<>(&memory).new_object<SchemaElement>(key, parentName, content);
        if (earlier)
            entry->setType(earlier->queryType(), !matchesEarlier(content, *earlier));
        schemaElements.store(entry);
    } else if (entry->queryName() != content.name || !matchesEarlier(content, *entry)) {
        report.add(SourceReport::mergedByName, content.place, unmarkedName(content.name));
    } else if (!content.isSingle) {
        entry->setDeclaredAgain();
    } else if (parent.entry && !content.isInRepeated && !entry->isMarked()) {
        report.add(SourceReport::inventedRepetition, content.place, content.name); // two usages become a table
    }
    if (parent.entry)
        parent.entry->addChild(entry, parent.expected, memory);
    return entry;
}

// Pulls from the include table every missing entry that is named as a type, with its children. One walk is enough:
// pulled entries are appended to the table, so the walk reaches them, and earlier entries need nothing more.
void SchemaTable::mergeLists()
{
    if (includedElements.empty())
        return;
    constexpr std::size_t kAhead = 8;
    for (const SchemaElement* entry : schemaElements) {
        cancelPoint.pass();
        pull(entry->queryType());
    }
    for (std::size_t i = 0; i < pulled.size(); ++i) {
        cancelPoint.pass();
        if (i + kAhead < pulled.size()) // cache misses in the large table overlap
            prefetchType(pulled[i + kAhead]->queryType());
        pull(pulled[i]->queryType());
    }
}

// Pulls the entry of a type, unless the schema declares it itself. A child that the schema declares is replaced by the
// schema's own entry.
void SchemaTable::pull(const Fingerprint& type)
{
    if (schemaElements.find(type))
        return;
    SchemaElement* const included = includedElements.find(type);
    if (!included || included->queryPull() != SchemaElement::notPulled)
        return;
    included->setPull(SchemaElement::pulledAsType);
    pulled.push_back(included);
    if (!included->queryChildren())
        return;
    for (SchemaElement*& child : *included->queryChildren()) {
        if (SchemaElement* own = schemaElements.find(child->queryKey())) {
            child = own; // the key refers to this entry from now on
        } else if (child->queryPull() == SchemaElement::notPulled) {
            child->setPull(SchemaElement::pulledAsChild);
            pulled.push_back(child);
        }
    }
}

NumberTable SchemaTable::findReached() const
{
    NumberTable reached;
    reached.insert(SchemaOutline::kShared, 0);
    if (includedElements.empty())
        return reached;
    const auto add = [&reached](const SchemaElement* entry) {
        if (entry->isReference())
            reached.insert(SchemaOutline::componentOf(unmarkedName(entry->queryName())), 0);
        else if (!isBuiltIn(entry->queryType()))
            reached.insert(SchemaOutline::componentOf(entry->queryType()), 0);
    };
    std::ranges::for_each(schemaElements, add);
    std::ranges::for_each(pulled, add);
    return reached;
}

const SchemaElement* SchemaTable::find(const Fingerprint& key) const
{
    if (const SchemaElement* own = schemaElements.find(key))
        return own;
    const SchemaElement* included = includedElements.find(key);
    return included && included->queryPull() != SchemaElement::notPulled ? included : nullptr;
}

const SchemaElement* SchemaTable::findAny(const Fingerprint& key) const
{
    const SchemaElement* own = schemaElements.find(key);
    return own ? own : includedElements.find(key);
}
