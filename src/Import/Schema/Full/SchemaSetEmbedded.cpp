// SchemaSet: reads schemas inside of documents of other languages, such as the payloads of messages. They are written
// independently of each other, mostly without a namespace, so two of them may declare one name differently. So a load
// first collects its components in separate symbol tables. If they contradict the common ones, they become a scope, in
// which references find them before the common ones; else they are added to these. Each document is still read once for
// all loads.
#include "Import/Schema/Full/SchemaReader.h"
#include "Import/Schema/Full/SchemaSet.h"

#include <algorithm>
#include <utility>

namespace {

// Reads a text whose places are those of the document around it. Only the lines of a literal text are known there.
class TextReader : public SchemaReader, private XmlLocator
{
public:
    TextReader(SchemaTree& tree, SourceReport& report, const SchemaSet::Embedded& schema) :
        SchemaReader(tree, report), schema(schema)
    {}

    void startElement(XmlName name, XmlAttributes attributes, const XmlScope& inner) override
    {
        current = placeOf(inner.place().line);
        SchemaReader::startElement(name, attributes, {inner.uri, inner.declarations, inner.count, *this});
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
    XmlPlace tagStart() const override { return current; }

    const SchemaSet::Embedded& schema;
    XmlPlace current; // of the last start tag
};

} // namespace

std::optional<std::uint32_t> SchemaSet::load(const Embedded& schema)
{
    const auto document = static_cast<std::uint32_t>(tree.documents.size());
    Symbols shared = std::exchange(symbols, {});
    std::optional<std::uint32_t> loaded;
    if (schema.isReference) {
        loaded = loadReferred(schema);
    } else if (const auto [known, isNew] = texts.try_emplace({schema.text, schema.place.file}, document); !isNew) {
        loaded = known->second;
    } else {
        readText(schema);
        loaded = document;
        if (tree.documents[document].root != 0)
            followAll(document);
    }
    endLoad(document, std::move(shared));
    return loaded && tree.documents[*loaded].root == 0 ? std::nullopt : loaded;
}

// Calls `visit` with each component of the documents from `begin` on, and of those of scopes that they refer to.
template <class Visit>
void SchemaSet::visitLoaded(std::uint32_t begin, Visit visit) const
{
    std::vector<std::uint32_t> documents(again.begin(), again.end());
    for (std::uint32_t document = begin; document < tree.documents.size(); ++document)
        documents.push_back(document);
    for (const std::uint32_t document : documents)
        tree.visitTop(tree.documents[document], [&](Index at) {
            if (const auto kind = kindOf(tree[at].tag); kind && tree[at].hasName())
                visit(*kind, at);
        });
}

// Ends the load of the documents from `begin` on. Their components are in `symbols`, with those that they share with
// scopes. Adds them to the `shared` ones, or makes a scope of them if both have different components of one name.
void SchemaSet::endLoad(std::uint32_t begin, Symbols shared)
{
    bool isApart = false;
    // Equal declarations in a scope may have another meaning, because their references are resolved in the scope. A
    // redefined component that an earlier load declared is not among those of this load, so it is found here.
    const auto compare = [&](Kind kind, Index component) {
        const Index* const other = shared[kind].find(nameOf(component).key());
        if (!other || *other == component)
            return;
        isApart = isApart || isInScope(tree[*other].document) || !tree.areEqual(*other, component);
        const SchemaNode& parent = tree[tree[component].parent];
        if (parent.tag == SchemaTag::redefine && !parent.is(SchemaNode::isOverride))
            redefined.try_emplace(component, *other);
    };
    visitLoaded(begin, compare);
    std::swap(symbols, shared);
    if (isApart)
        scopes.push_back({begin, static_cast<std::uint32_t>(tree.documents.size()), std::move(shared)});
    else
        visitLoaded(begin, [&](Kind kind, Index component) {
            const std::uint64_t key = nameOf(component).key();
            if (const Index* const own = shared[kind].find(key)) // null for an override without effect
                symbols[kind].insert(key, *own);
        });
    again.clear();
}

// Reads a text into a new document. White space before it is skipped, because indented blocks have some, and nothing
// may precede an XML declaration (XML 1.0, production [22]). Its lines are counted.
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

// Reads the file of a reference, which is treated as an import in a schema without other contents. So it is found,
// cached and reported like any other document.
std::optional<std::uint32_t> SchemaSet::loadReferred(const Embedded& schema)
{
    beginDocument(schema.folder, schema.place.file);
    const auto document = static_cast<std::uint32_t>(tree.documents.size() - 1);
    const Index root = tree.add(SchemaTag::schema, document, schema.place, 0);
    const Index import = tree.add(SchemaTag::import, document, schema.place, root);
    tree.nodes[import].name = tree.names.intern(schema.text);
    tree.documents.back().root = root;
    tree.documents.back().end = import + 1;
    followAll(document);
    const auto found = documentsByReference.find(import);
    return found == documentsByReference.end() ? std::nullopt : std::optional(found->second);
}
