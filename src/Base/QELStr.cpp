#include "Base/QELStr.h"

#include "Base/Text.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace {

// The text always ends with a NUL inside its storage. Its length is not stored, because a NUL written through
// operator[] shortens the text.
std::string_view viewOf(const QELString& s)
{
    return static_cast<const char*>(s);
}

// Fits: no text has more than INT_MAX characters.
int indexOf(std::size_t position)
{
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

} // namespace

QELString::QELString()
{
    buffer[0] = '\0';
}

QELString::QELString(const QELString& other) : QELString()
{
    *this = other;
}

QELString::QELString(const char* s) : QELString(s, UINT_MAX) {}

QELString::QELString(const char* s, unsigned int n) : QELString()
{
    assign(s, n);
}

QELString::QELString(char ch) : QELString(&ch, 1) {}

QELString::~QELString()
{
    // A short text lies in the object itself.
    if (text != buffer)
        delete[] text;
}

QELString& QELString::operator=(const QELString& other)
{
    // Takes the room of the source, even if the text would fit, because the capacity is part of the contract.
    if (capacity < other.capacity)
        reallocate(other.capacity);
    setText(other.text, other.length());
    return *this;
}

QELString& QELString::operator=(const char* s)
{
    return assign(s, UINT_MAX);
}

QELString& QELString::assign(const char* s, unsigned int n)
{
    const std::size_t used = s ? strnlen(s, n) : 0;
    // If the storage grows, `s` does not lie in it, because a part of the text always fits.
    reserve(used, used + 1);
    setText(s, static_cast<unsigned int>(used));
    return *this;
}

void QELString::clear(unsigned int n)
{
    text[0] = '\0';
    reserve(n, n + 1UL);
}

int QELString::isNull() const
{
    return text[0] == '\0';
}

char QELString::operator[](unsigned int i) const
{
    return text[std::min(i, length())];
}

char& QELString::operator[](unsigned int i)
{
    return text[std::min(i, length())];
}

QELString QELString::operator()(int from) const
{
    return (*this)(from, INT_MAX);
}

QELString QELString::operator()(int from, int count) const
{
    const int size = static_cast<int>(length());
    // `from` and `size` have opposite signs where they are added, so that no sum overflows.
    const int first = from < 0 ? std::max(from + size, 0) : std::min(from, size);
    const int n = count < 0 ? std::max(count + size, 0) : count;
    return QELString(text + first, static_cast<unsigned int>(n));
}

unsigned int QELString::sprintf(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const CString output = formatList(format, arguments); // separate, because the arguments may be the string itself
    va_end(arguments);
    *this = output.c_str();
    return length();
}

unsigned int QELString::length() const
{
    return static_cast<unsigned int>(std::strlen(text));
}

// Makes the storage `size` bytes large if a text of `newLength` characters doesn't fit. Lengths are unsigned long here,
// so that the sum of two can't overflow before it is checked.
void QELString::reserve(unsigned long newLength, unsigned long size)
{
    if (newLength < capacity)
        return;
    if (newLength > INT_MAX)
        throw std::length_error("QELString: a text of 2 GB or more");
    reallocate(size);
}

void QELString::reallocate(unsigned long size)
{
    char* larger = new char[size];
    std::memcpy(larger, text, length() + 1UL);
    if (text != buffer)
        delete[] text;
    text = larger;
    capacity = static_cast<unsigned int>(size);
}

// `s` may lie in the text itself.
void QELString::setText(const char* s, unsigned int n)
{
    if (n > 0)
        std::memmove(text, s, n);
    text[n] = '\0';
}

// Pads the text with spaces at index `at` to `width` characters. Does nothing if it is that long already.
void QELString::insertSpaces(unsigned int at, unsigned int width)
{
    reserve(width, width + 1UL);
    const unsigned int size = length();
    if (size >= width)
        return;
    std::memmove(text + at + (width - size), text + at, size - at + 1UL);
    std::memset(text + at, ' ', width - size);
}

