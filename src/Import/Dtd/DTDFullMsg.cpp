#include "Import/Dtd/DTDFullMsg.h"

#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Dtd/DTDMsg.h"
#include "Import/Dtd/DTDReader.h"
#include "Import/Full/FullReadingHint.h"

#include <algorithm>
#include <numeric>

namespace {

CString textOf(const CString& fileName)
{
    CString text;
    if (const FileCause cause = readFile(fileName, text); cause != FileCause::none)
        throw SourceRefusal{cantOpen(fileName, cause), {fileName, inWords(fileName, cause)}};
    return text;
}

// Returns whether `test` accepts one of the pieces between `start` and the next `end`; it gets the piece without blanks
// at its ends.
template <class Test>
bool hasPiece(std::string_view text, std::string_view start, std::string_view end, Test test)
{
    for (std::size_t at = text.find(start); at != kNowhere; at = text.find(start, at)) {
        at += start.size();
        const std::size_t close = text.find(end, at);
        if (close == kNowhere)
            return false;
        if (test(kDtdBlank.trim(text.substr(at, close - at))))
            return true;
        at = close;
    }
    return false;
}

// Returns whether an ATTLIST has the form that the literal reading takes: element, attribute, CDATA, #IMPLIED.
bool isPlainAttlist(std::string_view declaration)
{
    for (int names = 0; names < 2; ++names)
        declaration = kDtdBlank.trim(declaration.substr(std::min(kDtdBlank.in(declaration), declaration.size())));
    const std::size_t blank = std::min(kDtdBlank.in(declaration), declaration.size());
    return declaration.substr(0, blank) == "CDATA" && kDtdBlank.trim(declaration.substr(blank)) == "#IMPLIED";
}

} // namespace

DTDFullMessage::DTDFullMessage() : FullMessage(DTDMessage::m_descr) {}

CString DTDFullMessage::unsupportedByLiteral(const CString& fileName) const
{
    CString text, unsupported;
    if (readFile(fileName, text) != FileCause::none)
        return {};
    const auto isOfParameter = [](std::string_view entity) { return entity.starts_with('%'); };
    const auto hasMarkup = [](std::string_view comment) { return comment.find_first_of("<>") != kNowhere; };
    const auto isOther = [](std::string_view attlist) { return !isPlainAttlist(attlist); };
    addUnsupported(unsupported, hasPiece(text, "<!ENTITY", ">", isOfParameter), "parameter entities");
    addUnsupported(unsupported, hasPiece(text, "<!--", "-->", hasMarkup), "comments with markup");
    addUnsupported(unsupported, hasPiece(text, "<!ATTLIST", ">", isOther), "attributes other than CDATA #IMPLIED");
    return unsupported;
}

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
