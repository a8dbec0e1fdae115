#include "Database/ConnectSettings.h"

#include <algorithm>
#include <array>
#include <odbcinst.h>

namespace {

// Returns the position of the brace that ends a value in braces, in which "}}" stands for a brace; 0 for a value
// without braces, npos if no brace ends it. The search for the semicolon begins there.
std::size_t endOfBraces(std::string_view text)
{
    std::size_t at = text.starts_with('{') ? text.find('}') : 0;
    while (at != text.npos && at > 0 && text.substr(at + 1).starts_with('}'))
        at = text.find('}', at + 2);
    return at;
}

// Returns an entry of the file that FILEDSN names; empty if there is none.
CString fileText(const CString& file, const char* attribute)
{
    std::array<char, 1024> value = {};
    WORD size = 0;
    const bool isRead = SQLReadFileDSN(file.c_str(), "ODBC", attribute, value.data(), WORD{value.size()}, &size);
    return isRead ? value.data() : "";
}

} // namespace

ConnectAttribute attributeOf(std::string_view connection, std::string_view name)
{
    for (std::size_t equals; (equals = connection.find('=')) != connection.npos;) {
        const std::string_view rest = connection.substr(equals + 1);
        const std::size_t length = std::min(rest.find(';', endOfBraces(rest)), rest.size());
        const std::string_view whole = connection.substr(0, equals + 1 + length + 1);
        if (isSameAscii(trimmed(connection.substr(0, equals)), name))
            return {whole, rest.substr(0, length)};
        connection.remove_prefix(whole.size());
    }
    return {};
}

std::vector<CString> valuesOf(std::string_view connection, std::string_view name)
{
    std::vector<CString> values;
    for (ConnectAttribute attribute; !(attribute = attributeOf(connection, name)).whole.empty();) {
        values.push_back(withoutBraces(attribute.value));
        // `attribute.whole` is a view of `connection`, so the difference is its offset.
        connection.remove_prefix(static_cast<std::size_t>(attribute.whole.data() - connection.data()) +
                                 attribute.whole.size());
    }
    return values;
}

CString withoutBraces(std::string_view value)
{
    value = trimmed(value);
    if (!value.starts_with('{') || endOfBraces(value) + 1 != value.size())
        return CString(value);
    CString text(value.substr(1, value.size() - 2));
    for (std::size_t at = 0; (at = text.find("}}", at)) != text.npos; ++at)
        text.erase(at, 1);
    return text;
}

CString profileText(const CString& section, const char* entry, const char* file)
{
    std::array<char, 1024> value = {};
    SQLGetPrivateProfileString(section.c_str(), entry, "", value.data(), int{value.size()}, file);
    return value.data();
}

CString settingOf(const CString& connection, const char* attribute)
{
    // The connection string overrides the file and the data source that it names.
    CString text = withoutBraces(attributeOf(connection, attribute).value);
    if (const CString file = withoutBraces(attributeOf(connection, "FILEDSN").value); text.empty() && !file.empty())
        text = fileText(file, attribute);
    if (const CString name = withoutBraces(attributeOf(connection, "DSN").value); text.empty() && !name.empty())
        text = profileText(name, attribute, "odbc.ini");
    return text;
}

bool hasDriver(const CString& connection, std::initializer_list<const char*> parts)
{
    const CString name = settingOf(connection, "Driver");
    const CString both = lowerAscii(name + "\n" + profileText(name, "Driver", "odbcinst.ini"));
    return std::ranges::any_of(parts, [&both](const char* part) { return both.find(part) != both.npos; });
}
