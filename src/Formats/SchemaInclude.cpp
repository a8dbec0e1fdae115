#include "Formats/SchemaMsg.h"
#include "Platform/SchemaCache.h"
#include "Utils/XMLDoc.h"

// What the schema's other documents bring in.

/// Reads the documents that the schema names, behind its own outline, and then all of them into the table: first the
/// top-level elements of each, then the complex types. A schema with a target namespace doesn't get that far.
void SchemaMessage::getSchemaIncludeList(const CString& fileName, Outlines& outlines)
{
    const SchemaOutline& main = outlines.front();
    mainType = getRootTag(main);
    if (main.hasTargetNamespace())
        return;
    SchemaCache cache;
    cache.add(fileName, main.locations());
    while (const auto file = cache.next()) {
        if (XmlDocument().streamFile(*file, outlines.emplace_back()))
            cache.add(*file, outlines.back().locations());
        else
            outlines.pop_back();
    }
    for (const SchemaOutline& outline : outlines)
        processElement(outline);
    for (const SchemaOutline& outline : outlines)
        processComplexType(outline, SchemaOutline::kRoot, {});
}

/// Makes what the include pass has read the include table, and leaves the element table empty.
void SchemaMessage::copyElementList()
{
    std::swap(includedElements, schemaElements);
}

/// Pulls from the include table every entry that is named as a type and missing, with its children. One walk does: what
/// is pulled goes to the end of the table, so the walk comes to it, and an entry that it has passed needs nothing more.
void SchemaMessage::mergeLists()
{
    for (std::size_t i = 0; i < schemaElements.size(); ++i) {
        const SchemaKey type(schemaElements[i]->queryType());
        if (schemaElements.find(type, type.hash))
            continue;
        if (SchemaElement* included = includedElements.find(type, type.hash))
            pull(included);
    }
}

/// Stores an entry that is missing, and its children where they are. From then on it has the children of this table.
void SchemaMessage::pull(SchemaElement* included)
{
    schemaElements.store(included);
    for (SchemaElement*& child : included->getChildren()) {
        SchemaElement* const there = schemaElements.storeNew(child, child->queryKey().hash);
        if (there == child)
            child->markPulledChild();
        child = there;
    }
}
