#include "Broker/Client/TypeDocument.h"

#include "Xml/XmlParser.h"

namespace {

// Names in type documents have no namespace, so a name with a prefix is another one.
bool isCalled(XmlName name, std::string_view wanted)
{
    return !name.prefix && name.local == wanted;
}

// Reads the name from the root and counts the elements directly below it.
class TypeNameReader final : public XmlHandler
{
public:
    void startElement(XmlName name, XmlAttributes attributes, const XmlScope&) override
    {
        if (depth == 0 && isCalled(name, "BROKERTYPEDESCRIPTION"))
            readName(attributes);
        contentElements += depth == 1;
        ++depth;
    }

    void endElement() override { --depth; }
    bool wantsText() const override { return false; }

    // False for a document with another root, because no name was read.
    bool isAcceptable() const { return !typeName.empty() && contentElements <= 1; }
    const CString& queryName() const { return typeName; }

private:
    void readName(XmlAttributes attributes)
    {
        for (std::size_t i = 0; i < attributes.size(); ++i)
            if (isCalled(attributes[i].name, "NAME"))
                typeName = attributes[i].value;
    }

    CString typeName;
    std::size_t depth = 0;
    std::size_t contentElements = 0;
};

} // namespace

std::optional<CString> queryTypeName(std::string_view document)
{
    TypeNameReader reader;
    if (parseXmlText(document, reader) || !reader.isAcceptable())
        return {};
    return reader.queryName();
}
