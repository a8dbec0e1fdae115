#pragma once

#include "Base/MessageBox.h"
#include "Xml/Dom.h"
#include "Xml/XmlParser.h"

/// The one doorway through which importers read XML files: one DOM document, the file loaded into it, and its failure
/// worded for the user.
class XmlDocument
{
public:
    /// The object can be used in any case: without a document every load answers 0 and queryParseError() tells why.
    XmlDocument();

    /// Loads a file in the place of what was there. 1, or 0 with queryParseError().
    int setFile(const CString& fileName);

    /// Hands a file of at most `most` bytes to `handler` while it is read, with no tree made of it. Answers as
    /// setFile() does.
    int streamFile(const CString& fileName, XmlHandler& handler, std::size_t most = kAnySize);

    /// The root element, or null.
    IXMLDOMElement getElement() const;

    /// A reference of its own to the document, null when there is none.
    IXMLDOMDocument queryDocument() const { return document; }

    /// Message 2207 with line, column and reason of the last failure; empty after a success.
    const CString& queryParseError() const { return errorText; }

    /// The last failure in parts.
    const SourceFault& queryFault() const { return fault; }

    /// What kept the system from reading the file at the last failure, as an errno value; 0 when it was the document.
    int querySystemError() const { return systemError; }

private:
    int setError(const CString& fileName, const IXMLDOMParseError& error, bool failed);

    IXMLDOMDocument document;
    CString errorText;
    SourceFault fault;
    int systemError = 0;
};
