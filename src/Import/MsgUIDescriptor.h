#pragma once

#include "Base/Text.h"

class FullMessage;
class MsgBase;

/// Where an importer's source comes from, and what the command line calls the importer.
struct ImporterSource
{
    const char* word = "";     ///< on the command line
    unsigned int filterId = 0; ///< string-table id of the file filter's label, its pattern's follows it; 0: no files
    bool readsTables = false;  ///< the source is a data source, not a file
    bool namesFolders = false; ///< the source says where its types lie; a base path has no effect
    bool isSet = false;        ///< read in full without being asked to, several files or folders as one source
};

/// What the program says of an importer before there is one: its names, its default base path, the page that follows
/// the choice of it, and how to make one.
class MsgUIDescriptor
{
public:
    /// Makes a new importer, owned by the caller.
    using Factory = MsgBase* (*)();
    using FullFactory = FullMessage* (*)();

    /// `fullFactory` makes the importer that reads the same kind of source by all the rules of its language; null where
    /// there is none.
    MsgUIDescriptor(const CString& basePath, unsigned int nameId, unsigned int descriptionId, Factory factory,
                    long nextPage, FullFactory fullFactory = nullptr, const ImporterSource& source = {});

    /// Name and description come from the string table on first request.
    CString& getName();
    CString& getDescription();
    long queryNextPage() const { return nextPage; }
    CString& getBasePath() { return basePath; }
    const ImporterSource& querySource() const { return source; }

    /// A new importer, owned by the caller.
    MsgBase* create() const { return factory(); }

    /// A new importer for the full reading, owned by the caller; null when hasFull() is false.
    FullMessage* createFull() const { return fullFactory ? fullFactory() : nullptr; }
    bool hasFull() const { return fullFactory != nullptr; }

    /// Whether a reading in full takes several files or folders as one source, and finds documents by catalogues.
    bool readsSets() const { return hasFull() || source.isSet; }

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

/// The importers in display order, ended by null.
extern MsgUIDescriptor* g_amud[];

/// The importer that the command line calls `word`; null when none is called so.
MsgUIDescriptor* importerNamed(std::string_view word);
