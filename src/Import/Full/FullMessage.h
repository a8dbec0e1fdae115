#pragma once

#include "Import/Full/Catalogs.h"
#include "Import/Full/SourceTypes.h"
#include "Import/MsgBase.h"

#include <memory>

/// The base of the importers that read a source in full, by the rules of its language. An importer says what its source
/// declares, read(); this names it, chooses the main type and declares it all in the model.
class FullMessage : public MsgBase
{
public:
    /// `row` is the importer that this one reads for.
    explicit FullMessage(MsgUIDescriptor& row) : MsgBase(0), row(row) {}

    /// Makes these the main types, and imports only what they reach; none leave the choice to the source. Each is an
    /// element, else a type that is declared at the top; "{URI}name", or "prefix:name" with a prefix that the source
    /// declares, names one of several that are called alike.
    void setRoots(const std::vector<CString>& names) { roots = names; }

    /// The same for one, or none with "".
    void setRoot(const CString& name) { roots.assign(name.empty() ? 0 : 1, name); }
    CString queryRoot() const { return roots.empty() ? CString() : roots.front(); }

    /// Makes an importer with the same settings that has imported nothing yet.
    std::unique_ptr<FullMessage> createAnother() const;

    /// How types are laid out below the base path.
    enum class Layout
    {
        automatic,  ///< byNamespace for several sources, byMainType for one
        byMainType, ///< all in the folder of the main type
        byNamespace ///< each in the folder of its namespace, where it has its name to itself
    };
    void setLayout(Layout wanted) { layout = wanted; }
    Layout queryLayout() const { return layout; }

    /// Whether the types of the next import lie by namespace.
    bool laysOutByNamespace() const
    {
        return layout == Layout::byNamespace || (layout == Layout::automatic && !furtherFiles.empty());
    }

    /// The folder for the types of a namespace, where they lie by namespace; "" is the base path itself.
    void setFolder(const CString& uri, const CString& folder) { folders[uri] = folder; }

    /// Whether types of the same name and content in several namespaces become one, in the folder `common`, where they
    /// lie by namespace.
    void setMergesEqual(bool on) { mergesEqual = on; }

    /// The name of the whole, instead of the first main type's; "" for that one.
    void setName(const CString& name) { givenName = name; }

    /// The catalogues by which documents and modules are found, in this order.
    void setCatalogs(const std::vector<CString>& files) { catalogFiles = files; }

    /// Parameter entities, each with its value, that are declared in front of a DTD. False if the source has none.
    virtual bool setEntities(const std::vector<std::pair<CString, CString>>&) { return false; }

    /// The entities that leave out sections of the last source, when all its sections were left out.
    const std::vector<CString>& querySwitches() const { return switches; }

    /// The elements that could well be the main type, the one that the source's own choice falls on first.
    const std::vector<CString>& queryMainTypes() const { return mainTypes; }

    /// What a file uses that the literal reading of its kind doesn't know, in words; "" when that is nothing.
    virtual CString queryUses(const CString&) const { return {}; }

    int parse(const CString& source, const CString& basePath, const CString& fileName) final;
    CString queryMainTypeName() const override { return mainType; }
    MsgUIDescriptor* queryDescriptor() const override { return &row; }

protected:
    /// For an importer that reads several files as one source: what setFurtherFiles() was given.
    bool keepFurtherFiles(const std::vector<CString>& files)
    {
        furtherFiles = files;
        return true;
    }
    const std::vector<CString>& queryFurtherFiles() const { return furtherFiles; }
    const std::vector<CString>& queryRoots() const { return roots; }
    const Catalogs& queryCatalogs() const { return catalogs; }
    void addSwitch(std::string_view entity) { switches.emplace_back(entity); }

    /// Says what `source` (what parse() was given) declares. Throws SourceRefusal where it can't be imported.
    virtual void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) = 0;

private:
    using Index = SourceTypes::Index;
    struct Declaring;

    void onCancelled() override { forget(); }
    void forget();
    void import(const CString& source, const CString& fileName, const CString& basePath);
    struct MainTypes;
    MainTypes chooseMain(SourceTypes& types, const CString& fileName);
    std::vector<Index> chooseCandidates(const SourceTypes& types, const CString& fileName, bool& areAskedFor);
    Index recordOf(SourceTypes& types, Index candidate);
    static Index copyFor(SourceTypes& types, const SourceTypes::Candidate& element, Index record);
    void declareRecord(Declaring& declaring, Index record);
    void declareEnumeration(Declaring& declaring, Index enumeration);
    void declareTables(Declaring& declaring, Index outer);
    void declareTable(Declaring& declaring, Index table);
    void declareFields(Declaring& declaring, std::span<const SourceTypes::Field> fields, Element* record);
    static Name& typeName(Declaring& declaring, SourceTypes::Type type);
    Element* declareType(Declaring& declaring, Index space, std::string_view name, std::string_view description,
                         Element::ElementTypes type);

    MsgUIDescriptor& row;
    std::vector<CString> furtherFiles;
    std::vector<CString> roots;
    Layout layout = Layout::automatic;
    SourceTypes::Folders folders;
    bool mergesEqual = false;
    CString givenName;
    CString mainType;
    std::vector<CString> mainTypes;
    std::vector<CString> catalogFiles;
    Catalogs catalogs{report};
    std::vector<CString> switches;
};
