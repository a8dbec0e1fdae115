#include "Import/Schema/Literal/SchemaNotes.h"

#include "Import/Schema/SchemaBuiltIns.h"

#include <algorithm>

namespace {

struct Tag
{
    std::string_view name;
    SourceReport::Construct construct;
};

constexpr Tag kTags[] = {
    {"group", SourceReport::groupPassedOver},
    {"attributeGroup", SourceReport::groupPassedOver},
    {"extension", SourceReport::extensionPassedOver},
    {"simpleType", SourceReport::simpleTypePassedOver},
    {"any", SourceReport::anyElement},
    {"anyAttribute", SourceReport::anyAttribute},
};
constexpr std::string_view kDeclarations[] = {"element", "attribute", "complexType"};
constexpr std::string_view kPrefixes[] = {"xsd", "xs"};

template <class Range>
bool holds(const Range& range, std::string_view word)
{
    return std::find(std::begin(range), std::end(range), word) != std::end(range);
}

std::string_view valueOf(XmlAttributes attributes, std::string_view name)
{
    for (std::size_t i = 0; i < attributes.size(); ++i)
        if (!attributes[i].name.prefix && attributes[i].name.local == name)
            return attributes[i].value;
    return {};
}

} // namespace

void SchemaNotes::scope(const XmlScope& scope)
{
    line = static_cast<std::uint32_t>(scope.line);
    outline.scope(scope);
}

void SchemaNotes::startElement(XmlName name, XmlAttributes attributes)
{
    std::string_view called;
    for (const char* attribute : {"name", "ref", "base"})
        if (called.empty())
            called = valueOf(attributes, attribute);
    isNamed.push_back(!called.empty() || names.empty());
    if (isNamed.back())
        names.emplace_back(called);
    const auto* const tag =
        std::find_if(std::begin(kTags), std::end(kTags), [&](const Tag& row) { return row.name == name.local; });
    if (tag != std::end(kTags))
        report.add(tag->construct, {file, line}, names.back());
    else if (holds(kDeclarations, name.local) && !holds(kPrefixes, name.prefix ? name.prefix : ""))
        report.add(SourceReport::declarationPassedOver, {file, line}, names.back());
    else if (holds(kDeclarations, name.local))
        noteDeclaration(valueOf(attributes, "name"), valueOf(attributes, "type"));
    outline.startElement(name, attributes);
}

void SchemaNotes::endElement()
{
    if (isNamed.back())
        names.pop_back();
    isNamed.pop_back();
    outline.endElement();
}

// Of the built-in types the literal reading knows decimal and date; the others that are more than text become text.
void SchemaNotes::noteDeclaration(std::string_view name, std::string_view type)
{
    if (!name.empty() && !isXmlName(name))
        report.add(SourceReport::impossibleName, {file, line}, name);
    const std::size_t colon = type.find(':');
    const bool isBuiltIn = colon != type.npos && holds(kPrefixes, type.substr(0, colon));
    const std::string_view local = type.substr(isBuiltIn ? colon + 1 : 0);
    if (!isBuiltIn && !type.empty())
        types.push_back({line, CString(type)});
    else if (isBuiltIn && builtInKind(local).value_or(SourceTypes::kindText) != SourceTypes::kindText &&
             local != "decimal" && local != "date")
        report.add(SourceReport::typeUnknown, {file, line}, type);
}

void SchemaNotes::reportUnknownTypes(const std::function<bool(std::string_view type)>& isKnown)
{
    for (const NamedType& type : types)
        if (!isKnown(type.name))
            report.add(SourceReport::typeUnknown, {file, type.line}, type.name);
    types.clear();
}
