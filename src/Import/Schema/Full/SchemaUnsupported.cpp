#include "Import/Schema/Full/SchemaUnsupported.h"

#include "Import/Full/FullReadingHint.h"
#include "Xml/XmlParser.h"

namespace {

// Reads the root of a schema.
struct SchemaRoot : XmlHandler
{
    void startElement(XmlName name, XmlAttributes attributes) override
    {
        if (isSeen)
            return;
        isSeen = true;
        const std::string_view prefix = name.prefix ? name.prefix : "";
        hasOtherPrefix = name.local == std::string_view("schema") && prefix != "xs" && prefix != "xsd";
        for (std::size_t i = 0; i < attributes.size(); ++i)
            hasTarget |= !attributes[i].name.prefix && attributes[i].name.local == std::string_view("targetNamespace");
    }
    void endElement() override {}
    bool wantsText() const override { return false; }

    bool isSeen = false;
    bool hasOtherPrefix = false;
    bool hasTarget = false;
};

} // namespace

CString unsupportedInSchema(const CString& fileName)
{
    CString unsupported;
    SchemaRoot root;
    if (parseXmlFile(fileName, root))
        return {};
    addUnsupported(unsupported, root.hasTarget, "a target namespace");
    addUnsupported(unsupported, root.hasOtherPrefix, "a prefix other than xs");
    return unsupported;
}
