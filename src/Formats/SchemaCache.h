#pragma once

#include "Formats/SchemaLocation.h"

#include <deque>
#include <set>

/// Finds the documents that make up a schema: what a schema file includes, imports and redefines, and what those do in
/// turn. They come depth first in document order, local files only, each once however it is named.
class SchemaCache
{
public:
    /// Adds what a document names, by schemaLocation, relative to that document. The texts must live as long as the
    /// walk. The first one to be added is the schema's own; it will not come again.
    void add(const CString& fileName, const std::vector<std::string_view>& locations);

    /// The next file to be read, whose locations are then to be added; nothing at the end. What names no file is left
    /// out.
    std::optional<CString> next();

private:
    struct Reference
    {
        std::size_t folder; // an index into `folders`
        std::string_view location;
    };

    std::vector<Reference> waiting; // the next one last; an include may lie ten thousand documents deep
    std::deque<CString> folders;
    std::set<FileId> met;
    FileFinder finder;
};
