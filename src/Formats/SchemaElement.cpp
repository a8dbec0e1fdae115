#include "Formats/SchemaElement.h"

namespace {

/// FNV-1a (http://www.isthe.com/chongo/tech/comp/fnv/): a hash that can be carried on, from a parent's key to its
/// children's.
std::uint32_t carryOn(std::uint32_t hash, std::string_view text)
{
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193U;
    return hash;
}

constexpr std::uint32_t kStart = 0x811C9DC5U;

} // namespace

SchemaKey::SchemaKey(std::string_view name) : name(name), hash(carryOn(kStart, name)) {}

SchemaKey::SchemaKey(std::string_view parent, std::uint32_t parentHash, std::string_view name) :
    parent(parent), name(name), hash(carryOn(parentHash, name))
{}

bool SchemaKey::operator==(const SchemaKey& other) const
{
    if (hash != other.hash || parent.size() + name.size() != other.parent.size() + other.name.size())
        return false;
    if (parent.size() > other.parent.size())
        return other == *this;
    // The other key's parent is this one's and a piece of this one's name.
    const std::size_t piece = other.parent.size() - parent.size();
    const bool sameParent = parent.data() == other.parent.data() || other.parent.starts_with(parent);
    return sameParent && name.substr(piece) == other.name && name.starts_with(other.parent.substr(parent.size()));
}

bool SchemaKey::isMarked() const
{
    const std::string_view end = trimmed(name);
    if (end.empty()) {
        const std::string_view front = trimmed(parent);
        return front.size() > 1 && front.ends_with('*');
    }
    return end.ends_with('*') && (end.size() > 1 || !trimmed(parent).empty());
}
