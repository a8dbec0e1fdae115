#pragma once

#include "Import/MsgBase.h"
#include "Xml/XmlParser.h"

#include <set>

/// Returns the fault of an import's message document, which may not be well-formed, or have a TYPE that is neither a
/// kind nor the NAME of a type. Empty if there is none. With `hasAllTypes` false, a TYPE may be missing: the importer
/// copies type names from its source. The document is written as text without a tree, so nothing else guarantees
/// either.
inline CString documentFault(MsgBase& importer, bool hasAllTypes = true)
{
    struct Names : XmlHandler
    {
        void startElement(XmlName name, XmlAttributes attributes, const XmlScope&) override
        {
            const bool isType = std::string_view(name.local) == "BROKERTYPEDESCRIPTION";
            for (std::size_t i = 0; i < attributes.size(); ++i) {
                const auto [attribute, value] = attributes[i];
                if (isType && std::string_view(attribute.local) == "NAME")
                    types.emplace(value);
                else if (std::string_view(attribute.local) == "TYPE")
                    references.emplace(value);
            }
        }
        void endElement() override {}
        bool wantsText() const override { return false; }

        std::set<CString> types{"String", "Number", "Time"}, references;
    } names;
    CString document;
    importer.getXML(document);
    if (const auto error = parseXmlText(document, names))
        return formatText("%d:%d %s in ", error->line, error->linepos, error->reason.c_str()) + document;
    for (const CString& reference : names.references)
        if (hasAllTypes && !names.types.contains(reference))
            return "no type is called " + reference + " in " + document;
    return {};
}
