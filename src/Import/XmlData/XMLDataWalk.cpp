#include "Import/XmlData/XMLDataWalk.h"

#include <algorithm>

// Messages repeat their structure, so the pair of an occurrence is usually the one that followed the last pair before.
// That guess makes most occurrences a comparison and a few assignments; names are joined and hashed only for new pairs.
//
// The document itself is a node without an element. It has sequence number 0, as the root has, so the root's attributes
// and its children share keys.
XMLDataWalk::XMLDataWalk(SourceReport& report, bool isBody) :
    report(report), isBody(isBody), pairs(1), latest(&pairs.front())
{}

void XMLDataWalk::beginDocument(std::uint32_t number)
{
    file = number;
    open.assign(1, {nullptr, rootTag.empty() ? 0 : ++lastSequence, 0, 0});
    pairsByKey.clear(); // keys refer to names interned by the previous parser
    spacesByAddress.clear();
}

// With several documents, the first tag by name is the root, whatever their order.
void XMLDataWalk::setRootTag(CString tag)
{
    if (rootTag.empty() || tag < rootTag)
        rootTag = std::move(tag);
}

void XMLDataWalk::entityLeftOut(std::string_view name, XmlPlace place)
{
    report.add(SourceReport::entityNotExpanded, placeOf(place), name);
}

void XMLDataWalk::startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope)
{
    locator = &scope.locator;
    const bool isRoot = !open.back().item;
    if (isRoot)
        setRootTag(name.qualified());
    Pair& child = pairOf(open.back().item, name, scope.uri, false);
    addOccurrence(child);
    // Attributes are counted before the node opens: their keys end in the number of the element's parent, so the
    // attributes of siblings share a usage.
    for (std::size_t i = 0; i < attributes.size(); ++i)
        addOccurrence(pairOf(child.item, attributes[i].name, attributes.uriOf(i), true));
    if (isRoot)
        open.back().item = child.item;
    else
        open.push_back({child.item, ++lastSequence, shadowed.size(), undecided.size()});
}

std::vector<XMLDataWalk::Declaration> XMLDataWalk::takeDeclarations()
{
    // Declarations are out of order, because some are only kept when their node ends or their usage repeats.
    std::sort(declarations.begin(), declarations.end(),
              [](const Declaration& a, const Declaration& b) { return a.moment < b.moment; });
    // Frees memory before the caller builds the model.
    itemsByName = {};
    pairsByKey = {};
    usagesByKey = {};
    usages.clear();
    undecided = std::vector<Usage*>();
    return std::move(declarations);
}

// Returns the text of a namespace, the same one for all documents; null for none.
const CString* XMLDataWalk::spaceOf(const char* uri)
{
    if (!uri)
        return nullptr;
    const auto [known, isNew] = spacesByAddress.try_emplace(uri);
    if (isNew)
        known->second = &*spaces.emplace(uri).first;
    return known->second;
}

// Called only if the namespace differs from that of the pair's last occurrence, which is rare.
void XMLDataWalk::noteSpace(Pair& pair, const char* uri)
{
    pair.uri = uri;
    if (pair.otherSpace.line == 0 && spaceOf(uri) != pair.space)
        pair.otherSpace = currentPlace();
}

// Reports names that share a field or a record with an equal name of another namespace. The contents of a reported
// element are not reported again, because every name differs between two versions of a message.
void XMLDataWalk::reportMergedSpaces(const TypeModel& model) const
{
    std::vector<std::pair<SourcePlace, const Pair*>> merges;
    for (const Pair& pair : pairs) {
        if (!pair.item)
            continue;
        const bool sharesRecord = !pair.key.isAttribute && pair.space != pair.item->element->space &&
                                  model.findElement(pair.item->name)->queryType() == Element::typeRow;
        if (sharesRecord || pair.otherSpace.line != 0)
            merges.emplace_back(sharesRecord ? pair.first : pair.otherSpace, &pair);
    }
    std::ranges::stable_sort(merges, {}, &std::pair<SourcePlace, const Pair*>::first);
    std::unordered_set<const Item*> merged;
    for (const auto& [place, pair] : merges) {
        if (!merged.contains(pair->key.parent))
            report.add(SourceReport::mergedByName, place, pair->item->name);
        merged.insert(pair->item);
    }
}

// The model makes one table for each element, and a single document puts it only into the record in which the element
// repeats first. An element with the table's name prevents it, and so does an attribute that shares the element.
void XMLDataWalk::reportLosses(const TypeModel& model) const
{
    for (const Item& item : items)
        if (item.hasText && model.findElement(item.name)->queryType() == Element::typeRow)
            report.add(SourceReport::textSkipped, item.first, item.name);
    for (const Pair& pair : pairs) {
        if (!pair.item)
            continue;
        const CString& name = pair.item->name;
        if (pair.key.isAttribute) {
            if (model.findElement(name)->queryType() == Element::typeRow)
                report.add(SourceReport::mergedByName, pair.first, name);
            continue;
        }
        if (pair.item->attributeOf && pair.item->attributeOf == pair.key.parent)
            report.add(SourceReport::mergedByName, pair.first, name);
        const bool isRepeated = pair.repeated.line != 0, isFirstTable = pair.item->table == &pair;
        if (!isRepeated && (isBody || !isFirstTable))
            continue;
        const bool hasTable = (isBody || isFirstTable) && model.findElement(name)->queryIsAttribute() == 0 &&
                              !model.findElement("t_" + name);
        if (isRepeated != hasTable)
            report.add(isRepeated ? SourceReport::repetitionSkipped : SourceReport::inventedRepetition,
                       isRepeated ? pair.repeated : pair.first, name);
    }
    reportMergedSpaces(model);
}

