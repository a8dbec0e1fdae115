#include "Import/Dtd/DTDFullMsg.h"

#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Dtd/DTDMsg.h"
#include "Import/Dtd/DTDReader.h"
#include "Import/Full/DocumentLinks.h"
#include "Import/Full/FullReadingHint.h"

#include <algorithm>
#include <numeric>
#include <optional>

// Each DTD of a set has its own entities, because a name may have another value in each. One DTDReader collects the
// elements of all; the first declaration of a name takes precedence.
namespace {

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

// Searches the text without parsing it, because the result is only a hint for the user.
CString DTDFullMessage::unsupportedByLiteral(const CString& fileName) const
{
    CString text, unsupported;
    if (readFile(fileName, text) != FileCause::none)
        return {};
    const auto isOfParameter = [](std::string_view entity) { return entity.starts_with('%'); };
    const auto hasMarkup = [](std::string_view comment) { return comment.find_first_of("<>") != kNowhere; };
    const auto isOther = [](std::string_view attlist) { return !isPlainAttlist(attlist); };
    addUnsupported(unsupported, text.find('\0') < 4, "UTF-16"); // with or without a byte order mark
    addUnsupported(unsupported, hasPiece(text, "<!ENTITY", ">", isOfParameter), "parameter entities");
    addUnsupported(unsupported, hasPiece(text, "<!--", "-->", hasMarkup), "comments with markup");
    addUnsupported(unsupported, hasPiece(text, "<!ATTLIST", ">", isOther), "attributes other than CDATA #IMPLIED");
    return unsupported;
}

// Returns the numbers of the DTDs that are not modules of another one. Each is read by itself to find out, because the
// entities of a DTD choose its modules. A module that was read alone, without the entities of its DTD, would give wrong
// declarations and losses. Types and reports of these readings are dropped, so a set is read twice.
std::vector<std::size_t> DTDFullMessage::findTops(std::span<const CString> files,
                                                  std::span<const std::string_view> texts)
{
    std::vector<std::optional<FileId>> ids;
    for (const CString& file : files)
        ids.push_back(identify(file));
    DocumentLinks links;
    std::vector<DocumentLinks::Index> all(files.size());
    std::iota(all.begin(), all.end(), 0);
    for (const DocumentLinks::Index i : all) {
        SourceTypes types(files[i]);
        SourceReport unused;
        DTDEntities entities(types, unused, *catalogs);
        DTDTokens tokens(entities, begin(entities, types, files[i], texts[i]), unused);
        DTDReader(types, unused).read(tokens);
        for (const DocumentLinks::Index other : all)
            if (ids[other] && entities.hasRead(*ids[other]))
                links.add(i, other);
    }
    return links.findTops(all);
}

// Adds the text of the DTD, and declares the caller's entities. Returns the text.
DTDEntities::Text& DTDFullMessage::begin(DTDEntities& entities, SourceTypes& types, const CString& file,
                                         std::string_view text) const
{
    DTDEntities::Text& main = entities.addFile({file, identify(file).value_or(FileId())}, file, text);
    // So that a reference from a module to the DTD itself is a loop, and the DTD is not read twice.
    main.isOpen = true;
    for (const auto& [name, value] : given) // their text has no place in the file
        entities.declare(name, types.adopt(CString(value)), {main.start.file, 0, 0});
    return main;
}

// Reads the DTDs that no other one of the set refers to. A single DTD needs no search for these.
void DTDFullMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    std::vector<CString> files{fileName};
    files.insert(files.end(), furtherFiles.begin(), furtherFiles.end());
    std::vector<std::string_view> texts{source};
    for (const CString& file : furtherFiles) {
        CString text;
        if (const FileCause cause = readFile(file, text); cause != FileCause::none)
            throw SourceRefusal{cantOpen(file, cause), {file, inWords(file, cause)}};
        texts.push_back(types.adopt(std::move(text)));
    }
    // The declarations that the roots reach are only known when all are read.
    if (!queryRoots().empty())
        report.hold();
    DTDReader reader(types, report);
    for (const auto& [name, value] : given)
        unusedEntities.push_back(name);
    std::vector<SourceTypes::Index> sources;
    for (const std::size_t i : files.size() > 1 ? findTops(files, texts) : std::vector<std::size_t>{0}) {
        sources.push_back(static_cast<SourceTypes::Index>(i));
        DTDEntities entities(types, report, *catalogs);
        DTDTokens tokens(entities, begin(entities, types, files[i], texts[i]), report);
        reader.read(tokens);
        for (const std::string_view entity : tokens.querySectionEntities())
            if (!std::ranges::count(sectionEntities, entity)) // several DTDs may use the same entities
                sectionEntities.emplace_back(entity);
        std::erase_if(unusedEntities, [&](const CString& name) { return entities.isUsed(name); });
    }
    reader.finish(sources, queryRoots());
}
