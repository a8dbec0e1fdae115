#include "Import/Full/FullMessage.h"

#include "Base/Progress.h"
#include "Import/Full/EqualTypes.h"
#include "Import/Full/MainElement.h"
#include "Import/Full/RootNames.h"
#include "Import/Full/SourceNames.h"
#include "Import/Full/SpaceFolders.h"
#include "Import/Full/TypeDeclarations.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

// The steps of import(), each of which needs the ones before:
//
// - read() collects records, fields and enumerations by index, under the names of the source.
// - chooseMain() finds the main types. It may copy records, and names the main records after their elements.
// - mergeEqualTypes() joins equal types of several namespaces, which changes indices.
// - RecordOrder selects the records to import, and puts components before their users.
// - SourceNames makes names unique, and turns repeated fields into tables.
// - TypeDeclarations adds the types to the model, in that order, under their final names.
namespace {

// Returns the file's name without folder and suffix, as an XML name.
CString nameOfFile(const CString& fileName)
{
    CString name(stemOf(fileName));
    for (char& c : name)
        if (!isXmlName(CString("_") + c) && static_cast<unsigned char>(c) < 0x80)
            c = '_';
    if (!isXmlName(name))
        name.insert(0, 1, '_');
    return isXmlName(name) ? name : "_";
}

// Adds the types that a message may choose by xsi:type to the order. Such a type can refer to further abstract types,
// so the walk includes the types that it adds.
void visitChoices(const SourceTypes& types, RecordOrder& order)
{
    std::unordered_multimap<SourceTypes::Index, SourceTypes::Index> choicesOf(types.choosers.begin(),
                                                                              types.choosers.end());
    std::vector<bool> isVisited(types.choices.size());
    for (std::size_t i = 0; i < order.query().size(); ++i) {
        const auto [first, last] = choicesOf.equal_range(order.query()[i]);
        for (auto chooser = first; chooser != last; ++chooser)
            if (!isVisited[chooser->second]) {
                isVisited[chooser->second] = true;
                for (const SourceTypes::Index record : types.choices[chooser->second])
                    order.visit(record);
            }
    }
}

// Lets each copy of a record choose the types that the record chooses.
void copyChoosers(SourceTypes& types, std::span<const std::pair<SourceTypes::Index, SourceTypes::Index>> copies)
{
    const std::unordered_multimap<SourceTypes::Index, SourceTypes::Index> choicesOf(types.choosers.begin(),
                                                                                    types.choosers.end());
    for (const auto& [record, copy] : copies) {
        const auto [first, last] = choicesOf.equal_range(record);
        for (auto chooser = first; chooser != last; ++chooser)
            types.choosers.emplace_back(copy, chooser->second);
    }
}

} // namespace

// The records of the main types, and the files that declare their elements.
struct FullMessage::MainTypes
{
    std::vector<Index> records;
    std::vector<std::uint32_t> files;
    bool isRequested = false; // chosen by the caller or by the sources: only what they reach is imported
};

std::unique_ptr<FullMessage> FullMessage::createAnother() const
{
    // Some kinds of source only have the full reading.
    std::unique_ptr<FullMessage> another(row.hasFull() ? row.createFull() : dynamic_cast<FullMessage*>(row.create()));
    another->furtherFiles = furtherFiles;
    another->roots = roots;
    another->layout = layout;
    another->mergesEqual = mergesEqual;
    another->folders = folders;
    another->givenName = givenName;
    another->catalogFiles = catalogFiles;
    return another;
}

int FullMessage::parse(const CString& source, const CString& basePath, const CString& fileName)
{
    forget();
    try {
        import(source, fileName, basePath);
        return 1;
    } catch (const SourceRefusal& refusal) {
        report.release({}); // nothing was imported, so all that was found counts
        SourceFault fault = refusal.fault;
        if (fault.file.empty())
            fault.file = fileName;
        return fail(refusal.text, fault);
    }
}

// Clears the results of the last import outside of the model.
void FullMessage::forget()
{
    mainType.clear();
    mainTypes.clear();
    sectionEntities.clear();
    unusedEntities.clear();
    unusedFolders.clear();
    catalogs.emplace(report);
}

void FullMessage::import(const CString& source, const CString& fileName, const CString& basePath)
{
    SourceTypes types(fileName, laysOutByNamespace() ? &folders : nullptr);
    for (const CString& file : catalogFiles)
        catalogs->load(file);
    read(source, fileName, types, report);
    beginWork(Work::arranging);
    if (types.empty() && isEmptyAllowed) {
        mainType = toXmlText(givenName);
        return;
    }
    if (types.empty())
        refuseEmpty(fileName);
    MainTypes main = chooseMain(types, fileName);
    types.candidates = std::vector<SourceTypes::Candidate>(); // frees them: a DTD has one for each element
    if (laysOutByNamespace() && mergesEqual)
        mergeEqualTypes(types, main.records);
    declare(types, main, basePath);
    for (const auto& [uri, folder] : folders)
        if (!types.hasSpace(uri))
            unusedFolders.push_back(uri);
}

void FullMessage::refuseEmpty(const CString& fileName)
{
    report.release({});
    const CString losses = report.lossesInWords(); // may be the reason
    throw SourceRefusal{fileName + " declares no element, type or enumeration.",
                        {"", "it declares no element, type or enumeration" + (losses.empty() ? "" : "; " + losses)}};
}

