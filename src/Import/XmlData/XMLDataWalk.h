#pragma once

#include "Base/KeyedTable.h"
#include "Import/SourceReport.h"
#include "Model/TypeModel.h"
#include "Xml/XmlParser.h"

#include <cstdint>
#include <deque>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// Reads an instance document as a stream, and keeps only what changes the model.
///
/// Every occurrence of an element or attribute is a usage. Its key ends in the sequence number of its parent node, so
/// there are as many keys as nodes. A usage only changes the model if it is the first to link an element to a parent or
/// to mark it as an attribute, or its element's first usage that occurs once, or more than once. Only those are kept, a
/// few for each pair of names, with the moment of their first occurrence. Declared in that order, they give the same
/// model as all usages. A key can't recur once its node has ended, so only the keys of open nodes are looked up.
///
/// Several documents can be read as one set of examples. Each key then belongs to one pair. Whether a pair ever
/// occurred more than once is kept, so the result doesn't depend on the order of the documents.
///
/// Time is linear in the documents, memory in the number of different pairs of names and in the depth.
class XMLDataWalk : public XmlHandler
{
    static constexpr std::size_t kNotKept = std::numeric_limits<std::size_t>::max();

public:
    struct Pair;

    /// An element of the model; `name` is its key in the model.
    struct Item
    {
        static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

        const CString& queryName() const { return name; }

        CString name;
        std::uint64_t firstOnce = kNever;     ///< moment of its first usage that occurred once
        std::uint64_t firstRepeated = kNever; ///< moment of its first usage that occurred more than once
        const Pair* table = nullptr;          ///< the pair of that usage
        const Item* attributeOf = nullptr;    ///< the element whose attribute it is
        const Pair* element = nullptr;        ///< its first pair as an element
        SourcePlace first{};                  ///< where it first occurred
        bool hasText = false;
    };

    /// The latest usage of a key, with the sequence number that completes the key, and the depth of its parent node.
    /// Usages are reused: the next node overwrites that of an ended one.
    struct Usage
    {
        const Fingerprint& queryKey() const { return key; }

        /// Assigns field by field: assigning a temporary would go through the stack, which stalls at every element.
        void begin(Pair& newPair, std::uint64_t newSequence, std::uint64_t newMoment, std::size_t newDepth)
        {
            pair = &newPair;
            sequence = newSequence;
            moment = newMoment;
            depth = newDepth;
            declaration = kNotKept;
            repeats = false;
            sharer = nullptr;
        }

        Fingerprint key; ///< without the sequence number
        Pair* pair = nullptr;
        std::uint64_t sequence = 0;
        std::uint64_t moment = 0; ///< of its first occurrence, counted in occurrences
        std::size_t depth = 0;
        std::size_t declaration = kNotKept; ///< index in `declarations`, if it is kept
        bool repeats = false;               ///< has occurred more than once
        const Pair* sharer = nullptr;       ///< another pair that occurred under this key, which counts as a repetition
    };

    /// The name of a child element or an attribute under a parent; the parent is null for the root. The document is
    /// part of it, because each parser interns names of its own, and may reuse the addresses of an earlier one.
    struct PairKey
    {
        Item* parent;
        const char* local; ///< interned; valid while the parser lives
        std::uint32_t document;
        bool isAttribute;

        friend bool operator==(const PairKey&, const PairKey&) = default;
    };

    /// All occurrences of a name under a parent's name, whatever their namespaces.
    struct Pair
    {
        const PairKey& queryKey() const { return key; }

        /// Returns the name without that of the parent.
        std::string_view queryName() const
        {
            const std::string_view name = item->name;
            return key.isAttribute && key.parent ? name.substr(key.parent->name.size() + 1) : name;
        }

        PairKey key;
        Item* item;
        Usage* usage;                   ///< of this pair's key; other pairs may share it
        Pair* follower = nullptr;       ///< the pair that came after it last time
        bool isLinked = false;          ///< its link to the parent is declared
        bool isKeptRepeated = false;    ///< in a set: a repeating declaration of it is kept
        SourcePlace first{};            ///< where it first occurred
        SourcePlace repeated{};         ///< where it first occurred more than once; line 0 if it never did
        const char* uri = nullptr;      ///< namespace of the latest occurrence, as interned by its parser
        const CString* space = nullptr; ///< namespace of the first occurrence; null if it has none
        SourcePlace otherSpace{};       ///< where it first occurred in another one; line 0 if it never did
    };

