#pragma once

#include "Base/KeyedTable.h"
#include "Files/FileFinder.h"
#include "Import/Full/Catalogs.h"
#include "Import/Full/SourceTypes.h"

/// The parameter entities of a DTD, and the local files that they name. A file is found by the catalogues, else as a
/// schemaLocation is, relative to the one that declares the entity, and read once. Texts live as long as the types.
///
/// Bounds: entities nest at most 40 deep; where their text comes to more than 16 MB, it may be a hundred times what was
/// read. What passes them throws SourceRefusal. An entity that is inside itself, and a file, is left out there.
class DTDEntities
{
public:
    /// What can be read: a file, or the value of an entity.
    struct Text
    {
        std::string_view text;
        SourcePlace start;
        bool isOpen = false; ///< is being read
        bool isMade = false; ///< from others, so that lines and columns in it are those of no file
    };

    DTDEntities(SourceTypes& types, SourceReport& report, const Catalogs& catalogs) :
        types(types), report(report), catalogs(catalogs)
    {}

    /// The DTD itself.
    Text& addMain(const CString& fileName, std::string_view bytes);

    /// Declares an entity by its value, in which character references and the entities known so far are replaced (XML
    /// 1.0, 4.4.5), or by the file that holds it. The first declaration of a name holds.
    void declare(std::string_view name, std::string_view value, SourcePlace place);
    void declareModule(std::string_view name, std::string_view publicId, std::string_view systemId, SourcePlace place);

    /// The text to be read for a reference, or null when there is none, which has then been noted; a module is looked
    /// for, and missed, once. `depth` is how many entities the reference stands in.
    Text* open(std::string_view name, std::size_t depth, SourcePlace where);
    void close(Text& text) { text.isOpen = false; }

    /// Whether a file has been read, as the DTD itself or a module of it.
    bool hasRead(FileId file) const { return filesById.contains(file); }

private:
    struct Entity
    {
        std::string_view name;
        Text value;
        std::string_view publicId; // of a module
        std::string_view systemId;
        Text* text = nullptr;  // null for a module that isn't loaded, or isn't there
        std::size_t depth = 1; // how deep entities nest in it
        bool isModule = false;
        bool isMissing = false;

        std::string_view queryName() const { return name; }
    };

    Entity* add(std::string_view name, SourcePlace place);
    std::optional<FoundFile> find(const Entity& entity, CString& path);
    Text* load(const Entity& entity, SourcePlace where);
    void replaceReferences(Entity& entity, std::string_view value);
    std::size_t replaceOne(Entity& entity, std::string_view rest, CString& out);
    void spend(std::size_t bytes);
    void checkDepth(std::size_t depth);

    SourceTypes& types;
    SourceReport& report;
    const Catalogs& catalogs;
    std::deque<Entity> owned;
    KeyedTable<Entity, &Entity::queryName> entities;
    std::deque<Text> files;
    std::map<FileId, Text*> filesById;
    std::map<std::uint32_t, CString> folders; // by the number of the file that lies there
    FileFinder finder;
    std::size_t read = 0;
    std::size_t expanded = 0;
};
