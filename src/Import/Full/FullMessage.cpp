#include "Import/Full/FullMessage.h"

#include "Base/Progress.h"
#include "Import/Full/MainElement.h"
#include "Import/Full/SourceNames.h"

#include <algorithm>

namespace {

// What is left of a file's name without folder and suffix, as an XML name.
CString nameOfFile(const CString& fileName)
{
    const std::size_t start = fileName.rfind('/') + 1;
    CString name = fileName.substr(start, fileName.rfind('.') - start);
    for (char& c : name)
        if (!isXmlName(CString("_") + c) && static_cast<unsigned char>(c) < 0x80)
            c = '_';
    if (!isXmlName(name))
        name.insert(0, 1, '_');
    return isXmlName(name) ? name : "_";
}

} // namespace

// What one import declares from.
struct FullMessage::Declaring
{
    SourceTypes& types;
    CString path;
    std::vector<bool> enumerations; // those that are declared
    std::vector<bool> tables;
    Element* first;                       // type
    CString name, description, knownType; // kept for their room

    const CString& fullName(std::string_view shortName) { return knownType.assign(path).append(shortName); }
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
}

void FullMessage::import(const CString& source, const CString& fileName, const CString& basePath)
{
    SourceTypes types(fileName);
    read(source, fileName, types, report);
    beginWork(Work::arranging);
    if (types.empty())
        throw SourceRefusal{fileName + " declares no element, type or enumeration.",
                            {"", "it declares no element, type or enumeration"}};
    const Index main = chooseMain(types, fileName);
    RecordOrder order(types);
    if (main != SourceTypes::kNone)
        order.visit(main);
    for (Index record = 0; root.empty() && record < types.records.size(); ++record)
        order.visit(record);
    SourceNames names(types, report);
    names.name(order.query(), main);
    if (root.empty())
        names.nameUnused();
    Declaring declaring{types,
                        basePath + mainType + "\\",
                        std::vector<bool>(types.enumerations.size()),
                        std::vector<bool>(types.tables.size()),
                        nullptr,
                        {},
                        {},
                        {}};
    types.spend(declaring.path.size() * types.fieldCount());
    for (Index enumeration = 0; root.empty() && enumeration < types.enumerations.size(); ++enumeration)
        if (types.enumerations[enumeration].isNamed)
            declareEnumeration(declaring, enumeration);
    for (const Index record : order.query())
        declareRecord(declaring, record);
    // What has no key shares one usage, which stands where the first of it was declared: before the types that the last
    // of it, a field, must come after. So it is left to a type that comes first anyway.
    if (declaring.first)
        model.addUsage({}, declaring.first, nullptr);
}

// Settles the main type's name and answers its record, which takes the element's name; a leaf gets one that holds its
// value.
SourceTypes::Index FullMessage::chooseMain(SourceTypes& types, const CString& fileName)
{
    const MainElement choice(types, fileName);
    for (const Index candidate : choice.queryAll())
        mainTypes.emplace_back(types.candidates[candidate].name);
    Index chosen = choice.query();
    if (!root.empty()) {
        const auto named = std::ranges::find(types.candidates, std::string_view(root), &SourceTypes::Candidate::name);
        if (named == types.candidates.end())
            throw SourceRefusal{"There is no element called " + root + ".", {"", "there is no element called " + root}};
        chosen = static_cast<Index>(named - types.candidates.begin());
    }
    if (chosen == SourceTypes::kNone) {
        mainType = nameOfFile(fileName);
        return SourceTypes::kNone;
    }
    const SourceTypes::Candidate& element = types.candidates[chosen];
    mainType = element.name;
    if (element.isAbstract || element.hasAbstractType)
        report.add(SourceReport::mainTypeAbstract, element.place, element.name);
    Index record = element.type.index;
    if (element.type.kind != SourceTypes::kindRecord) {
        record = types.addRecord({element.name, {}, element.place});
        const SourceTypes::Field value{"value", {}, element.type, SourceTypes::roleValue};
        types.setFields(record, std::span(&value, 1));
    }
    types.records[record].name = element.name;
    return record;
}

Element* FullMessage::declareType(Declaring& declaring, std::string_view name, std::string_view description,
                                  Element::ElementTypes type)
{
    declaring.name = name;
    Element* element;
    if (description.empty())
        element = model.addElement(name, declaring.path, declaring.name, type, nullptr);
    else
        element = addElement(declaring.name, declaring.path, declaring.name, declaring.description.assign(description),
                             type, nullptr);
    if (!declaring.first)
        declaring.first = element;
    return element;
}

// What its fields refer to is declared before it.
void FullMessage::declareRecord(Declaring& declaring, Index index)
{
    for (const SourceTypes::Field& field : declaring.types.fieldsOf(index)) {
        const SourceTypes::Type component =
            field.type.kind == SourceTypes::kindTable ? declaring.types.tables[field.type.index].component : field.type;
        if (component.kind == SourceTypes::kindEnumeration && !declaring.enumerations[component.index])
            declareEnumeration(declaring, component.index);
        if (field.type.kind == SourceTypes::kindTable && !declaring.tables[field.type.index])
            declareTable(declaring, field.type.index);
    }
    const SourceTypes::Record& record = declaring.types.records[index];
    Element* row = declareType(declaring, record.name, record.description, Element::typeRow);
    for (const SourceTypes::Field& field : declaring.types.fieldsOf(index))
        declareField(declaring, field, row);
}

void FullMessage::declareEnumeration(Declaring& declaring, Index index)
{
    declaring.enumerations[index] = true;
    const SourceTypes::Enumeration& enumeration = declaring.types.enumerations[index];
    Element* type = declareType(declaring, enumeration.name, enumeration.description, Element::typeEnum);
    for (const std::string_view constant : declaring.types.constantsOf(index))
        model.addElement({}, declaring.path, declaring.name.assign(constant), Element::typeString, type);
}

// A table holds its component as its child, or the ordering would put it before that.
void FullMessage::declareTable(Declaring& declaring, Index index)
{
    declaring.tables[index] = true;
    const SourceTypes::Table& table = declaring.types.tables[index];
    Element* type = declareType(declaring, table.name, {}, Element::typeTable);
    const CString& component = typeName(declaring, table.component);
    type->setKnownType(component);
    model.addElement({}, declaring.path, declaring.name, Element::typeOther, type)->setKnownType(component);
}

// No key: a field that repeats has its table already, and nothing is declared twice.
void FullMessage::declareField(Declaring& declaring, const SourceTypes::Field& field, Element* record)
{
    declaring.name = field.name;
    Element* element;
    if (field.description.empty())
        element = model.addElement({}, declaring.path, declaring.name, Element::typeOther, record);
    else
        element = addElement("", declaring.path, declaring.name, declaring.description.assign(field.description),
                             Element::typeOther, record);
    element->setKnownType(typeName(declaring, field.type));
}

const CString& FullMessage::typeName(Declaring& declaring, SourceTypes::Type type)
{
    switch (type.kind) {
    case SourceTypes::kindText:
        return declaring.knownType = "String";
    case SourceTypes::kindNumber:
        return declaring.knownType = "Number";
    case SourceTypes::kindTime:
        return declaring.knownType = "Time";
    case SourceTypes::kindEnumeration:
        return declaring.fullName(declaring.types.enumerations[type.index].name);
    case SourceTypes::kindRecord:
        return declaring.fullName(declaring.types.records[type.index].name);
    default:
        return declaring.fullName(declaring.types.tables[type.index].name);
    }
}
