#pragma once

#include "Base/KeyedTable.h"
#include "Files/FileFinder.h"
#include "Import/Full/Catalogs.h"
#include "Import/Full/SourceTypes.h"

/// The parameter entities of a DTD, and the local files that they name. A file is found through the catalogues, else
/// like a schemaLocation, relative to the file that declares the entity (XML 1.0, 4.2.2). Each file is read once.
/// Contents of files live as long as the types.
///
/// Bounds: entities nest at most 40 deep. Once their text exceeds 16 MB, it may be at most 100 times the text read.
/// Exceeding a bound throws SourceRefusal. An entity or a file that refers to itself is left out at that reference.
class DTDEntities
{
public:
    /// A readable text: a file, or the value of an entity.
    struct Text
    {
        std::string_view text;
        SourcePlace start;       ///< of its first character; line 0 if it is in no file
        bool isOpen = false;     ///< being read, so that a reference to it is a loop
        bool isComposed = false; ///< with references replaced, so its lines and columns are not those of a file
    };

    /// The three must outlive this object. `types` stores the texts and is used for refusals.
    DTDEntities(SourceTypes& types, SourceReport& report, const Catalogs& catalogs) :
        types(types), report(report), catalogs(catalogs)
    {}

    /// Adds the text of a file, under the name `shownName` in the report. `bytes` may be in any encoding that
    /// decodeText() knows; they must live as long as the types, because names are views of them. A `file` without an
    /// identity, such as standard input, isn't recognised if a module names it again. A caller that reads the text
    /// without open() sets `isOpen` itself, so that a reference from a module back to it is detected.
    Text& addFile(const FoundFile& file, const CString& shownName, std::string_view bytes);

    /// Declares an entity by its value. Character references and references to the entities known so far are replaced
    /// in it (XML 1.0, 4.5). The first declaration of a name takes precedence (4.2). `name` and `value` must live as
    /// long as the types.
    void declare(std::string_view name, std::string_view value, SourcePlace place);
    /// Declares an entity by the file that holds it; the file is opened at the first reference. The first declaration
    /// of a name takes precedence.
    void declareModule(std::string_view name, std::string_view publicId, std::string_view systemId, SourcePlace place);

    /// Returns the text to read for a reference; null if there is none, or if it is being read already, which is
    /// reported. A missing module is searched and reported once. `depth` is the number of entities around the
    /// reference. Call close() at the text's end. Throws SourceRefusal if a bound is exceeded, or a file exists but
    /// can't be read.
    Text* open(std::string_view name, std::size_t depth, SourcePlace where);
    /// Ends the reading of a text that open() returned.
    void close(Text& text) { text.isOpen = false; }

    /// Returns whether an entity was referred to, or declared again, since it was declared. It must have been declared.
    bool isUsed(std::string_view name) const { return entities.find(name)->isUsed; }

    /// Returns whether a file has been read, as the DTD itself or as a module of it.
    bool hasRead(FileId file) const { return filesById.contains(file); }

private:
    // A declared parameter entity. Its texts are views of the DTD that declares it, or of a composed value.
    struct Entity
    {
        std::string_view name;
        Text value;                // of a module only its place, whose file is the base of `systemId`
        std::string_view publicId; // set for a module only
        std::string_view systemId;
        Text* text = nullptr;  // null for a module that isn't loaded or is missing
        std::size_t depth = 1; // levels of entities in its value, itself included
        bool isModule = false;
        bool isMissing = false;
        bool isUsed = false;

        std::string_view queryName() const { return name; }
    };

    Entity* add(std::string_view name, SourcePlace place);
    Text* load(const Entity& entity, SourcePlace where);
    void replaceReferences(Entity& entity, std::string_view value);
    std::size_t replaceOne(Entity& entity, std::string_view rest, CString& out);
    void spend(std::size_t bytes);
    void checkDepth(std::size_t depth);

    SourceTypes& types;
    SourceReport& report;
    const Catalogs& catalogs;
    // Deques, because pointers to entities and texts are kept.
    std::deque<Entity> owned;
    KeyedTable<Entity, &Entity::queryName> entities;
    std::deque<Text> files;
    std::map<FileId, Text*> filesById;
    std::map<std::uint32_t, CString> folders; // folder by the number of a file
    FileFinder finder;
    std::size_t read = 0;     // bytes of the files, decoded
    std::size_t expanded = 0; // bytes of the texts that references opened, and of composed values
};
