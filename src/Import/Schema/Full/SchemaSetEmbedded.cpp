// SchemaSet: reads schemas inside of documents of other languages.
#include "Import/Schema/Full/SchemaReader.h"
#include "Import/Schema/Full/SchemaSet.h"

#include <algorithm>

namespace {

// Reads a text whose places are those of the document around it. Only the lines of a literal text are known there.
class TextReader : public SchemaReader
{
public:
    TextReader(SchemaTree& tree, SourceReport& report, const SchemaSet::Embedded& schema) :
        SchemaReader(tree, report), schema(schema)
    {}

    void scope(const XmlScope& inner) override
    {
        XmlScope outer = inner;
        outer.place = placeOf(inner.place.line);
        SchemaReader::scope(outer);
    }

    void entityLeftOut(std::string_view name, XmlPlace inner) override
    {
        SchemaReader::entityLeftOut(name, placeOf(inner.line));
    }

    XmlPlace placeOf(std::uint32_t line) const
    {
        return schema.isLiteral ? XmlPlace{line, 0} : XmlPlace{schema.place.line, schema.place.column};
    }

private:
    const SchemaSet::Embedded& schema;
};

} // namespace

std::optional<std::uint32_t> SchemaSet::load(const Embedded& schema)
{
    if (schema.isReference)
        return loadReferred(schema);
    const auto document = static_cast<std::uint32_t>(tree.documents.size());
    const auto [known, isNew] = texts.try_emplace({schema.text, schema.place.file}, document);
    if (isNew) {
        readText(schema);
        if (tree.documents[document].root != 0)
            followAll(document);
    }
    return tree.documents[known->second].root == 0 ? std::nullopt : std::optional(known->second);
}

// Reads a text into a new document. White space before it is allowed.
void SchemaSet::readText(const Embedded& schema)
{
    const std::size_t begin = std::min(schema.text.find_first_not_of(kWhitespace), schema.text.size());
    const auto skipped = static_cast<int>(std::ranges::count(schema.text.substr(0, begin), '\n'));
    beginDocument(schema.folder, schema.place.file);
    TextReader reader(tree, report, schema);
    const int line = skipped + 1 + (schema.isLiteral ? static_cast<int>(schema.place.line) : 0);
    const auto error = parseXmlText(schema.text.substr(begin), reader, line);
    if (endDocument(reader, !error) && tree.documents.back().root != 0)
        return;
    if (!error)
        return report.add(SourceReport::moduleUnreadable, schema.place, schema.name + ": it is not a schema");
    const auto [at, column] = reader.placeOf(static_cast<std::uint32_t>(error->line));
    report.add(SourceReport::moduleIllFormed, {schema.place.file, at, column},
               error->reason + (schema.isLiteral ? "" : " in line " + std::to_string(error->line) + " of the text"));
}

// Reads the file of a reference, which counts as an import in a schema that holds nothing else.
std::optional<std::uint32_t> SchemaSet::loadReferred(const Embedded& schema)
{
    beginDocument(schema.folder, schema.place.file);
    const auto document = static_cast<std::uint32_t>(tree.documents.size() - 1);
    const auto root = static_cast<Index>(tree.size()), import = root + 1;
    SchemaNode node;
    node.line = schema.place.line;
    node.column = schema.place.column;
    node.document = document;
    node.tag = SchemaTag::schema;
    node.firstChild = import;
    tree.nodes.push_back(node);
    node.tag = SchemaTag::import;
    node.firstChild = 0;
    node.parent = root;
    node.name = tree.names.intern(schema.text);
    tree.nodes.push_back(node);
    tree.documents.back().root = root;
    tree.documents.back().end = import + 1;
    followAll(document);
    const auto found = documentsByReference.find(import);
    return found == documentsByReference.end() ? std::nullopt : std::optional(found->second);
}