// Names the types and declares them in the model. Without requested types, these are all types, after those that the
// main types reach, and all named enumerations, even if no field uses them.
void FullMessage::declare(SourceTypes& types, const MainTypes& main, const CString& basePath)
{
    RecordOrder order({types}, types.records.size());
    for (const Index record : main.records)
        order.visit(record);
    visitChoices(types, order);
    for (Index record = 0; !main.isRequested && record < types.records.size(); ++record)
        order.visit(record);
    SourceNames names(types, report);
    names.name(order.query(), main.records, main.files);
    if (!main.isRequested)
        names.nameUnused();
    std::vector<CString> paths = pathsOf(types, basePath);
    // Each field may hold the path of its type.
    types.spend(std::ranges::max(paths, {}, &CString::size).size() * types.fieldCount());
    TypeDeclarations declarations(types, model, std::move(paths));
    for (Index enumeration = 0; !main.isRequested && enumeration < types.enumerations.size(); ++enumeration)
        if (types.enumerations[enumeration].isNamed)
            declarations.declareEnumeration(enumeration);
    declarations.declareRecords(order.query());
}

// Returns the folder of each namespace, with a final backslash; without namespaces that of the main type alone.
std::vector<CString> FullMessage::pathsOf(const SourceTypes& types, const CString& basePath) const
{
    if (!laysOutByNamespace())
        return {basePath + mainType + "\\"};
    std::vector<CString> paths = foldersOf(types.spaces);
    for (CString& path : paths)
        path = basePath + path + (path.empty() ? "" : "\\");
    return paths;
}

// Sets the name of the document, and returns the records of the main types.
FullMessage::MainTypes FullMessage::chooseMain(SourceTypes& types, const CString& fileName)
{
    MainTypes main;
    const std::vector<Index> chosen = chooseCandidates(types, fileName, main.isRequested);
    if (chosen.empty())
        mainType = nameOfFile(fileName);
    else
        mainType = types.candidates[chosen.front()].name;
    if (!givenName.empty())
        mainType = toXmlText(givenName);
    // Two elements of one type are two main types with two names, so all but the first get a copy of the record.
    std::unordered_map<Index, Index> met;        // first candidate by record
    std::vector<std::pair<Index, Index>> copies; // pairs of a record and its copy
    for (const Index candidate : chosen) {
        const SourceTypes::Candidate& element = types.candidates[candidate];
        main.files.push_back(element.place.file);
        Index record = recordOf(types, candidate);
        const auto [first, isNew] = met.try_emplace(record, candidate);
        const SourceTypes::Candidate& other = types.candidates[first->second];
        if (!isNew && element.name == other.name && element.space == other.space)
            continue;
        // A type of another namespace keeps its name there, whichever elements have it.
        if (!isNew || types.records[record].space != element.space) {
            copies.emplace_back(record, copyFor(types, element, record));
            record = copies.back().second;
        }
        types.records[record].name = element.name;
        if (!element.description.empty())
            types.records[record].description = element.description;
        main.records.push_back(record);
    }
    copyChoosers(types, copies);
    return main;
}

// Returns a copy of a record, for another main element of its type.
SourceTypes::Index FullMessage::copyFor(SourceTypes& types, const SourceTypes::Candidate& element, Index record)
{
    const std::span<const SourceTypes::Field> own = types.fieldsOf(record);
    // Copied first, because setFields() moves the fields that `own` refers to.
    const std::vector<SourceTypes::Field> fields(own.begin(), own.end());
    SourceTypes::Record made = types.records[record];
    made.space = element.space;
    made.place = element.place;
    made.fieldCount = 0;
    const Index copy = types.addRecord(made);
    types.setFields(copy, fields);
    return copy;
}

// Returns the requested elements, else those that the sources name as main types, else one for each source.
std::vector<SourceTypes::Index> FullMessage::chooseCandidates(const SourceTypes& types, const CString& fileName,
                                                              bool& areRequested)
{
    std::vector<Index> chosen;
    for (Index i = 0; roots.empty() && i < types.candidates.size(); ++i)
        if (types.candidates[i].message != SourceTypes::kNone)
            chosen.push_back(i);
    std::ranges::sort(chosen, {}, [&](Index i) { return types.candidates[i].message; });
    areRequested = !roots.empty() || !chosen.empty();
    MainElement choice(types);
    std::vector<Index> offered;
    // The candidates of all sources are collected even if main types are requested, because the wizard offers them.
    for (Index source = 0; source <= furtherFiles.size(); ++source) {
        const std::vector<Index> all = choice.choose(source == 0 ? fileName : furtherFiles[source - 1], source);
        offered.insert(offered.end(), all.begin(), all.end());
        if (!areRequested && !all.empty())
            chosen.push_back(all.front());
    }
    mainTypes = rootNamesOf(types, offered);
    if (roots.empty())
        return chosen;
    const RootNames names(types);
    std::unordered_set<Index> met;
    for (const CString& root : roots)
        // The same type may be requested twice, by different names.
        if (const Index candidate = names.find(root); met.insert(candidate).second)
            chosen.push_back(candidate);
    return chosen;
}

// Returns the record of a main type.
SourceTypes::Index FullMessage::recordOf(SourceTypes& types, Index candidate)
{
    const SourceTypes::Candidate& element = types.candidates[candidate];
    if (element.isAbstract || element.hasAbstractType)
        report.add(SourceReport::mainTypeAbstract, element.place, element.name);
    const Index record = types.recordOf(candidate);
    if (element.choice != SourceTypes::kNone)
        types.choosers.emplace_back(record, element.choice);
    return record;
}
