#include "Formats/SchemaMsg.h"

#include "Resources/StringTable.h"
#include "Utils/XMLDoc.h"

#include <algorithm>

int SchemaMessage::parse(const CString& source, const CString& basePath, const CString& fileName)
{
    forget();
    Outlines outlines;
    const int result = import(source, basePath, fileName, outlines);
    forget(); // the texts of the tables go with the outlines
    return result;
}

/// The two passes. The file is read once for both.
int SchemaMessage::import(const CString& source, const CString& basePath, const CString& fileName, Outlines& outlines)
{
    XmlDocument document;
    const SchemaOutline& main = outlines.emplace_back();
    if (!document.streamFile(source, outlines.front()))
        return fail(document.queryParseError());
    const bool isRead = !fileName.empty() && getSchemaIncludeList(fileName, outlines);
    if (!isRead) {
        copyElementList();
        mainType = getRootTag(main);
    }
    baseFolder = basePath.ends_with('\\') ? basePath : basePath + "\\";
    return doParse(main, baseFolder, isRead);
}

void SchemaMessage::forget()
{
    schemaElements.clear();
    includedElements.clear();
    pulled.clear();
    ownedElements.clear();
    mainTypes.clear();
    cyclicReferences = 0;
}

namespace {

constexpr std::size_t kFieldsAtOnce = 16;

} // namespace

/// A field that is about to be declared.
struct SchemaMessage::Field
{
    CString name;
    CString typeName;
    CString usageKey;
    int count = 1;
};

int SchemaMessage::doParse(const SchemaOutline& outline, const CString& folder, bool isRead)
{
    if (queryMainTypeName().empty())
        return fail(loadText(IDS_NO_ROOT));
    if (!isRead) {
        processElement(outline);
        processComplexType(outline, SchemaOutline::kRoot, {});
    }
    mergeLists();
    const CString path = folder + mainType + "\\";
    reserveUsages(countFields());
    std::vector<Field> fields(kFieldsAtOnce); // their texts seldom have to grow from one record to the next
    for (const SchemaElement* entry : schemaElements)
        declareRecord(*entry, path, fields);
    for (const SchemaElement* entry : pulled)
        declareRecord(*entry, path, fields);
    return 1;
}

/// How many usages the records will have: each is one itself.
std::size_t SchemaMessage::countFields() const
{
    std::size_t count = 0;
    for (const SchemaElement* entry : schemaElements)
        count += entry->queryChildren() ? 1 + entry->queryChildren()->size() : 0;
    for (const SchemaElement* entry : pulled)
        count += entry->queryChildren() ? 1 + entry->queryChildren()->size() : 0;
    return count;
}

/// An entry with children becomes a record. Its fields are declared some at a time, so that the memory can be asked for
/// all that they look up before the first one needs it.
void SchemaMessage::declareRecord(const SchemaElement& entry, const CString& path, std::vector<Field>& fields)
{
    if (!entry.queryChildren())
        return;
    const SchemaElement::Children& children = *entry.queryChildren();
    const bool mayMiss = entry.queryPull() == SchemaElement::pulledAsChild;
    const CString name = entry.queryName() == rootTypeName ? mainType : CString(entry.queryName());
    Element* record = addElement(name, path, name, Element::typeRow, nullptr);
    for (std::size_t first = 0; first < children.size(); first += fields.size()) {
        const std::size_t count = std::min(fields.size(), children.size() - first);
        for (std::size_t i = 0; i < count; ++i)
            prepareField(*children[first + i], mayMiss, name, fields[i]);
        for (std::size_t i = 0; i < count; ++i)
            declareField(fields[i], path, record);
    }
}

/// `mayMiss`: the child's entry may be missing from the element table.
void SchemaMessage::prepareField(const SchemaElement& child, bool mayMiss, const CString& recordName,
                                 Field& field) const
{
    const SchemaKey& key = child.queryKey();
    getType(mayMiss ? findEntry(key) : &child, field.typeName, field.name);
    field.count = getModifiers(key) == modStar ? 2 : 1;
    field.usageKey.assign(recordName).append(".").append(field.name);
    prefetchUsage(field.usageKey, field.name);
}

/// A repeated field is declared twice: MsgBase makes a table of a usage that it has seen more than once.
void SchemaMessage::declareField(Field& field, const CString& path, Element* record)
{
    const Element::ElementTypes kind = field.typeName.empty() ? Element::typeString : getBrokerType(field.typeName);
    for (int i = 0; i < field.count; ++i) {
        Element* element = addElement(field.usageKey, path, field.name, kind, record);
        if (field.typeName.empty())
            continue;
        const bool isOurs = field.typeName != "AnonymousType" && kind != Element::typeString;
        element->setKnownType(isOurs ? path + field.typeName : "String");
        element->setType(Element::typeOther);
    }
}

/// Name and type of a declaration; both are empty when there is none. A repeated one brings no type. Nonzero when there
/// is a type.
int SchemaMessage::getType(const SchemaElement* entry, CString& typeName, CString& fieldName)
{
    typeName.clear();
    fieldName.clear();
    if (entry) {
        fieldName = entry->queryName();
        if (!removeModifiers(fieldName))
            typeName = entry->queryType();
    }
    return !typeName.empty();
}

/// Trims `name`; 1 when it then ended with a '*', which is removed.
int SchemaMessage::removeModifiers(CString& name)
{
    if (const std::string_view inner = trimmed(name); inner.size() < name.size())
        name = CString(inner);
    if (!name.ends_with('*'))
        return 0;
    name.pop_back();
    return 1;
}

/// The kind of a field of this type. The name of a built-in type is emptied: the kind says all. For any other, typeDate
/// says no more than that it is a type of the schema.
Element::ElementTypes SchemaMessage::getBrokerType(CString& typeName) const
{
    for (const std::string_view prefix : {"xsd:", "xs:"}) {
        if (!typeName.starts_with(prefix))
            continue;
        const CString builtIn = typeName.substr(prefix.size());
        typeName.clear();
        if (builtIn == "date")
            return Element::typeDate;
        return builtIn == "decimal" ? Element::typeNumber : Element::typeString;
    }
    const SchemaKey type(typeName);
    return findEntry(type) ? Element::typeDate : Element::typeString;
}
