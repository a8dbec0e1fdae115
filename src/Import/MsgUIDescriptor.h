#pragma once

#include "Base/Text.h"

class FullMessage;
class MsgBase;

/// The source of an importer, and its name on the command line. The flags tell the wizard and the command line what to
/// offer, so neither depends on an importer.
struct ImporterSource
{
    const char* word = "";     ///< on the command line
    unsigned int filterId = 0; ///< string-table id of the file filter's label, its pattern's follows it; 0: no files
    bool readsTables = false;  ///< the source is a data source, not a file
    bool namesFolders = false; ///< the source names the folders of its types; a base path has no effect
    bool isSet = false;        ///< always read in full, several files or folders as one source
    bool hasFolders = false;   ///< the same; the filter's pattern selects the files in folders
    bool hasCatalogs = false;  ///< finds documents by catalogues, although it has no full reading of its own
};

/// The static description of an importer: its names, default base path, next page of the wizard, and factories. One row
/// of the table of importers; rows live as long as the program.
class MsgUIDescriptor
{
public:
    /// Makes a new importer, owned by the caller.
    using Factory = MsgBase* (*)();
    using FullFactory = FullMessage* (*)();

    /// `nameId` and `descriptionId` are ids of the string table, `nextPage` the id of the page that selects the source.
    /// `fullFactory` makes the importer that reads the same kind of source by all rules of its language; null if there
    /// is none.
    MsgUIDescriptor(const CString& basePath, unsigned int nameId, unsigned int descriptionId, Factory factory,
                    long nextPage, FullFactory fullFactory = nullptr, const ImporterSource& source = {});

    /// Return the name and the description; both are loaded from the string table at the first call. The references are
    /// valid as long as the row.
    CString& getName();
    CString& getDescription();
    long queryNextPage() const { return nextPage; }
    /// Returns the default base path, which the caller may change.
    CString& getBasePath() { return basePath; }
    const ImporterSource& querySource() const { return source; }

    /// Returns a new importer, owned by the caller.
    MsgBase* create() const { return factory(); }

    /// Returns a new importer for the full reading, owned by the caller; null if hasFull() is false.
    FullMessage* createFull() const { return fullFactory ? fullFactory() : nullptr; }
    /// Returns whether there is an importer for the full reading.
    bool hasFull() const { return fullFactory != nullptr; }

    /// Returns whether the full reading reads several files or folders as one source.
    bool readsSets() const { return hasFull() || source.isSet; }

    /// Returns whether the full reading finds documents by catalogues.
    bool readsCatalogs() const { return readsSets() || source.hasCatalogs; }

    /// Returns whether a folder may be the source, which only the full reading reads if hasFull() is true.
    bool readsFolders() const { return readsSets() || source.hasFolders; }

private:
    CString name;
    CString description;
    CString basePath;
    unsigned int nameId;        // 0 once loaded
    unsigned int descriptionId; // 0 once loaded
    long nextPage;
    Factory factory;
    FullFactory fullFactory;
    ImporterSource source;
};

/// All importers in display order, followed by null.
extern MsgUIDescriptor* g_amud[];

/// Returns the importer with this name on the command line; null if there is none.
MsgUIDescriptor* importerNamed(std::string_view word);
