#pragma once

#include "Formats/MsgBase.h"
#include "Platform/MessageBox.h"
#include "Platform/Xml/XmlParser.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

/// Bytes that can be read under a file name, and are on no disk.
class MemoryFile
{
public:
    explicit MemoryFile(std::string_view bytes) : descriptor(::memfd_create("fuzz", 0))
    {
        while (!bytes.empty()) {
            const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
            if (count <= 0)
                std::abort();
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    ~MemoryFile() { ::close(descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    CString path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    int descriptor;
};

/// True for a main type that can stand as a tag; names outside ASCII are left out.
inline bool isTag(const CString& name)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    return !name.empty() && isLetter(name[0]) && std::all_of(name.begin(), name.end(), [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

/// Imports a file, and ends the program when the document that comes out is not well-formed. An importer whose main
/// type may be no name says so by `mayBeNoName`: its document is looked at when it is one.
inline void importFile(MsgBase& importer, const CString& fileName, bool mayBeNoName = false)
{
    struct Ignore : XmlHandler
    {
        void startElement(XmlName, XmlAttributes) override {}
        void endElement() override {}
    } ignore;
    setMessageBoxHandler([](const CString&, const CString&) {});
    const int imported = importer.parseFile(fileName, importer.getBasePath());
    CString document;
    importer.getXML(document);
    if (!imported || (mayBeNoName && !isTag(importer.queryMainTypeName())))
        return;
    if (const auto error = parseXmlText(document, ignore)) {
        std::fprintf(stderr, "%d:%d %s\n%s\n", error->line, error->linepos, error->reason.c_str(), document.c_str());
        std::abort();
    }
}

/// The same with bytes as the file.
inline void importBytes(MsgBase& importer, std::string_view bytes, bool mayBeNoName = false)
{
    importFile(importer, MemoryFile(bytes).path(), mayBeNoName);
}
