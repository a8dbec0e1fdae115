#pragma once

#include "Base/KeyedTable.h"
#include "Base/Progress.h"
#include "Import/Dtd/DTDRepetitions.h"
#include "Import/MsgBase.h"

#include <vector>

/// A name that a DTD mentions, with the names of its children. Names are views into the text that is being parsed, or
/// into the importer's arena. The arena also holds this object, which is never destroyed, but released with it.
///
/// A name with a mark, such as "item+", has an entry of its own beside "item", which has the children.
class DTDElement
{
public:
    /// `place` is the offset of the first mention in the text.
    DTDElement(std::string_view name, std::size_t place) : place(place), name(name) {}

    /// Returns the name with its marks.
    std::string_view queryName() const { return name; }

    /// A child, and the offset at which it is mentioned. An entry of a linked list, because a vector that grows in an
    /// arena leaves its old memory unused.
    struct Child
    {
        DTDElement* element = nullptr;
        std::size_t place = 0;
        Child* next = nullptr;
    };

    /// Appends a child, with room from `memory`. The same child may be appended again. Two entries in a row show that
    /// it repeats; further ones are dropped, which bounds the memory of statements that overlap.
    void addChild(DTDElement* child, std::size_t place, std::pmr::memory_resource& memory);

    /// Moves the cursor to the first child. Returns nonzero if there is one.
    int beginEnum()
    {
        cursor = first;
        return first ? 1 : 0;
    }

    /// Returns the number of entries, so a child that repeats counts twice.
    std::uint32_t queryChildCount() const { return childCount; }

    /// Returns the child under the cursor and moves on; null at the end. Valid as long as the arena.
    const Child* enumNext();

    /// Marks the field as that of an attribute of `record`, mentioned at `at`. The first mention takes precedence.
    void setAttribute(const DTDElement& record, std::size_t at)
    {
        if (at < attributeAt) {
            attributeAt = at;
            attributeOf = &record;
        }
    }

    /// Returns the offset of the attribute of `record` whose field this is; kNowhere if there is none.
    std::size_t attributeIn(const DTDElement& record) const { return attributeOf == &record ? attributeAt : kNowhere; }

    /// The model's element for the name without its marks; null until it is declared.
    Element* element = nullptr;

    std::size_t place = 0;                   ///< offset of its first mention in the text
    std::size_t attributeAt = kNowhere;      ///< offset of the first attribute whose field it is
    const DTDElement* attributeOf = nullptr; ///< the record of that attribute
    std::size_t textAt = kNowhere;           ///< offset of its declaration if that allows text
    bool isDeclared = false;                 ///< by a statement with the word ELEMENT
    bool hasStatement = false;               ///< by one that begins with it
    bool isAttribute = false;                ///< the field of an attribute
    bool isNoted = false;                    ///< reported already

private:
    std::uint8_t repetitions = 0; // how often the last parent was given this child in a row, up to 2
    std::uint32_t childCount = 0;
    const DTDElement* lastParent = nullptr; // the parent that was given this child last
    std::string_view name;
    Child* first = nullptr;
    Child* last = nullptr;
    const Child* cursor = nullptr;
};

/// The importer of DTD files. It reads ELEMENT and ATTLIST declarations only. A name with children or attributes
/// becomes a record. A child marked '*' or '+' repeats. Each attribute is a text field.
///
/// Statements run from the k-th '<' to the k-th '>'. A '<' or '>' in a comment or an entity value therefore makes
/// starts and ends drift apart, and a statement then spans several declarations. Names in such statements are
/// registered as written, but overlapping statements don't scan the text again. Names in existing documents depend on
/// this rule, so it must stay: DTDFullMessage reads by the rules of XML, and DTDNotes reports what this reading misses.
///
/// The import fails if overlapping statements come to more than 128 MB and 16 times the text, or if the main type's
/// name, which is in the folder of every type, exceeds 4,096 bytes.
class DTDMessage : public MsgBase
{
public:
    /// Merges by name: an element that several records contain is one element.
    DTDMessage() : MsgBase(1) {}

