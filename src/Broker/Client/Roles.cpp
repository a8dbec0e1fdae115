#include "Broker/Client/Roles.h"

#include "Base/Utf8.h"

#include <clocale>
#include <cwctype>
#include <memory>
#include <type_traits>

std::vector<CString> rolesOf(const CString& user)
{
    std::vector<CString> roles = {user};
    // The program's own locale may be "C", in which only ASCII letters have a case.
    const std::unique_ptr<std::remove_pointer_t<locale_t>, void (*)(locale_t)> utf8(
        newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr), freelocale);
    CString lower; // stays empty for bytes that are not UTF-8
    const bool hasLetters = utf8 && isUtf8(user);
    for (std::size_t at = 0; hasLetters && at < user.size();) {
        const auto letter = static_cast<wint_t>(decodeUtf8(user, at));
        // The wizard has not converted a name that has a lower-case letter.
        if (towupper_l(letter, utf8.get()) != letter)
            return roles;
        appendUtf8(lower, towlower_l(letter, utf8.get()));
    }
    // All letters in lower case, for roles created with a quoted name; ASCII letters only, as the server folds names.
    for (const CString& folded : {lower, lowerAscii(user)})
        if (!folded.empty() && folded != roles.back())
            roles.push_back(folded);
    return roles;
}