// Counts an occurrence. It is the first of a key if the key's last usage belongs to another node.
void XMLDataWalk::addOccurrence(Pair& pair)
{
    ++lastMoment;
    Usage& usage = *pair.usage;
    if (!usage.pair || usage.sequence != open.back().sequence) {
        beginUsage(pair);
    } else {
        repeatUsage(usage, pair);
        if (!pair.isLinked) { // the key belongs to another pair, so only the link is new
            if (usage.declaration == kNotKept)
                keep(usage);
            declarations.push_back({lastMoment, &pair, usage.sequence, false});
        }
    }
    pair.isLinked = true;
}

// Begins a usage. It is kept at once if it links a new pair. Whether it is its element's first usage that occurs once
// is only known when the node ends.
void XMLDataWalk::beginUsage(Pair& pair)
{
    Usage& usage = *pair.usage;
    if (isOpen(usage))
        shadowed.emplace_back(&usage, usage);
    usage.begin(pair, open.back().sequence, lastMoment, open.size() - 1);
    if (!pair.isLinked)
        keep(usage);
    if (pair.item->firstOnce == Item::kNever)
        undecided.push_back(&usage);
}

// Counts a further occurrence under a key. The first occurrence of another pair under the key repeats the usage, but
// only the second one is a repetition in the document.
void XMLDataWalk::repeatUsage(Usage& usage, Pair& pair)
{
    if (usage.pair != &pair && usage.sharer != &pair)
        usage.sharer = &pair;
    else if (pair.repeated.line == 0)
        pair.repeated = currentPlace();
    if (usage.repeats)
        return;
    usage.repeats = true;
    Item& item = *usage.pair->item;
    if (usage.declaration != kNotKept)
        declarations[usage.declaration].repeats = true;
    else if (isBody ? !pair.isKeptRepeated : usage.moment < item.firstRepeated)
        keep(usage);
    pair.isKeptRepeated = true;
    if (usage.moment < item.firstRepeated) {
        item.firstRepeated = usage.moment;
        item.table = usage.pair;
    }
}

// Adds a declaration, and stores its index in the usage, in case that repeats later.
void XMLDataWalk::keep(Usage& usage)
{
    usage.declaration = declarations.size();
    declarations.push_back({usage.moment, usage.pair, usage.sequence, usage.repeats});
}

bool XMLDataWalk::isOpen(const Usage& usage) const
{
    return usage.pair && usage.depth < open.size() && open[usage.depth].sequence == usage.sequence;
}

// Undecided usages that haven't repeated by now occurred once.
void XMLDataWalk::endElement()
{
    const Node& node = open.back();
    for (; undecided.size() > node.undecided; undecided.pop_back()) {
        Usage& usage = *undecided.back();
        Item& item = *usage.pair->item;
        if (usage.repeats || usage.moment > item.firstOnce)
            continue;
        item.firstOnce = usage.moment;
        if (usage.declaration == kNotKept)
            keep(usage);
    }
    for (; shadowed.size() > node.shadowed; shadowed.pop_back())
        *shadowed.back().first = shadowed.back().second;
    open.pop_back();
}

// Returns the pair of a name under a parent. The guess usually succeeds, because most nodes repeat the contents of the
// previous node of the same name.
XMLDataWalk::Pair& XMLDataWalk::pairOf(Item* parent, XmlName name, const char* uri, bool isAttribute)
{
    const PairKey key{parent, name.local, file, isAttribute};
    if (!uri)
        uri = name.prefix; // an undeclared prefix
    Pair*& guess = latest->follower;
    if (!guess || guess->key != key) {
        const std::uint32_t hash = keyHash(key);
        Pair* const known = pairsByKey.find(key, hash);
        guess = known ? known : &addPair(key, hash, uri);
    }
    if (guess->uri != uri)
        noteSpace(*guess, uri);
    return *(latest = guess);
}

// Adds a pair. In a single document attributes and children have one separator, so an attribute `x` of `a` and a child
// `x` of `a` may share a key; the types of existing documents depend on that. In a set no two pairs share one.
XMLDataWalk::Pair& XMLDataWalk::addPair(const PairKey& key, std::uint32_t hash, const char* uri)
{
    const CString parentName = key.parent ? key.parent->name : CString();
    Item& item = itemNamed(key.isAttribute ? parentName + "_" + key.local : CString(key.local));
    const char* const separator = !isBody ? "." : key.isAttribute ? "@" : "/"; // '@' and '/' occur in no name
    if (key.isAttribute)
        item.attributeOf = key.parent;
    Usage& usage = usageOf(RunningHash(parentName).append(separator).append(key.local));
    const bool isKnown = isBody && usage.pair; // from an earlier document
    Pair& pair =
        isKnown ? *usage.pair
                : pairs.emplace_back(
                      Pair{.key = key, .item = &item, .usage = &usage, .first = currentPlace(), .space = spaceOf(uri)});
    pair.key = key;
    noteSpace(pair, uri); // in another document, the same address may be another namespace
    if (!key.isAttribute && !item.element)
        item.element = &pair;
    pairsByKey.store(&pair, hash);
    return pair;
}

XMLDataWalk::Item& XMLDataWalk::itemNamed(CString name)
{
    if (Item* const known = itemsByName.find(name))
        return *known;
    Item& item = items.emplace_back(Item{.name = std::move(name), .first = currentPlace()});
    itemsByName.store(&item);
    return item;
}

XMLDataWalk::Usage& XMLDataWalk::usageOf(const Fingerprint& key)
{
    if (Usage* const known = usagesByKey.find(key))
        return *known;
    Usage& usage = usages.emplace_back(Usage{.key = key});
    usagesByKey.store(&usage);
    return usage;
}
