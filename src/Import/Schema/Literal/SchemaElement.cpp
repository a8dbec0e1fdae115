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

SchemaElement::SchemaElement(const Fingerprint& key, std::string_view parentName, std::string_view name,
                             std::string_view type) :
    key(key),
    name(name), type(type), marked(endsInMark(parentName, name))
{}