    /// Returns a new importer, owned by the caller; the factory of the table of importers.
    static MsgBase* New() { return new DTDMessage; }

    /// Returns 1 also for a text without declarations.
    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    /// Returns the name of the first element that this importer has read, in all its imports.
    CString queryMainTypeName() const override { return mainType; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    /// The row of the importer, which also holds its base path.
    static MsgUIDescriptor m_descr;

protected:
    void onCancelled() override;

private:
    // The mark of a name, see getModifiers().
    enum Modifiers
    {
        modNone = 0,
        modStar = 1,
        modPlus = 2,
        modOptional = 4
    };

    // The state of one parse.
    struct Text
    {
        explicit Text(std::string_view whole) : whole(whole) {}

        std::string_view whole;
        DTDGroups groups{whole};
        DTDRepetitions repetitions{whole};
        ProgressMeter meter{Work::reading, whole.size(), 1024}; // in bytes; reports after 1,024 statements and names
        TextPlaces places{whole};
        // Offsets of the ELEMENT and the ATTLIST that were read last: statements that overlap read them again.
        std::size_t lastElement = kNowhere, lastAttlist = kNowhere;
    };

    // Steps that return int return nonzero on success, and 0 if a bound is exceeded, which they have reported.
    int scan();
    void forget();
    void reportAt(std::size_t place) { text->meter.step(place); }
    bool isComment(std::size_t start) const;
    std::size_t endFrom(std::size_t start, std::size_t from) const;
    int doParse(std::size_t start, std::size_t end);
    int doParseElement(std::size_t start, std::size_t end);
    void noteDeclaration(DTDElement& element, std::string_view name, std::size_t start);
    bool holdsTextOnly(std::size_t open, std::size_t end) const;
    void doParseField(std::size_t start, std::size_t end, DTDElement* parent);
    void formatField(std::string_view content, std::string_view mark, DTDElement* parent);
    void doParseAttlist(std::size_t start, std::size_t end);
    void noteLost(std::string_view attlist);
    std::size_t placeOf(std::string_view part) const
    {
        return static_cast<std::size_t>(part.data() - text->whole.data());
    }
    DTDElement& addDTDElement(std::string_view child, std::size_t place, DTDElement* parent);
    DTDElement& addPiece(std::string_view piece, DTDElement* parent)
    {
        return addDTDElement(piece, placeOf(piece), parent);
    }
    DTDElement& addAttribute(std::string_view element, std::string_view attribute);
    void declareAll(const CString& path);
    void declareRecord(DTDElement& record, const CString& path);
    void declareField(const DTDElement::Child& mention, const CString& path, RunningHash usageKey,
                      const DTDElement& parent, Element* record);
    // Returns the entry of `child` without its marks, whose name is `name`; `child` if there is none.
    DTDElement& unmarkedOf(DTDElement& child, std::string_view name)
    {
        DTDElement* const unmarked = name.size() == child.queryName().size() ? &child : dtdElements.find(name);
        return unmarked ? *unmarked : child;
    }
    int refuse(std::string_view statement, const CString& bound);
    SourcePlace statementPlace(std::size_t at) const;
    void noteName(DTDElement& entry, const DTDElement& mention, const Element& element);
    void note(SourceReport::Construct construct, DTDElement& entry, std::size_t place, std::string_view name);
    static Modifiers getModifiers(std::string_view& name);

    CString mainType;     // see queryMainTypeName()
    CString previousMain; // its value before the current import, restored if that is cancelled
    KeyedTable<DTDElement, &DTDElement::queryName> dtdElements;
    Arena memory; // holds the entries, and the names that the text doesn't contain as they are
    Text* text = nullptr;
    bool needsNoConversion = false; // no name is converted, so the model identifies usages by names, without keys
    CString joined;                 // a buffer for names that the text doesn't contain as they are
};
