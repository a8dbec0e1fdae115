#pragma once

#include "Files/FileFinder.h"
#include "Import/Schema/Literal/SchemaOutline.h"
#include "Import/SourceReport.h"

#include <deque>
#include <set>

/// Finds the documents of a schema: those that a schema file includes, imports and redefines, and those that they refer
/// to in turn. They come depth first in document order. Only local files count; each comes once, whatever its name.
class SchemaCache
{
public:
    using Locations = std::vector<SchemaOutline::Location>;

    /// A schemaLocation, and the file that it leads to.
    struct Document
    {
        CString name;      ///< of the file; empty if there is none
        CString shownName; ///< the same for messages
        SourcePlace place;
        std::string_view location; ///< the schemaLocation as written
    };

    /// Adds the schemaLocations of a document, relative to its file. Messages call it `shownName`. The texts must
    /// outlive the walk. The first document added is the schema itself, which next() never returns.
    void add(const CString& fileName, const CString& shownName, const Locations& locations);

    /// Returns the next document, for which add() is to be called; nothing at the end.
    std::optional<Document> next();

private:
    // A document with locations that are still waiting.
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

    std::vector<Reference> waiting; // a stack: includes may nest ten thousand deep
    std::deque<Holder> holders;
    std::set<FileId> visited;
    FileFinder finder;
};
