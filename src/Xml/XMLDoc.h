#pragma once

#include "Base/SourceFault.h"
#include "Xml/Dom.h"
#include "Xml/XmlParser.h"

/// Reads XML files for importers: one DOM document, the file loaded into it, and the failure worded for the user.
class XmlDocument
{
public:
    /// Doesn't fail: without memory for a document, setFile() returns 0, and queryParseError() is message 2205.
    XmlDocument();

    /// Replaces the document by a file's. Returns 1, or 0 with a queryParseError().
    int setFile(const CString& fileName);

    /// Parses a file of at most `most` bytes into calls of `handler`, without building a tree. Returns as setFile()
    /// does. The tree of an earlier setFile() stays.
    int streamFile(const CString& fileName, XmlHandler& handler, std::size_t most = kAnySize);

    /// Returns the root element, or null.
    IXMLDOMElement getElement() const;

    /// Returns another reference to the document, null if there is none. It keeps the nodes alive after this object
    /// ends, but not after the next setFile().
    IXMLDOMDocument queryDocument() const { return document; }

    /// Returns message 2207 with line, column and reason of the last failure; empty after a success.
    const CString& queryParseError() const { return errorText; }

    /// Returns the last failure in parts. Line and column are 0 if the file could not be read. After a success only the
    /// file's name is set.
    const SourceFault& queryFault() const { return fault; }

    /// Returns the errno value with which the system failed to read the file; 0 if the document was at fault or the
    /// load succeeded.
    int querySystemError() const { return systemError; }

private:
    int setError(const CString& fileName, const IXMLDOMParseError& error, bool failed);

    IXMLDOMDocument document;
    CString errorText;
    SourceFault fault;
    int systemError = 0;
};
