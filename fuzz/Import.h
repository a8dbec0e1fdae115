#pragma once

#include "Base/MessageBox.h"
#include "Folder.h"
#include "Import/MsgBase.h"
#include "Target.h"
#include "Xml/XmlParser.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

/// True for a main type that can stand as a tag; names outside ASCII are left out.
inline bool isTag(const CString& name)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    return !name.empty() && isLetter(name[0]) && std::all_of(name.begin(), name.end(), [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

/// Ends the program when the document of an import is not well-formed. The main type of some importers may be no name:
/// such a document isn't looked at.
inline void checkDocument(MsgBase& importer)
{
    struct Ignore : XmlHandler
    {
        void startElement(XmlName, XmlAttributes) override {}
        void endElement() override {}
        bool wantsText() const override { return false; }
    } ignore;
    CString document;
    importer.getXML(document);
    if (!isTag(importer.queryMainTypeName()))
        return;
    if (const auto error = parseXmlText(document, ignore)) {
        std::fprintf(stderr, "%d:%d %s\n%s\n", error->line, error->linepos, error->reason.c_str(), document.c_str());
        std::abort();
    }
}

/// Imports a file and checks the document.
inline void importFile(MsgBase& importer, const CString& fileName)
{
    setMessageBoxHandler([](const CString&, const CString&) {});
    if (importer.parseFile(fileName, importer.getBasePath()))
        checkDocument(importer);
}

/// The same with bytes as the file.
inline void importBytes(MsgBase& importer, std::string_view bytes)
{
    static Folder folder;
    folder.write("source", bytes);
    importFile(importer, folder.path + "source");
}
