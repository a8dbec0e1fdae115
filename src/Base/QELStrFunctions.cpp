#include "Base/QELStr.h"

#include <cstring>
#include <string>
#include <string_view>

namespace {

int indexOf(std::size_t position)
{
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

} // namespace

unsigned int len(const QELString& s)
{
    return static_cast<unsigned int>(std::string_view(s).size());
}

QELString operator+(const QELString& left, const QELString& right)
{
    QELString joined(left);
    joined += right;
    return joined;
}

int find(const QELString& s, const QELString& sub)
{
    const char* const start = s;
    const char* const match = sub.isNull() ? nullptr : std::strstr(start, sub);
    return match ? static_cast<int>(match - start) : -1;
}

int find(const QELString& s, char ch)
{
    return indexOf(std::string_view(s).find(ch));
}

int findr(const QELString& s, const QELString& sub)
{
    return sub.isNull() ? -1 : indexOf(std::string_view(s).rfind(std::string_view(sub)));
}

int findr(const QELString& s, char ch)
{
    return indexOf(std::string_view(s).rfind(ch));
}

int findAny(const QELString& s, const char* set)
{
    const std::size_t at = set ? std::strcspn(s, set) : len(s);
    return at < len(s) ? static_cast<int>(at) : -1;
}

int findAny(const QELString& s, const QELString& set)
{
    return findAny(s, static_cast<const char*>(set));
}

QELString upperCase(const QELString& s)
{
    QELString copy(s);
    copy.upperCase();
    return copy;
}

QELString lowerCase(const QELString& s)
{
    QELString copy(s);
    copy.lowerCase();
    return copy;
}

QELString trim(const QELString& s)
{
    QELString copy(s);
    copy.trim();
    return copy;
}

QELString ltrim(const QELString& s)
{
    QELString copy(s);
    copy.ltrim(0);
    return copy;
}

QELString rtrim(const QELString& s)
{
    QELString copy(s);
    copy.rtrim(0);
    return copy;
}

QELString nstr(short v)
{
    return std::to_string(v).c_str();
}

QELString nstr(unsigned short v)
{
    return std::to_string(v).c_str();
}

QELString nstr(int v)
{
    return std::to_string(v).c_str();
}

QELString nstr(unsigned int v)
{
    return std::to_string(v).c_str();
}

QELString nstr(long v)
{
    return std::to_string(v).c_str();
}

QELString nstr(unsigned long v)
{
    return std::to_string(v).c_str();
}

QELStringIterator::QELStringIterator(const QELString& s) : source(s), position(parts.end()) {}

void QELStringIterator::beginEnum(char sep)
{
    separator = sep;
    parts.clear();
    std::string_view rest = std::string_view(source);
    bool more = true;
    while (more) {
        const std::size_t end = rest.find(separator);
        more = end != std::string_view::npos;
        const std::string_view part = rest.substr(0, end);
        parts.push_back(trim(QELString(part.data(), static_cast<unsigned int>(part.size()))));
        rest.remove_prefix(more ? end + 1 : rest.size());
    }
    position = parts.begin();
}

int QELStringIterator::enumNext(QELString& out)
{
    if (position == parts.end())
        return 0;
    out = *position;
    return ++position != parts.end();
}
