#pragma once

#include "Import/Full/Catalogs.h"
#include "Import/Full/SourceTypes.h"
#include "Import/MsgBase.h"

#include <memory>

/// The base of the importers that read a source in full, by the rules of its language. An importer collects the
/// declarations of its source in read(). This class gives them their names, chooses the main type and declares all
/// types in the model.
///
/// The settings apply to all following imports. The results, from querySectionEntities() to queryMainTypes(), are those
/// of the last import; they are empty if it was cancelled.
class FullMessage : public MsgBase
{
public:
    /// `row` is the table row of the importer.
    explicit FullMessage(MsgUIDescriptor& row) : MsgBase(0), row(row) {}

    /// Sets the main types, and limits the import to the types that they reach. Without names, the source's own choice
    /// is used. A name is that of an element, else of a top-level type; "{URI}name", "prefix:name" with a prefix
    /// declared by the source, or the full name of an Avro type selects one of several of the same name.
    void setRoots(const std::vector<CString>& names) { roots = names; }

    /// The same for a single main type; "" for none.
    void setRoot(const CString& name) { roots.assign(name.empty() ? 0 : 1, name); }
    /// Returns the first of the requested main types; empty if there are none.
    CString queryRoot() const { return roots.empty() ? CString() : roots.front(); }

    /// Returns a new importer with the same settings, except entities, that has imported nothing. The wizard uses it to
    /// try another main type without losing the current result.
    std::unique_ptr<FullMessage> createAnother() const;

    /// How types are laid out below the base path.
    enum class Layout
    {
        automatic,  ///< byNamespace for several sources, else byMainType
        byMainType, ///< all in the folder of the main type
        byNamespace ///< each in the folder of its namespace; names are unique only there
    };
    /// Sets the layout; `automatic` at first.
    void setLayout(Layout wanted) { layout = wanted; }
    Layout queryLayout() const { return layout; }

    /// Returns whether the next import places each type in the folder of its namespace.
    bool laysOutByNamespace() const
    {
        return layout == Layout::byNamespace || (layout == Layout::automatic && !furtherFiles.empty());
    }

    /// Sets the folder of a namespace, used with Layout::byNamespace; "" is the base path itself.
    void setFolder(const CString& uri, const CString& folder) { folders[uri] = folder; }

    /// Sets whether equal types of several namespaces are merged into one in the folder `common`. Has an effect only if
    /// types are laid out by namespace.
    void setMergesEqual(bool on) { mergesEqual = on; }

    /// Sets the name of the document; "" means that of the first main type.
    void setName(const CString& name) { givenName = name; }

    /// Sets the catalogues for finding documents and modules, in order of precedence.
    void setCatalogs(const std::vector<CString>& files) { catalogFiles = files; }

    /// Sets parameter entities with their values, which are declared before a DTD. Returns false if sources of this
    /// kind have none.
    virtual bool setEntities(const std::vector<std::pair<CString, CString>>&) { return false; }

    /// Returns the entities that leave out sections; empty unless all sections of the last source were left out.
    const std::vector<CString>& querySectionEntities() const { return sectionEntities; }

    /// Returns the entities of setEntities() that the last source neither refers to nor declares.
    const std::vector<CString>& queryUnusedEntities() const { return unusedEntities; }

    /// Returns the namespaces of setFolder() that no type of the last source has.
    const std::vector<CString>& queryUnusedFolders() const { return unusedFolders; }

    /// Returns the names of possible main types as setRoots() takes them, the source's own choice first.
    const std::vector<CString>& queryMainTypes() const { return mainTypes; }

    /// Returns the constructs of a file that the literal reading doesn't support, in words; empty if there are none.
    virtual CString unsupportedByLiteral(const CString&) const { return {}; }

    /// Returns true, because full readings read sets.
    bool setFurtherFiles(const std::vector<CString>& files) override
    {
        furtherFiles = files;
        return true;
    }
    /// Declares finished types, so the model only orders them. Shows a SourceRefusal and returns 0.
    int parse(const CString& source, const CString& basePath, const CString& fileName) final;
    /// Returns the name of the document: the given one, else that of the first main type, else the file's.
    CString queryMainTypeName() const override { return mainType; }
    MsgUIDescriptor* queryDescriptor() const override { return &row; }

protected:
    /// Returns the requested main types; empty if the source chooses.
    const std::vector<CString>& queryRoots() const { return roots; }

    /// Adds the declarations of `source`, the argument of parse(), to `types`. Throws SourceRefusal if it can't be
    /// imported. Texts in `types` must live as long as `types`: views of `source` do, others need keep() or adopt().
    virtual void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) = 0;

    std::vector<CString> furtherFiles;    // read as one set with the file of the import
    CString givenName;                    // of the document; "" means that of the first main type
    std::optional<Catalogs> catalogs;     // those of one import
    std::vector<CString> sectionEntities; // see querySectionEntities(); read() adds to it
    std::vector<CString> unusedEntities;  // see queryUnusedEntities(); read() adds to it

private:
    using Index = SourceTypes::Index;

    void onCancelled() override { forget(); }
    void forget();
    void import(const CString& source, const CString& fileName, const CString& basePath);
    struct MainTypes;
    [[noreturn]] void refuseEmpty(const CString& fileName);
    void declare(SourceTypes& types, const MainTypes& main, const CString& basePath);
    std::vector<CString> pathsOf(const SourceTypes& types, const CString& basePath) const;
    MainTypes chooseMain(SourceTypes& types, const CString& fileName);
    std::vector<Index> chooseCandidates(const SourceTypes& types, const CString& fileName, bool& areRequested);
    Index recordOf(SourceTypes& types, Index candidate);
    static Index copyFor(SourceTypes& types, const SourceTypes::Candidate& element, Index record);

    MsgUIDescriptor& row;
    std::vector<CString> roots;
    Layout layout = Layout::automatic;
    SourceTypes::Folders folders;
    bool mergesEqual = false;
    CString mainType;
    std::vector<CString> mainTypes;
    std::vector<CString> catalogFiles;
    std::vector<CString> unusedFolders;
};