    /// An element to declare: for a usage, or only for a link under a key that another usage has.
    struct Declaration
    {
        std::uint64_t moment;
        const Pair* pair;
        std::uint64_t sequence; ///< of the key
        bool repeats;
    };

    /// `isBody` reads several documents as one set. Losses go into `report`.
    XMLDataWalk(SourceReport& report, bool isBody);

    /// Call it before each document; `file` is its number in the report. The parser of the last document may be gone.
    void beginDocument(std::uint32_t file);

    /// Reports a loss: the entity may hold elements.
    void entityLeftOut(std::string_view name, XmlPlace place) override;
    /// Counts an element and its attributes. Prefixes are ignored, but for the root's in queryRootTag().
    void startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope) override;
    void endElement() override;
    void text(std::string_view text) override
    {
        if (Item* const item = open.back().item; item && !item->hasText)
            item->hasText = !trimmed(text).empty();
    }

    /// Returns the tag of the root with its prefix; of several documents the first by name.
    const CString& queryRootTag() const { return rootTag; }

    /// Returns the declarations in the order of their moments. Call it once, at the end. Their pairs stay valid as long
    /// as this object.
    std::vector<Declaration> takeDeclarations();

    /// Reports what `model`, which holds the declarations, doesn't represent: text of records, elements that repeat and
    /// are single fields, attributes that share the element of a record or the field of a child, and equal names of
    /// several namespaces. Call it before the model makes tables.
    void reportLosses(const TypeModel& model) const;

private:
    // An open node. The document itself is one, without an item.
    struct Node
    {
        Item* item;
        std::uint64_t sequence;
        std::size_t shadowed; // sizes of `shadowed` and `undecided` when the node began
        std::size_t undecided;
    };

    SourcePlace currentPlace() const { return placeOf(locator->tagStart()); }
    SourcePlace placeOf(XmlPlace place) const { return {file, place.line, place.column}; }
    // Find an entry, or make it. References stay valid.
    Pair& pairOf(Item* parent, XmlName name, const char* uri, bool isAttribute);
    Pair& addPair(const PairKey& key, std::uint32_t hash, const char* uri);
    Item& itemNamed(CString name);
    Usage& usageOf(const Fingerprint& key);
    const CString* spaceOf(const char* uri);
    void noteSpace(Pair& pair, const char* uri);
    void reportMergedSpaces(const TypeModel& model) const;
    void setRootTag(CString tag);
    // Count an occurrence in the current node.
    void addOccurrence(Pair& pair);
    void beginUsage(Pair& pair);
    void repeatUsage(Usage& usage, Pair& pair);
    void keep(Usage& usage);
    bool isOpen(const Usage& usage) const;

    SourceReport& report;
    const bool isBody;
    std::uint32_t file = 0;
    const XmlLocator* locator = nullptr; // of the tag that begins
    CString rootTag;
    std::deque<Item> items; // deques, because items, pairs and usages point to each other
    KeyedTable<Item, &Item::queryName> itemsByName;
    std::deque<Pair> pairs; // the first one is a sentinel before all
    KeyedTable<Pair, &Pair::queryKey, PairKey> pairsByKey;
    Pair* latest; // the pair that occurred last
    std::deque<Usage> usages;
    KeyedTable<Usage, &Usage::queryKey, Fingerprint> usagesByKey;
    std::unordered_set<CString, KeyHash> spaces;                     // namespaces of all documents
    std::unordered_map<const char*, const CString*> spacesByAddress; // those of the current one, as interned
    std::vector<Node> open;                                          // from the root to the current node

    // A node nested in one of the same name has the same keys except for the sequence number. The outer node's usages
    // of such keys are saved here, and restored when the inner one ends.
    std::vector<std::pair<Usage*, Usage>> shadowed;

    // Usages that may be their element's first one that occurs once. That is only known when their node ends.
    std::vector<Usage*> undecided;

    std::vector<Declaration> declarations;
    std::uint64_t lastMoment = 0;   // occurrences so far
    std::uint64_t lastSequence = 0; // of the last node that began
};

/// Hashes addresses: names are interned, so equal names have equal addresses.
inline std::uint32_t keyHash(const XMLDataWalk::PairKey& key)
{
    return static_cast<std::uint32_t>(RunningHash::of(
        (reinterpret_cast<std::uintptr_t>(key.parent) ^ reinterpret_cast<std::uintptr_t>(key.local) * 2) +
        key.isAttribute));
}
