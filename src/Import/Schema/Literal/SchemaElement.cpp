#include "Import/Schema/Literal/SchemaElement.h"

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

SchemaElement::SchemaElement(const Fingerprint& key, std::string_view parentName, const SchemaSaying& said) :
    key(key), name(said.name.data()), type(said.type.data()), nameSize(static_cast<std::uint32_t>(said.name.size())),
    typeSize(static_cast<std::uint32_t>(said.type.size())), place(said.place),
    marked(endsInMark(parentName, said.name)), isReferring(said.isReference), isOfRepeated(said.isInRepeated),
    loss(said.loss)
{
    static_assert(sizeof(SchemaElement) <= 64);
}
