#include "Import/Full/FullMessage.h"

#include "Base/Fingerprint.h"
#include "Base/Progress.h"
#include "Import/Full/MainElement.h"
#include "Import/Full/RootNames.h"
#include "Import/Full/SourceNames.h"
#include "Import/Full/SpaceFolders.h"

#include <algorithm>
#include <unordered_map>

namespace {

// What is left of a file's name without folder and suffix, as an XML name.
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

// What a message chooses a type from comes with it.
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

SourceTypes::Index spaceOf(const SourceTypes& types, SourceTypes::Type type)
{
    switch (type.kind) {
    case SourceTypes::kindEnumeration:
        return types.enumerations[type.index].space;
    case SourceTypes::kindRecord:
        return types.records[type.index].space;
    case SourceTypes::kindTable:
        return types.tables[type.index].space;
    default:
        return 0;
    }
}

} // namespace

// The records of the main types, and the documents whose elements these are.
struct FullMessage::MainTypes
{
    std::vector<Index> records;
    std::vector<std::uint32_t> files;
};

// What one import declares from.
struct FullMessage::Declaring
{
    SourceTypes& types;
    std::vector<CString> paths;     // by namespace
    std::vector<bool> enumerations; // those that are declared
    std::vector<bool> tables;
    Element* first;                       // type
    CString name, description, knownType; // kept for their room

    const CString& fullName(Index space, std::string_view shortName)
    {
        return knownType.assign(paths[space]).append(shortName);
    }
};

int FullMessage::parse(const CString& source, const CString& basePath, const CString& fileName)
{
    forget();
    try {
        import(source, fileName, basePath);
        return 1;
    } catch (const SourceRefusal& refusal) {
        SourceFault fault = refusal.fault;
        if (fault.file.empty())
            fault.file = fileName;
        return fail(refusal.text, fault);
    }
}

// What the last import has left beside the model.
void FullMessage::forget()
{
    mainType.clear();
    mainTypes.clear();
    switches.clear();
    ownRoots.clear();
    catalogs.clear();
}

void FullMessage::import(const CString& source, const CString& fileName, const CString& basePath)
{
    const bool bySpace = laysOutByNamespace();
    SourceTypes types(fileName, bySpace ? &folders : nullptr);
    for (const CString& file : catalogFiles)
        catalogs.load(file);
    read(source, fileName, types, report);
    beginWork(Work::arranging);
    if (types.empty())
        throw SourceRefusal{fileName + " declares no element, type or enumeration.",
                            {"", "it declares no element, type or enumeration"}};
    const MainTypes main = chooseMain(types, fileName);
    RecordOrder order(types);
    for (const Index record : main.records)
        order.visit(record);
    visitChoices(types, order);
    for (Index record = 0; queryRoots().empty() && record < types.records.size(); ++record)
        order.visit(record);
    SourceNames names(types, report);
    names.name(order.query(), main.records, main.files);
    if (queryRoots().empty())
        names.nameUnused();
    Declaring declaring{types,
                        {basePath + mainType + "\\"},
                        std::vector<bool>(types.enumerations.size()),
                        std::vector<bool>(types.tables.size()),
                        nullptr,
                        {},
                        {},
                        {}};
    if (bySpace) {
        declaring.paths = foldersOf(types.spaces);
        for (CString& path : declaring.paths)
            path = basePath + path + (path.empty() ? "" : "\\");
    }
    types.spend(std::ranges::max(declaring.paths, {}, &CString::size).size() * types.fieldCount());
    for (Index enumeration = 0; queryRoots().empty() && enumeration < types.enumerations.size(); ++enumeration)
        if (types.enumerations[enumeration].isNamed)
            declareEnumeration(declaring, enumeration);
    for (const Index record : order.query())
        declareRecord(declaring, record);
    // What has no key shares one usage, which stands where the first of it was declared: before the types that the last
    // of it, a field, must come after. So it is left to a type that comes first anyway.
    if (declaring.first)
        model.addUsage({}, declaring.first, nullptr);
}

// Settles the name of the whole and answers the records of the main types.
FullMessage::MainTypes FullMessage::chooseMain(SourceTypes& types, const CString& fileName)
{
    const std::vector<Index> chosen = chooseCandidates(types, fileName);
    if (chosen.empty())
        mainType = nameOfFile(fileName);
    else
        mainType = types.candidates[chosen.front()].name;
    if (!givenName.empty())
        mainType = toXmlText(givenName);
    MainTypes main;
    for (const Index candidate : chosen) {
        main.files.push_back(types.candidates[candidate].place.file);
        if (const Index record = recordOf(types, candidate); !std::ranges::count(main.records, record)) {
            types.records[record].name = types.candidates[candidate].name;
            if (const std::string_view said = types.candidates[candidate].description; !said.empty())
                types.records[record].description = said;
            main.records.push_back(record);
        }
    }
    return main;
}

// The elements that are asked for, else one for each source.
std::vector<SourceTypes::Index> FullMessage::chooseCandidates(const SourceTypes& types, const CString& fileName)
{
    std::vector<Index> chosen;
    for (Index source = 0; source <= furtherFiles.size(); ++source) {
        const MainElement choice(types, source == 0 ? fileName : furtherFiles[source - 1], source);
        for (const Index candidate : choice.queryAll())
            mainTypes.emplace_back(types.candidates[candidate].name);
        if (queryRoots().empty() && choice.query() != SourceTypes::kNone)
            chosen.push_back(choice.query());
    }
    for (const CString& root : queryRoots())
        chosen.push_back(candidateCalled(root, types));
    return chosen;
}

