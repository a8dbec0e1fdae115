#pragma once

#include "Import/Full/SourceTypes.h"
#include "Import/MsgBase.h"

/// The base of the importers that read a source in full, by the rules of its language. An importer says what its source
/// declares, read(); this names it, chooses the main type and declares it all in the model.
class FullMessage : public MsgBase
{
public:
    /// `row` is the importer that this one reads for.
    explicit FullMessage(MsgUIDescriptor& row) : MsgBase(0), row(row) {}

    /// Makes `name` the main type, and imports only what it reaches. "" leaves the choice to the source.
    void setRoot(const CString& name) { root = name; }
    const CString& queryRoot() const { return root; }

    /// The elements that could well be the main type, the one that the source's own choice falls on first.
    const std::vector<CString>& queryMainTypes() const { return mainTypes; }

    /// What a file uses that the literal reading of its kind doesn't know, in words; "" when that is nothing.
    virtual CString queryUses(const CString& fileName) const = 0;

    int parse(const CString& source, const CString& basePath, const CString& fileName) final;
    CString queryMainTypeName() const override { return mainType; }
    MsgUIDescriptor* queryDescriptor() const override { return &row; }

protected:
    /// Says what `source` (what parse() was given) declares. Throws SourceRefusal where it can't be imported.
    virtual void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) = 0;

private:
    using Index = SourceTypes::Index;
    struct Declaring;

    void onCancelled() override { forget(); }
    void forget();
    void import(const CString& source, const CString& fileName, const CString& basePath);
    Index chooseMain(SourceTypes& types, const CString& fileName);
    void declareRecord(Declaring& declaring, Index record);
    void declareEnumeration(Declaring& declaring, Index enumeration);
    void declareTable(Declaring& declaring, Index table);
    void declareField(Declaring& declaring, const SourceTypes::Field& field, Element* record);
    static const CString& typeName(Declaring& declaring, SourceTypes::Type type);
    Element* declareType(Declaring& declaring, std::string_view name, std::string_view description,
                         Element::ElementTypes type);

    MsgUIDescriptor& row;
    CString root;
    CString mainType;
    std::vector<CString> mainTypes;
};
