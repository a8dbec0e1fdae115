#include "Base/QELApp.h"

#include "Base/MessageBox.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string_view>

namespace {

// Returns a reason without its first clause if the text has that, too, with the file's name instead of "it".
std::string_view withoutRepetition(std::string_view reason, std::string_view text)
{
    constexpr std::string_view it = "it ", separator = "; ";
    const std::size_t end = std::min(reason.find(separator), reason.size());
    if (!reason.starts_with(it) || text.find(reason.substr(it.size(), end - it.size())) == text.npos)
        return reason;
    return reason.substr(std::min(end + separator.size(), reason.size()));
}

} // namespace

CQELApp theApp;

void CQELApp::Error(UINT textId, UINT titleId)
{
    Error(loadText(textId), titleId);
}

void CQELApp::Error(const CString& text, UINT titleId, const CString& details)
{
    showMessageBox(text, loadText(titleId), details);
}

void CQELApp::Error(const CString& text, UINT titleId, const SourceFault& fault, const CString& advice)
{
    CString details = advice;
    // Adds only what the text lacks: the text of an import's box often contains the file and the reason.
    const auto add = [&](const CString& words, const char* before) {
        if (!words.empty() && text.find(words) == CString::npos)
            details += (details.empty() ? "" : "\n") + (before + words);
    };
    add(CString(withoutRepetition(fault.reason, text)), "");
    add(fault.file, "In the file ");
    showMessageBox(text, loadText(titleId), details);
}

// what() of these two is "std::bad_alloc" or the name of a function of the library, which says nothing to a user.
const char* messageOf(const std::exception& error)
{
    const bool isMemory = dynamic_cast<const std::bad_alloc*>(&error) != nullptr;
    const bool isLength = dynamic_cast<const std::length_error*>(&error) != nullptr; // a size that no memory could hold
    return isMemory || isLength ? "There is not enough memory" : error.what();
}
