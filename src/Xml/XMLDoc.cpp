#include "Xml/XMLDoc.h"

#include "Resources/StringTable.h"
#include "Xml/XmlParser.h"

XmlDocument::XmlDocument() : document(IXMLDOMDocument::create())
{
    if (!document)
        errorText = loadText(IDS_NO_PARSER);
}

int XmlDocument::setFile(const CString& fileName)
{
    if (!document)
        return 0;
    const bool loaded = document.load(fileName);
    return setError(fileName, document.parseError(), !loaded);
}

int XmlDocument::streamFile(const CString& fileName, XmlHandler& handler, std::size_t most)
{
    // Needs no document, so it works without memory for one.
    const std::optional<IXMLDOMParseError> error = parseXmlFile(fileName, handler, most);
    return setError(fileName, error.value_or(IXMLDOMParseError()), error.has_value());
}

IXMLDOMElement XmlDocument::getElement() const
{
    return document ? document.documentElement() : IXMLDOMElement();
}

int XmlDocument::setError(const CString& fileName, const IXMLDOMParseError& error, bool failed)
{
    errorText.clear();
    systemError = error.systemError;
    fault = {fileName, error.reason, static_cast<long>(error.line), static_cast<long>(error.linepos)};
    if (failed)
        // Message 2207, also if the file could not be read: line and column are 0 then.
        errorText = formatText(loadText(IDS_PARSE_ERROR), static_cast<long>(error.line),
                               static_cast<long>(error.linepos), error.reason.c_str());
    return !failed;
}
