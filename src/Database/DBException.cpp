#include "Database/DBException.h"

#include "Base/Utf8.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

// Diagnostics are cut here. A driver may quote a whole statement, and its start is enough for a message box.
constexpr std::size_t kMessageSize = 512; // bytes

// Parts of the messages with which PostgreSQL servers refuse a user or a password, in their languages. Names in quotes
// are removed first, which leaves two blanks after "role".
constexpr const char* kRefusals[] = {"pass",   "auth", "autent", "парол", "подлинности",    "автентиф",
                                     "ავთენტ", "認証", "认证",   "인증",  "role  does not", "role  is not"};

// The quotation marks around names, by language.
constexpr std::pair<std::string_view, std::string_view> kQuotes[] = {
    {"\"", "\""}, {"»", "«"}, {"«", "»"}, {"„", "“"}, {"“", "”"}};

// Returns the text without parts in quotation marks, so that a user called "pass" or a host called "authors" doesn't
// look like a refusal. An open quotation mark hides the rest.
CString withoutNames(std::string_view text)
{
    CString kept;
    while (!text.empty()) {
        std::size_t start = text.npos, end = text.npos;
        for (const auto& [open, close] : kQuotes)
            if (const std::size_t at = text.find(open); at < start) {
                start = at;
                end = text.find(close, at + open.size());
                end = end == text.npos ? end : end + close.size();
            }
        kept += text.substr(0, start);
        text.remove_prefix(std::min(end, text.size()));
    }
    return kept;
}

} // namespace

CDBException::CDBException(const CString& sqlState, int native, const CString& words) :
    std::runtime_error(words + " (SQLSTATE " + sqlState + ")"), state(sqlState), text(words), nativeError(native)
{}

bool CDBException::isLogonRefused() const
{
    // SQLSTATE class 28: invalid authorization. PostgreSQL's driver reports 08001 for a wrong password as well as for a
    // refused port (class 08: connection exception), so the text decides there.
    if (state.starts_with("28"))
        return true;
    if (!state.starts_with("08"))
        return false;
    const CString text = lowerAscii(withoutNames(what()));
    return std::ranges::any_of(kRefusals, [&text](const char* word) { return text.find(word) != text.npos; });
}

void CDBException::raise(short handleKind, void* handle)
{
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, kMessageSize> buffer;
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    // The general error, for a driver without diagnostics.
    CString firstState = "S1000", text;
    int firstNative = 0;
    for (SQLSMALLINT record = 1;
         SQL_SUCCEEDED(SQLGetDiagRec(handleKind, handle, record, state.data(), &native, buffer.data(),
                                     static_cast<SQLSMALLINT>(buffer.size()), &length));
         ++record) {
        if (record == 1) {
            firstState = reinterpret_cast<const char*>(state.data());
            firstNative = native;
        }
        const std::string_view message = driverText(reinterpret_cast<const char*>(buffer.data()), buffer.size());
        if (text.find(message) == text.npos) // some drivers repeat a message
            text.append(text.empty() ? "" : "\n").append(message);
    }
    throw CDBException(firstState, firstNative, text.empty() ? "The driver gave no reason" : text);
}

std::string_view driverText(const char* buffer, std::size_t capacity)
{
    std::string_view text(buffer, strnlen(buffer, capacity - 1));
    // The text may have been cut.
    if (text.size() == capacity - 1)
        dropPartialCharacter(text);
    return trimmed(text);
}
