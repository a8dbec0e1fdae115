#include "Import/Dtd/DTDFullMsg.h"

#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Dtd/DTDMsg.h"
#include "Import/Dtd/DTDReader.h"

#include <numeric>

DTDFullMessage::DTDFullMessage() : FullMessage(DTDMessage::m_descr) {}

namespace {

CString textOf(const CString& fileName)
{
    CString text;
    if (const FileCause cause = readFile(fileName, text); cause != FileCause::none)
        throw SourceRefusal{cantOpen(fileName, cause), {fileName, inWords(fileName, cause)}};
    return text;
}

} // namespace

void DTDFullMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    using Index = SourceTypes::Index;
    DTDReader reader(types, report);
    std::vector<CString> files{fileName};
    files.insert(files.end(), queryFurtherFiles().begin(), queryFurtherFiles().end());
    std::vector<std::optional<FileId>> ids;
    for (const CString& file : files)
        // Identities are only needed to recognise a DTD of the set as a module of another one.
        ids.push_back(files.size() > 1 ? identify(file) : std::nullopt);
    std::vector<Index> owners(files.size()); // by file: the DTD that includes it as a module, else the file itself
    std::iota(owners.begin(), owners.end(), 0);
    const auto ownerOf = [&](Index file) {
        while (owners[file] != file)
            file = owners[file];
        return file;
    };
    std::vector<bool> isUsed(given.size()); // by entity
    for (Index i = 0; i < files.size(); ++i) {
        DTDEntities entities(types, report, queryCatalogs());
        const std::string_view text = i == 0 ? std::string_view(source) : types.adopt(textOf(files[i]));
        DTDEntities::Text& main = entities.addMain(files[i], text);
        for (const auto& [name, value] : given)
            entities.declare(name, types.adopt(CString(value)), main.start);
        DTDTokens tokens(entities, main, report);
        reader.read(tokens);
        for (const std::string_view entity : tokens.querySectionEntities())
            addSectionEntity(entity);
        for (std::size_t entity = 0; entity < given.size(); ++entity)
            isUsed[entity] = isUsed[entity] || entities.isUsed(given[entity].first);
        // A DTD that this one has read as a module counts for this one.
        for (Index other = 0; files.size() > 1 && other < files.size(); ++other)
            if (owners[other] == other && ownerOf(i) != other && ids[other] && entities.hasRead(*ids[other]))
                owners[other] = i;
    }
    for (std::size_t entity = 0; entity < given.size(); ++entity)
        if (!isUsed[entity])
            addUnusedEntity(given[entity].first);
    for (Index& owner : owners)
        owner = ownerOf(owner);
    reader.finish(owners, queryRoots());
}
