#include "Import/Schema/Literal/SchemaElement.h"

// The mark is at the end of the key's text, which is the parent's name followed by the own one. The key is only kept as
// a hash, so the two names are tested.

namespace {

bool endsInMark(std::string_view parentName, std::string_view name)
{
    const std::string_view end = trimmed(name);
    if (end.empty()) {
        const std::string_view front = trimmed(parentName);
        return front.size() > 1 && front.ends_with('*');
    }
    return end.ends_with('*') && (end.size() > 1 || !trimmed(parentName).empty());
}

} // namespace

std::string_view unmarkedName(std::string_view name)
{
    name = trimmed(name);
    if (name.ends_with('*'))
        name.remove_suffix(1);
    return name;
}

SchemaElement::SchemaElement(const Fingerprint& key, std::string_view parentName, const SchemaEntryContent& content) :
    key(key), name(content.name.data()), type(content.type.data()),
    nameSize(static_cast<std::uint32_t>(content.name.size())),
    typeSize(static_cast<std::uint32_t>(content.type.size())), place(content.place),
    marked(endsInMark(parentName, content.name)), isReferring(content.isReference), isOfRepeated(content.isInRepeated),
    isOfAttribute(content.isAttribute), loss(content.loss)
{
    static_assert(sizeof(SchemaElement) <= 64);
}
