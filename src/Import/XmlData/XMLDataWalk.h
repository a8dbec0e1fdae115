#pragma once

#include "Base/KeyedTable.h"
#include "Import/SourceReport.h"
#include "Xml/XmlParser.h"

#include <cstdint>
#include <deque>
#include <limits>
#include <vector>

/// Walks an instance document as it is read, and keeps of it what the message model will look different for.
///
/// Every occurrence of an element or attribute is a usage, named by a key that ends in the sequence number of the node
/// that it stands under; so keys are as many as the document is long. Afterwards, however, only this shows of a usage:
/// that it linked an element to a parent first, that it marked an element as an attribute, or that it is an element's
/// first one that occurred once, or its first one that occurred more than once. Those are kept, at most a few for
/// each pair of names, with the moment of their first occurrence: declared in that order they give the model that all
/// usages give. A key can't come back once its node has ended, so the keys of the open nodes are all that is looked at.
///
/// Several documents can be walked as one body of examples. A key is then one pair's alone, and of each pair it is kept
/// that it occurred more than once somewhere, so what there is doesn't hang on the order of the documents.
class XMLDataWalk : public XmlHandler
{
    static constexpr std::size_t kNotKept = std::numeric_limits<std::size_t>::max();

public:
    /// An element of the model; `name` is its key there.
    struct Item
    {
        static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

        const CString& queryName() const { return name; }

        CString name;
        std::uint64_t firstOnce = kNever;     ///< when its first usage that occurred once was made
        std::uint64_t firstRepeated = kNever; ///< the same for one that occurred more than once
    };

    struct Pair;

    /// The latest usage of a key, with the sequence number that makes its whole key and the depth of the node that has
    /// it.
    struct Usage
    {
        const Fingerprint& queryKey() const { return key; }

        /// Field by field: a whole one would go through the stack, which has to be waited for at every element.
        void begin(Pair& newPair, std::uint64_t newSequence, std::uint64_t newMoment, std::size_t newDepth)
        {
            pair = &newPair;
            sequence = newSequence;
            moment = newMoment;
            depth = newDepth;
            declaration = kNotKept;
            repeats = false;
        }

        Fingerprint key; ///< all but the sequence number
        Pair* pair = nullptr;
        std::uint64_t sequence = 0;
        std::uint64_t moment = 0;
        std::size_t depth = 0;
        std::size_t declaration = kNotKept;
        bool repeats = false;
    };

    /// A name under a parent, either of a child element or of an attribute. The parent is null for the root.
    struct PairKey
    {
        Item* parent;
        const char* local; ///< interned, and gone with the parser
        std::uint32_t document;
        bool isAttribute;

        friend bool operator==(const PairKey&, const PairKey&) = default;
    };

    struct Pair
    {
        const PairKey& queryKey() const { return key; }

        /// The name itself, without that of the parent.
        std::string_view queryName() const
        {
            const std::string_view name = item->name;
            return key.isAttribute && key.parent ? name.substr(key.parent->name.size() + 1) : name;
        }

        PairKey key;
        Item* item;
        Usage* usage;             ///< of this key; other pairs may have the same
        Pair* follower = nullptr; ///< what came after it last time
        bool isLinked = false;
        bool isKeptRepeated = false; ///< of a body of examples: a declaration of it that repeats is kept
    };

    /// Something to be declared: a usage, or a mere link under a key that another usage has.
    struct Declaration
    {
        std::uint64_t moment;
        const Pair* pair;
        std::uint64_t sequence; ///< the number in the usage's key
        bool repeats;
    };

    /// `isBody`: of examples. What is left out goes into `report`.
    XMLDataWalk(SourceReport& report, bool isBody);

    /// Comes before each document, which the report has as `file`.
    void beginDocument(std::uint32_t file);

    void entityLeftOut(std::string_view name, XmlPlace place) override;
    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    bool wantsText() const override { return false; }

    /// The tag of the root, prefix included; of several documents' the first by name.
    const CString& queryRootTag() const { return rootTag; }

    /// What the documents declare, in the order of its moments. Called once, at the end.
    std::vector<Declaration> takeDeclarations();

private:
    struct Node
    {
        Item* item;
        std::uint64_t sequence;
        std::size_t shadowed; // how many there were when it began
        std::size_t undecided;
    };

    Pair& pairOf(Item* parent, const char* local, bool isAttribute);
    Pair& addPair(const PairKey& key, std::uint32_t hash);
    Item& itemNamed(CString name);
    Usage& usageOf(const Fingerprint& key);
    void takeRoot(CString tag);
    void occur(Pair& pair);
    void beginUsage(Pair& pair);
    void repeatUsage(Usage& usage, Pair& pair);
    void keep(Usage& usage);
    bool isOpen(const Usage& usage) const;
    void closeNode();

    SourceReport& report;
    const bool isBody;
    std::uint32_t file = 0;
    CString rootTag;
    std::deque<Item> items;
    KeyedTable<Item, &Item::queryName> itemsByName;
    std::deque<Pair> pairs; // behind one that stands before all
    KeyedTable<Pair, &Pair::queryKey, PairKey> pairsByKey;
    Pair* latest; // the one that was come by last
    std::deque<Usage> usages;
    KeyedTable<Usage, &Usage::queryKey, Fingerprint> usagesByKey;
    std::vector<Node> open; // from the root to the node in hand

    // A node inside another one of its name has the same keys but for the sequence number. What the outer one knows
    // under such a key is laid aside here and put back when the inner one ends, since the outer one goes on.
    std::vector<std::pair<Usage*, Usage>> shadowed;

    // That a usage occurred once is only known when its node ends. Until then those wait here that may turn out to be
    // their element's first of that kind.
    std::vector<Usage*> undecided;

    std::vector<Declaration> declarations;
    std::uint64_t lastMoment = 0;
    std::uint64_t lastSequence = 0;
};

/// Names are interned, so their addresses say which they are.
inline std::uint32_t keyHash(const XMLDataWalk::PairKey& key)
{
    const std::uint64_t mixed =
        (reinterpret_cast<std::uintptr_t>(key.parent) ^ reinterpret_cast<std::uintptr_t>(key.local) * 2) +
        key.isAttribute;
    return static_cast<std::uint32_t>(mixed * 0x9E3779B97F4A7C15 >> 32);
}
