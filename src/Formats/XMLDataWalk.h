#pragma once

#include "Platform/Xml/XmlParser.h"

#include <cstdint>
#include <deque>
#include <limits>
#include <unordered_map>
#include <vector>

/// Walks an instance document as it is read, and keeps of it what the message model will look different for.
///
/// Every occurrence of an element or attribute is a usage, named by a key that ends in the sequence number of the node
/// that it stands under; so keys are as many as the document is long. Afterwards, however, only this shows of a usage:
/// that it linked an element to a parent first, that it marked an element as an attribute, or that it is an element's
/// first one that occurred once, or its first one that occurred more than once. Those are kept, at most a few for
/// each pair of names, with the moment of their first occurrence: declared in that order they give the model that all
/// usages give. A key can't come back once its node has ended, so the keys of the open nodes are all that is looked at.
class XMLDataWalk : public XmlHandler
{
    struct Usage;

public:
    /// An element of the model; `name` is its key there.
    struct Item
    {
        static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

        CString name;
        std::uint64_t firstOnce = kNever;     ///< when its first usage that occurred once was made
        std::uint64_t firstRepeated = kNever; ///< the same for one that occurred more than once
    };

    /// A name under a parent, either of a child element or of an attribute. The parent is null for the root.
    struct Pair
    {
        /// The name itself, without that of the parent.
        std::string_view queryName() const
        {
            return isAttribute && parent ? std::string_view(item->name).substr(parent->name.size() + 1) : item->name;
        }

        Item* parent;
        const char* local; ///< interned, and gone with the parser
        bool isAttribute;
        Item* item;
        Usage* usage; ///< the latest one of its key, which other pairs may have too
        bool isLinked = false;
    };

    /// Something to be declared: a usage, or a mere link under a key that another usage has.
    struct Declaration
    {
        std::uint64_t moment;
        const Pair* pair;
        std::uint64_t sequence; ///< the number in the usage's key
        bool repeats;
    };

    XMLDataWalk();

    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    bool wantsText() const override { return false; }

    /// The tag of the root, prefix included.
    const CString& queryRootTag() const { return rootTag; }

    /// What the document declares, in the order of its moments.
    std::vector<Declaration> takeDeclarations();

private:
    // The latest usage of a key, with the sequence number that makes its whole key and the depth of the node that has
    // it.
    struct Usage
    {
        const Pair* pair = nullptr;
        std::uint64_t sequence = 0;
        std::uint64_t moment = 0;
        std::size_t depth = 0;
        std::size_t declaration = kNotKept;
        bool repeats = false;
    };

    struct Node
    {
        Item* item;
        std::uint64_t sequence;
        std::size_t shadowed; // how many there were when it began
        std::size_t undecided;
    };

    static constexpr std::size_t kNotKept = std::numeric_limits<std::size_t>::max();

    Pair& pairOf(Item* parent, const char* local, bool isAttribute);
    std::size_t slotOf(const Item* parent, const char* local, bool isAttribute) const;
    void growSlots();
    Pair& addPair(Item* parent, const char* local, bool isAttribute);
    Item& itemNamed(const CString& name);
    void occur(Pair& pair);
    void beginUsage(Pair& pair);
    void repeatUsage(Usage& usage);
    void keep(Usage& usage);
    bool isOpen(const Usage& usage) const;
    void closeNode();

    CString rootTag;
    std::deque<Item> items;
    std::unordered_map<std::string_view, Item*> itemsByName;
    std::deque<Pair> pairs;
    std::vector<Pair*> pairSlots; // open addressing, a power of two
    std::unordered_map<CString, Usage> usages;
    std::vector<Node> open;                         // from the root to the node in hand
    std::vector<std::pair<Usage*, Usage>> shadowed; // usages of open nodes whose key an inner node has too
    std::vector<Usage*> undecided;                  // of open nodes: each may be its element's first that occurred once
    std::vector<Declaration> declarations;
    std::uint64_t lastMoment = 0;
    std::uint64_t lastSequence = 0;
};
