#pragma once

#include "Import/SourceReport.h"
#include "Xml/XmlParser.h"

#include <functional>

/// Stands between a schema document and its outline, and reports what the literal reading passes over: groups,
/// extensions, simple types, wildcards, and declarations under another prefix than it knows.
class SchemaNotes : public XmlHandler
{
public:
    /// `file` is the document's number in the report.
    SchemaNotes(XmlHandler& outline, SourceReport& report, std::uint32_t file) :
        outline(outline), report(report), file(file)
    {}

    void scope(const XmlScope& scope) override;
    void startElement(XmlName name, XmlAttributes attributes) override;
    void endElement() override;
    bool wantsText() const override { return false; }
    bool wantsScopes() const override { return true; }

    /// Reports the types that `isKnown` doesn't know, once the schema is read.
    void reportUnknownTypes(const std::function<bool(std::string_view type)>& isKnown);

private:
    struct NamedType
    {
        std::uint32_t line;
        CString name;
    };

    void noteDeclaration(std::string_view name, std::string_view type);

    XmlHandler& outline;
    SourceReport& report;
    const std::uint32_t file;
    std::uint32_t line = 0;
    std::vector<bool> isNamed;  // by open element; one without a name has that around it
    std::vector<CString> names; // of the others
    std::vector<NamedType> types;
};
