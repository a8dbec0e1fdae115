#pragma once

#include "Files/FileFinder.h"
#include "Import/Schema/Literal/SchemaOutline.h"
#include "Import/SourceReport.h"

#include <deque>
#include <set>

/// Finds the documents that make up a schema: what a schema file includes, imports and redefines, and what those do in
/// turn. They come depth first in document order, local files only, each once however it is named.
class SchemaCache
{
public:
    using Locations = std::vector<SchemaOutline::Location>;

    /// Where a document is named, and what that led to.
    struct Document
    {
        CString name;      ///< of the file; "" where there is none
        CString shownName; ///< of the same in messages
        SourcePlace place;
        std::string_view location; ///< as it is written
    };

    /// Adds what a document names, by schemaLocation, relative to that document, which messages show as `shownName`.
    /// The texts must live as long as the walk. The first one to be added is the schema's own; it will not come again.
    void add(const CString& fileName, const CString& shownName, const Locations& locations);

    /// The next file to be read, whose locations are then to be added; nothing at the end.
    std::optional<Document> next();

private:
    // Of a document whose locations wait.
    struct Holder
    {
        CString folder;
        CString shownName;
    };

    struct Reference
    {
        std::size_t holder; // an index into `holders`
        SourcePlace place;
        std::string_view location;
    };

    std::vector<Reference> waiting; // the next one last; an include may lie ten thousand documents deep
    std::deque<Holder> holders;
    std::set<FileId> met;
    FileFinder finder;
};
