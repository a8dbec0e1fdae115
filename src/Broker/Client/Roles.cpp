#include "Broker/Client/Roles.h"

#include <algorithm>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwctype>

namespace {

// Sets this thread's character type locale to UTF-8 in its scope. The program's own locale may be "C", and stays in
// effect for other threads.
class Utf8Locale
{
public:
    Utf8Locale() : own(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), before(own ? uselocale(own) : nullptr) {}
    ~Utf8Locale()
    {
        if (!own)
            return;
        uselocale(before);
        freelocale(own);
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    const locale_t own, before;
};

// Returns a text as wide characters, empty if it is not valid in the locale.
std::wstring widen(const CString& text)
{
    std::wstring wide(text.size() + 1, L'\0');
    const std::size_t length = std::mbstowcs(wide.data(), text.c_str(), wide.size());
    // mbstowcs() returns the largest number for invalid text.
    wide.resize(length <= text.size() ? length : 0);
    return wide;
}

CString narrow(const std::wstring& wide)
{
    CString text(MB_LEN_MAX * wide.size() + 1, '\0');
    text.resize(std::wcstombs(text.data(), wide.c_str(), text.size()));
    return text;
}

} // namespace

std::vector<CString> rolesOf(const CString& user)
{
    const Utf8Locale utf8;
    std::wstring letters = widen(user);
    std::vector<CString> roles = {user};
    // The wizard has not converted a name that has a lower-case letter.
    if (std::ranges::any_of(letters, [](wint_t c) { return std::towupper(c) != c; }))
        return roles;
    std::ranges::transform(letters, letters.begin(), std::towlower);
    // All letters in lower case, for roles created with a quoted name; ASCII letters only, as the server folds names.
    for (const CString& folded : {narrow(letters), lowerAscii(user)})
        if (!folded.empty() && folded != roles.back())
            roles.push_back(folded);
    return roles;
}
