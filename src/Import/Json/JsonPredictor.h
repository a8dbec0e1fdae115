#pragma once

#include "Base/Arena.h"
#include "Base/NumberTable.h"

#include <string_view>
#include <vector>

/// Skips messages that are built like earlier ones: the text between two values is the same as before, whitespace
/// included, and each value has a kind that earlier values at its place had. Such a message adds nothing to the shapes,
/// so it is compared with known texts instead of being scanned token by token (speculative parsing; Y. Li et al.,
/// "Mison: a fast JSON parser for data analytics", PVLDB 10, 2017).
///
/// The known messages are a graph. Its nodes are the positions of values, each inside the position of its object or
/// array. Its edges are the texts between a value and the next one. An edge between members of one object goes to a
/// member that first occurred later, so no path through the graph gives a key twice in one object.
class JsonPredictor
{
public:
    /// The kinds of values. A place may have had several.
    enum Kind : std::uint8_t
    {
        isObject = 1,
        isArray = 2,
        isNumber = 4,
        isTime = 8,
        isText = 16
    };

    using Position = std::uint32_t;
    /// The position outside of all containers.
    static constexpr Position kOutside = 0;

    JsonPredictor() : nodes(1) {}

    /// Returns whether messages are worth learning: false once most of them differ from each other.
    bool isLearning() const { return misses < kPatience || misses < hits; }

    /// The result of skip(): the bytes of whole messages with the text before them, the line feeds among these, and the
    /// offset after the last line feed. All are 0 if no message is known.
    struct Skipped
    {
        std::size_t bytes = 0;
        std::uint32_t lines = 0;
        std::size_t lineStart = 0;
    };

    /// Compares a text from the end of a message on with the known messages, until the first that differs or is cut off
    /// by the end of the text. `around` is the position of the messages: outside, or in an array that has had an item.
    Skipped skip(Position around, std::string_view text);

    /// Returns the position of a member or item. `number` identifies it in `around`, and ascends with the members of an
    /// object. Ends learning if there are too many positions.
    Position inside(Position around, std::uint32_t number);

    /// A value of a scanned message that contains no other value: a text, number, literal or empty container.
    struct Leaf
    {
        std::uint64_t begin; ///< offset in the file
        std::uint64_t end;   ///< one past the last byte
        Position position;   ///< see inside()
        std::uint8_t kind;   ///< a Kind; 0 for null
        bool isForward;      ///< follows the value before it in the order of the members
    };

    /// Adds a scanned message to the graph. `text` begins at the end of the message before it, which has the offset
    /// `begin` in the file. `around` as for skip(). Does nothing without a text.
    void learn(Position around, std::string_view text, std::uint64_t begin, const std::vector<Leaf>& leaves);

private:
    static constexpr std::uint64_t kPatience = 100; // messages
    static constexpr std::size_t kMaxNodes = 1 << 16;
    static constexpr std::size_t kMaxText = 1 << 22; // bytes of all edges
    static constexpr std::uint32_t kMaxBranches = 8; // edges from one position, which are tried in turn

    struct Edge
    {
        std::string_view text; // from one value to the next
        Position target;
        std::uint32_t next;      // another edge from the same position; 0: none
        std::uint32_t lines;     // line feeds in the text
        std::uint32_t lineStart; // offset after the last one
    };

    struct Node
    {
        std::uint32_t firstEdge = 0;
        std::uint8_t kinds = 0;
    };

    void giveUp()
    {
        hits = 0;
        misses = kPatience;
    }
    const Edge* match(Position from, std::string_view text) const;
    void addEdge(Position from, std::string_view text, Position target);

    std::vector<Node> nodes; // by position
    std::vector<Edge> edges{{}};
    NumberTable positions; // by the position around, and number
    Arena texts;
    std::size_t textSize = 0;
    std::uint64_t hits = 0, misses = 0; // messages that were skipped, and that were not
};
