#include "Formats/XMLDataWalk.h"

#include <algorithm>
#include <functional>

// The document stands under no element, but has the sequence number 0, which is the root's too: the root's attributes
// and its children have keys in common.
XMLDataWalk::XMLDataWalk() : pairSlots(64), open{{nullptr, 0, 0, 0}} {}

void XMLDataWalk::startElement(XmlName name, XmlAttributes attributes)
{
    const bool isRoot = rootTag.empty();
    if (isRoot)
        rootTag = name.prefix ? CString(name.prefix) + ":" + name.local : name.local;
    Pair& child = pairOf(open.back().item, name.local, false);
    occur(child);
    for (std::size_t i = 0; i < attributes.size(); ++i)
        occur(pairOf(child.item, attributes[i].name.local, true));
    if (isRoot)
        open.back().item = child.item;
    else
        open.push_back({child.item, ++lastSequence, shadowed.size(), undecided.size()});
}

void XMLDataWalk::endElement()
{
    closeNode();
}

std::vector<XMLDataWalk::Declaration> XMLDataWalk::takeDeclarations()
{
    std::sort(declarations.begin(), declarations.end(),
              [](const Declaration& a, const Declaration& b) { return a.moment < b.moment; });
    return std::move(declarations);
}

void XMLDataWalk::occur(Pair& pair)
{
    ++lastMoment;
    Usage& usage = *pair.usage;
    if (!usage.pair || usage.sequence != open.back().sequence) {
        beginUsage(pair);
    } else {
        repeatUsage(usage);
        if (!pair.isLinked) { // the key is another pair's: what is new here is the link alone
            if (usage.declaration == kNotKept)
                keep(usage);
            declarations.push_back({lastMoment, &pair, usage.sequence, false});
        }
    }
    pair.isLinked = true;
}

void XMLDataWalk::beginUsage(Pair& pair)
{
    Usage& usage = *pair.usage;
    if (isOpen(usage))
        shadowed.emplace_back(&usage, usage);
    usage = {&pair, open.back().sequence, lastMoment, open.size() - 1, kNotKept, false};
    if (!pair.isLinked)
        keep(usage);
    if (pair.item->firstOnce == Item::kNever)
        undecided.push_back(&usage);
}

void XMLDataWalk::repeatUsage(Usage& usage)
{
    if (usage.repeats)
        return;
    usage.repeats = true;
    Item& item = *usage.pair->item;
    if (usage.declaration != kNotKept)
        declarations[usage.declaration].repeats = true;
    else if (usage.moment < item.firstRepeated)
        keep(usage);
    item.firstRepeated = std::min(item.firstRepeated, usage.moment);
}

void XMLDataWalk::keep(Usage& usage)
{
    usage.declaration = declarations.size();
    declarations.push_back({usage.moment, usage.pair, usage.sequence, usage.repeats});
}

bool XMLDataWalk::isOpen(const Usage& usage) const
{
    return usage.pair && usage.depth < open.size() && open[usage.depth].sequence == usage.sequence;
}

// What was undecided is known now: a usage that didn't occur again will not any more.
void XMLDataWalk::closeNode()
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

XMLDataWalk::Pair& XMLDataWalk::pairOf(Item* parent, const char* local, bool isAttribute)
{
    Pair* const known = pairSlots[slotOf(parent, local, isAttribute)];
    return known ? *known : addPair(parent, local, isAttribute);
}

// Names are interned, so their addresses are compared.
std::size_t XMLDataWalk::slotOf(const Item* parent, const char* local, bool isAttribute) const
{
    const std::size_t mask = pairSlots.size() - 1;
    std::size_t at =
        (reinterpret_cast<std::uintptr_t>(parent) ^ reinterpret_cast<std::uintptr_t>(local) * 2) + isAttribute;
    at *= 0x9E3779B97F4A7C15;
    at ^= at >> 32;
    for (at &= mask;; at = (at + 1) & mask) {
        const Pair* const pair = pairSlots[at];
        if (!pair || (pair->parent == parent && pair->local == local && pair->isAttribute == isAttribute))
            return at;
    }
}

void XMLDataWalk::growSlots()
{
    pairSlots.assign(pairSlots.size() * 2, nullptr);
    for (Pair& pair : pairs)
        pairSlots[slotOf(pair.parent, pair.local, pair.isAttribute)] = &pair;
}

XMLDataWalk::Pair& XMLDataWalk::addPair(Item* parent, const char* local, bool isAttribute)
{
    const CString parentName = parent ? parent->name : CString();
    Item& item = itemNamed(isAttribute ? parentName + "_" + local : CString(local));
    Pair& pair = pairs.emplace_back(Pair{parent, local, isAttribute, &item, &usages[parentName + "." + local]});
    if (pairs.size() * 2 > pairSlots.size())
        growSlots();
    else
        pairSlots[slotOf(parent, local, isAttribute)] = &pair;
    return pair;
}

XMLDataWalk::Item& XMLDataWalk::itemNamed(const CString& name)
{
    const auto known = itemsByName.find(name);
    if (known != itemsByName.end())
        return *known->second;
    Item& item = items.emplace_back(Item{name});
    itemsByName.emplace(item.name, &item);
    return item;
}
