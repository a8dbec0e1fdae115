#include "Import/Dtd/DTDUnsupported.h"

#include "Files/File.h"
#include "Import/Dtd/DTDText.h"
#include "Import/Full/FullReadingHint.h"

#include <algorithm>

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

CString unsupportedInDtd(const CString& fileName)
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
