#include "Formats/SchemaCache.h"
#include "Formats/SchemaMsg.h"
#include "Utils/FileMessage.h"
#include "Utils/XMLDoc.h"

// What the schema's other documents bring in.

/// Takes the schema and the documents that it names into the table: first the top-level elements of each, then the
/// complex types. A schema with a target namespace doesn't get that far. True when the schema stands alone and reading
/// it once more would give the same table again, and nothing to show.
bool SchemaMessage::getSchemaIncludeList(Outlines& outlines)
{
    const SchemaOutline& main = outlines.front();
    const bool hadRootType = !rootTypeName.empty();
    setMainType(getRootTag(main));
    if (main.hasTargetNamespace())
        return false;
    std::size_t declarations = 0;
    for (const SchemaOutline& outline : outlines)
        declarations += outline.size();
    schemaElements.reserve(declarations);
    for (const SchemaOutline& outline : outlines)
        processElement(outline);
    for (const SchemaOutline& outline : outlines)
        processComplexType(outline, SchemaOutline::kRoot, {});
    for (auto included = outlines.begin() + 1; included != outlines.end(); ++included)
        included->keepTextsOnly();
    // The names in force while the main element's own type was read.
    const bool sameNames = !hadRootType || earlierMainType == mainType;
    return outlines.size() == 1 && sameNames && !mainType.empty() && cyclicReferences == 0;
}

/// Reads the documents that the schema names, behind its own outline. What is missing or not well-formed is left out;
/// what is there and can't be read fails the import, with message 2210.
bool SchemaMessage::readIncluded(const CString& fileName, Outlines& outlines)
{
    SchemaCache cache;
    cache.add(fileName, outlines.front().locations());
    while (const auto file = cache.next()) {
        XmlDocument document;
        if (document.streamFile(*file, outlines.emplace_back()))
            cache.add(*file, outlines.back().locations());
        else if (document.querySystemError() != 0)
            return fail(cantOpen(*file, fileCauseOf(document.querySystemError()))) != 0;
        else
            outlines.pop_back();
    }
    return true;
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
    for (const SchemaElement* entry : schemaElements)
        pull(entry->queryType());
    for (std::size_t i = 0; i < pulled.size(); ++i)
        pull(pulled[i]->queryType());
}

void SchemaMessage::pull(const Fingerprint& type)
{
    if (schemaElements.find(type))
        return;
    SchemaElement* const included = includedElements.find(type);
    if (!included || included->queryPull() != SchemaElement::notPulled)
        return;
    included->setPull(SchemaElement::pulledAsType);
    pulled.push_back(included);
    if (!included->queryChildren())
        return;
    for (SchemaElement*& child : *included->queryChildren()) {
        if (SchemaElement* own = schemaElements.find(child->queryKey())) {
            child = own; // that is whom the key stands for from here on
        } else if (child->queryPull() == SchemaElement::notPulled) {
            child->setPull(SchemaElement::pulledAsChild);
            pulled.push_back(child);
        }
    }
}

/// What stands under `key` in the element table, what was pulled included; null when nothing does.
const SchemaElement* SchemaMessage::findEntry(const Fingerprint& key) const
{
    if (const SchemaElement* own = schemaElements.find(key))
        return own;
    const SchemaElement* included = includedElements.find(key);
    return included && included->queryPull() != SchemaElement::notPulled ? included : nullptr;
}