// The record of a main type; a leaf gets one that holds its value.
SourceTypes::Index FullMessage::recordOf(SourceTypes& types, Index candidate)
{
    const SourceTypes::Candidate& element = types.candidates[candidate];
    if (element.isAbstract || element.hasAbstractType)
        report.add(SourceReport::mainTypeAbstract, element.place, element.name);
    const bool isRecord = element.type.kind == SourceTypes::kindRecord && element.repeats == 0;
    if (element.choice != SourceTypes::kNone)
        types.choosers.emplace_back(isRecord ? element.type.index : static_cast<Index>(types.records.size()),
                                    element.choice);
    if (isRecord)
        return element.type.index;
    const Index record =
        types.addRecord({element.name, element.description, element.place, SourceTypes::kNone, element.space});
    const SourceTypes::Field value{"value", {}, element.type, SourceTypes::roleValue, element.repeats};
    types.setFields(record, std::span(&value, 1));
    return record;
}

Element* FullMessage::declareType(Declaring& declaring, Index space, std::string_view name,
                                  std::string_view description, Element::ElementTypes type)
{
    declaring.name = name;
    const CString& path = declaring.paths[space];
    RunningHash key(name);
    if (space != 0)
        key.append(path);
    Element* element;
    if (description.empty())
        element = model.addElement(key, path, declaring.name, type, nullptr);
    else
        element = model.addElement(key, path, declaring.name, declaring.description.assign(description), type, nullptr);
    if (!declaring.first)
        declaring.first = element;
    return element;
}

// What its fields refer to is declared before it.
void FullMessage::declareRecord(Declaring& declaring, Index index)
{
    for (const SourceTypes::Field& field : declaring.types.fieldsOf(index)) {
        if (field.type.kind == SourceTypes::kindEnumeration && !declaring.enumerations[field.type.index])
            declareEnumeration(declaring, field.type.index);
        if (field.type.kind == SourceTypes::kindTable && !declaring.tables[field.type.index])
            declareTables(declaring, field.type.index);
    }
    const SourceTypes::Record& record = declaring.types.records[index];
    Element* row = declareType(declaring, record.space, record.name, record.description, Element::typeRow);
    for (const SourceTypes::Field& field : declaring.types.fieldsOf(index))
        declareField(declaring, field, row);
}

void FullMessage::declareEnumeration(Declaring& declaring, Index index)
{
    declaring.enumerations[index] = true;
    const SourceTypes::Enumeration& enumeration = declaring.types.enumerations[index];
    Element* type =
        declareType(declaring, enumeration.space, enumeration.name, enumeration.description, Element::typeEnum);
    const CString& path = declaring.paths[enumeration.space];
    const std::span<const std::string_view> constants = declaring.types.constantsOf(index);
    for (std::size_t i = 0; i < constants.size(); ++i) {
        declaring.name = constants[i];
        if (const std::string_view said = declaring.types.describeConstant(index, i); said.empty())
            model.addElement({}, path, declaring.name, Element::typeString, type);
        else
            addElement("", path, declaring.name, declaring.description.assign(said), Element::typeString, type);
    }
}

// What tables inside each other hold comes before them.
void FullMessage::declareTables(Declaring& declaring, Index outer)
{
    std::vector<Index> tables;
    SourceTypes::Type component{SourceTypes::kindTable, outer};
    for (; component.kind == SourceTypes::kindTable; component = declaring.types.tables[component.index].component)
        tables.push_back(component.index);
    if (component.kind == SourceTypes::kindEnumeration && !declaring.enumerations[component.index])
        declareEnumeration(declaring, component.index);
    for (auto table = tables.rbegin(); table != tables.rend(); ++table)
        if (!declaring.tables[*table])
            declareTable(declaring, *table);
}

// A table holds its component as its child, or the ordering would put it before that. A child has the path of its type,
// by which the ordering tells that type's name.
void FullMessage::declareTable(Declaring& declaring, Index index)
{
    declaring.tables[index] = true;
    const SourceTypes::Table& table = declaring.types.tables[index];
    Element* type = declareType(declaring, table.space, table.name, {}, Element::typeTable);
    const CString& component = typeName(declaring, table.component);
    type->setKnownType(component);
    const CString& path = declaring.paths[spaceOf(declaring.types, table.component)];
    model.addElement({}, path, declaring.name, Element::typeOther, type)->setKnownType(component);
}

// No key: a field that repeats has its table already, and nothing is declared twice.
void FullMessage::declareField(Declaring& declaring, const SourceTypes::Field& field, Element* record)
{
    declaring.name = field.name;
    const CString& path = declaring.paths[spaceOf(declaring.types, field.type)];
    Element* element;
    if (field.description.empty())
        element = model.addElement({}, path, declaring.name, Element::typeOther, record);
    else
        element = addElement("", path, declaring.name, declaring.description.assign(field.description),
                             Element::typeOther, record);
    element->setKnownType(typeName(declaring, field.type));
}

const CString& FullMessage::typeName(Declaring& declaring, SourceTypes::Type type)
{
    const SourceTypes& types = declaring.types;
    const Index space = spaceOf(types, type);
    switch (type.kind) {
    case SourceTypes::kindText:
        return declaring.knownType = "String";
    case SourceTypes::kindNumber:
        return declaring.knownType = "Number";
    case SourceTypes::kindTime:
        return declaring.knownType = "Time";
    case SourceTypes::kindEnumeration:
        return declaring.fullName(space, types.enumerations[type.index].name);
    case SourceTypes::kindRecord:
        return declaring.fullName(space, types.records[type.index].name);
    default:
        return declaring.fullName(space, types.tables[type.index].name);
    }
}