QELString& QELString::operator+=(const QELString& other)
{
    const unsigned long head = length();
    const unsigned long tail = other.length();
    // Twice the size, so that appending in a loop takes linear time in total.
    reserve(head + tail, (head + tail) * 2 + 1);
    std::memcpy(text + head, other.text, tail); // read after growing, because `other` may be this string
    text[head + tail] = '\0';
    return *this;
}

// Appending NUL may enlarge the storage, but doesn't change the text.
QELString& QELString::operator+=(char ch)
{
    const unsigned long size = length();
    reserve(size + 1, (size + 1) * 2 + 1);
    text[size] = ch;
    text[size + 1] = '\0';
    return *this;
}

int QELString::beginsWith(const QELString& s) const
{
    return viewOf(*this).starts_with(viewOf(s));
}

int QELString::endsWith(const QELString& s) const
{
    return viewOf(*this).ends_with(viewOf(s));
}

unsigned int QELString::count(char ch) const
{
    const std::string_view all = viewOf(*this);
    return static_cast<unsigned int>(std::count(all.begin(), all.end(), ch));
}

void QELString::trim()
{
    trim(" ");
}

void QELString::trim(const QELString& set)
{
    const std::string_view rest = trimmed(viewOf(*this), viewOf(set));
    setText(rest.data(), static_cast<unsigned int>(rest.size()));
}

void QELString::ltrim(unsigned int width)
{
    cutl(static_cast<unsigned int>(std::strspn(text, " ")));
    insertSpaces(length(), width);
}

void QELString::rtrim(unsigned int width)
{
    truncate(static_cast<unsigned int>(viewOf(*this).find_last_not_of(' ') + 1)); // npos + 1 is 0
    insertSpaces(0, width);
}

int QELString::truncate(unsigned int n)
{
    if (length() < n)
        return 0;
    text[n] = '\0';
    return 1;
}

void QELString::cutl(unsigned int n)
{
    const unsigned int size = length();
    const unsigned int cut = std::min(n, size);
    setText(text + cut, size - cut);
}

void QELString::cutr(unsigned int n)
{
    const unsigned int size = length();
    truncate(size - std::min(n, size));
}

void QELString::lowerCase()
{
    std::transform(text, text + length(), text, [](char c) { return lowerAscii(c); });
}

void QELString::upperCase()
{
    std::transform(text, text + length(), text, [](char c) { return upperAscii(c); });
}

void QELString::initial()
{
    lowerCase();
    // If the text is only spaces, this is the terminator, which upperAscii() leaves as it is.
    char& first = text[std::strspn(text, " ")];
    first = upperAscii(first);
}

int QELString::splitl(char sep, QELString& left, QELString& right) const
{
    return splitAt(::find(*this, sep), left, right);
}

int QELString::splitr(char sep, QELString& left, QELString& right) const
{
    return splitAt(::findr(*this, sep), left, right);
}

// Cuts at the index `separator`, which is -1 if there is none.
int QELString::splitAt(int separator, QELString& left, QELString& right) const
{
    const bool found = separator >= 0;
    const unsigned int end = found ? static_cast<unsigned int>(separator) : length();
    // Copied first, because `left` or `right` may be this string.
    const QELString before(text, end);
    const QELString after(text + end + found);
    left = before;
    right = after;
    return found;
}

void QELString::splitName(char sep, QELString& path, QELString& name) const
{
    if (splitr(sep, path, name))
        return;
    name = path; // splitr() left the whole text in `path`
    path = "";
}

QELString QELString::queryField(char sep, unsigned int n) const
{
    QELString field;
    // Without the test, the last field would be returned for each larger n.
    if (n > count(sep))
        return field;
    QELStringIterator fields(*this);
    fields.beginEnum(sep);
    while (fields.enumNext(field) && n > 0)
        --n;
    return field;
}

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

// A NUL is never found, because the view ends before the terminator.
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

QELStringIterator::QELStringIterator(const QELString& s) : source(s), position(parts.end()) {}

// Cuts all parts at once. `source` is a copy, so the caller's string may change meanwhile.
void QELStringIterator::beginEnum(char sep)
{
    parts.clear();
    std::string_view rest = std::string_view(source);
    bool more = true;
    while (more) {
        const std::size_t end = rest.find(sep);
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
