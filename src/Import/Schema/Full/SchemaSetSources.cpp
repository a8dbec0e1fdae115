// SchemaSet: reads the files of an import, and those that a WSDL among them imports. Each given file is a source: the
// schemas of a WSDL, and of the files that it imports, have the number of that WSDL.
#include "Import/Full/DocumentLinks.h"
#include "Import/Schema/Full/SchemaSet.h"
#include "Import/Schema/SchemaDocuments.h"

#include <unordered_set>

void SchemaSet::load(const CString& fileName)
{
    std::vector<SourceFile> files{{fileName, fileName, {}, {}}};
    for (std::size_t i = 0; i < files.size(); ++i)
        loadOne(SourceFile(files[i]), files);
    ++loads;
}

// Reads one file. If it is a WSDL, appends the files that it imports to `files`, so `file` must not refer to an element
// of that.
void SchemaSet::loadOne(const SourceFile& file, std::vector<SourceFile>& files)
{
    const auto id = identify(file.name);
    if (id && parsed.contains(*id)) {
        loaded.push_back({parsed.at(*id), loads});
        return;
    }
    const auto document = static_cast<std::uint32_t>(tree.documents.size());
    const std::vector<WsdlReader::Import> imports = readSource(file);
    loaded.push_back({document, loads});
    if (id)
        parsed.emplace(*id, document);
    // A later include of this file leads to the same document, unless its namespace differs.
    if (id && tree.documents[document].root != 0)
        entered.emplace(std::pair(*id, tree.documents[document].space), document);
    const auto end = static_cast<std::uint32_t>(tree.documents.size()); // after the schemas of a WSDL
    for (std::uint32_t at = document; at < end; ++at) {
        if (at > document)
            loaded.push_back({at, loads});
        if (tree.documents[at].root != 0)
            followAll(at);
    }
    const CString folder = tree.documents[document].folder;
    for (const WsdlReader::Import& import : imports) {
        CString path;
        if (const auto found = locate({import.location, folder, import.space}, path))
            files.push_back(
                {found->name, shownFrom(file.shownName, folder, path, *found), import.place, import.location});
        else
            report.add(path.empty() ? SourceReport::moduleRemote : SourceReport::moduleMissing, import.place,
                       import.location);
    }
}

// Reads a file and returns the imports of a WSDL. A file that a WSDL imports is left out if it is not a schema. Its
// documents then stay, without nodes, because documents are identified by number.
std::vector<WsdlReader::Import> SchemaSet::readSource(const SourceFile& file)
{
    const bool isGiven = file.location.empty();
    const auto number = static_cast<std::uint32_t>(tree.documents.size());
    const auto first = static_cast<Index>(tree.size());
    beginDocument(folderOf(file.name), report.addFile(file.shownName));
    WsdlReader reader(tree, report);
    XmlDocument xml;
    const bool isRead = xml.streamFile(file.name, reader, isGiven ? kAnySize : kMaxNamedFile) != 0;
    if (!isRead && isGiven)
        throw SourceRefusal{xml.queryParseError(), xml.queryFault()};
    if (isRead)
        reader.finish();
    const bool isSchema = isRead && (reader.holdsWsdl() || tree.documents[number].root != 0);
    // If the first file isn't a schema, no types result. The import reports that with the importer that the file seems
    // to need.
    if (!isSchema && isGiven && number > 0)
        throw SourceRefusal{file.name + " is not a schema.", {file.name, "it is not a schema"}};
    for (std::uint32_t at = number + 1; at < tree.documents.size(); ++at) // further schemas of a WSDL
        firstOfFile.push_back(at);
    if (!isSchema && !isGiven) {
        if (isRead)
            report.add(SourceReport::moduleUnreadable, file.namedAt, file.location);
        else
            reportUnread({tree.documents[number].file, file.namedAt, file.location}, xml, report);
        for (std::uint32_t at = number; at < tree.documents.size(); ++at)
            tree.documents[at].root = 0;
        tree.dropFrom(first);
        return {};
    }
    hasWsdl = hasWsdl || reader.holdsWsdl();
    for (const WsdlReader::Root& root : reader.queryRoots())
        messages.emplace_back(root, loads);
    wsdlNames.insert(reader.queryNames().begin(), reader.queryNames().end());
    wsdlUses.insert(wsdlUses.end(), reader.queryUses().begin(), reader.queryUses().end());
    return reader.queryImports();
}

// Several messages may name one element, which then counts for the first of them.
std::vector<SchemaSet::Message> SchemaSet::findMessages()
{
    std::vector<Message> found;
    std::unordered_set<Index> met;
    report.enter(WsdlReader::kMessages);
    // All messages of the set are imported, so one of any namespace will do; so will an interface or a fault.
    for (const auto& [name, place] : wsdlUses)
        if (!wsdlNames.contains(name))
            report.add(SourceReport::unresolvedReference, place, tree.text(name));
    for (const auto& [root, source] : messages) {
        const Index declared = root.made != 0 ? root.made : find(element, root.name, 0);
        if (declared == 0)
            report.add(SourceReport::unresolvedReference, root.place, tree.text(root.name.local));
        else if (met.insert(declared).second)
            found.push_back({declared, source});
    }
    report.enter(0);
    return found;
}

std::vector<SchemaSet::Source> SchemaSet::finish()
{
    collectMembers();
    for (const auto& [node, name] : tree.impossibleNames)
        note(SourceReport::impossibleName, node, name);
    std::unordered_set<NameTable::Id> met;
    for (const SchemaDocument& document : tree.documents)
        if (document.root != 0 && met.insert(document.space).second)
            spaces.push_back(document.space);
    DocumentLinks links; // between files, each by its first document
    for (const auto& [reference, document] : documentsByReference)
        links.add(firstOfFile[tree[reference].document], firstOfFile[document]);
    std::vector<std::uint32_t> documents;
    for (const Source& source : loaded)
        documents.push_back(source.document);
    std::vector<Source> sources;
    for (const std::size_t top : links.findTops(documents))
        sources.push_back(loaded[top]);
    return sources;
}
