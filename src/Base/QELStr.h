#pragma once

#include <concepts>
#include <cstring>
#include <list>
#include <string>

/// An 8-bit text. Up to 19 characters lie inside the object, longer texts on the heap; the storage never shrinks. All
/// operations work byte by byte, only ASCII letters have a case, and every argument may be the string itself or point
/// into it. A text of 2 GB or more throws std::length_error, because indices are int. Not a std::string, because the
/// size of the storage is part of its contract (queryCapacity): if a C string doesn't fit, assigning it makes the
/// storage exactly as large as needed, and appending makes it twice as large. The text can't contain NUL.
class QELString final
{
public:
    QELString();
    QELString(const QELString& other);
    QELString(const char* s);                 ///< null gives the empty text
    QELString(const char* s, unsigned int n); ///< the first n characters, fewer if `s` is shorter
    QELString(char ch);                       ///< NUL gives the empty text
    ~QELString();

    QELString& operator=(const QELString& other);
    QELString& operator=(const char* s); ///< null gives the empty text

    /// Replaces the text by the first n characters of `s`, fewer if `s` is shorter; null gives the empty text. `s` need
    /// not be terminated within the n characters.
    QELString& assign(const char* s, unsigned int n);

    /// Makes the text empty, with room for at least n characters. A capacity that is larger already stays.
    void clear(unsigned int n);

    /// Returns the text, terminated by NUL, never null. Valid until the string changes or is destroyed.
    operator const char*() const { return text; }

    /// Returns 1 if the text is empty, else 0. Virtual as a part of the layout; the destructor isn't, so the class is
    /// final.
    virtual int isNull() const;

    /// Returns the size of the storage in bytes, terminator included.
    unsigned int queryCapacity() const { return capacity; }

    char operator[](unsigned int i) const; ///< NUL at or past the end
    char& operator[](unsigned int i);      ///< at or past the end the terminating NUL, which must stay NUL

    /// Returns the text from index `from` on, at most `count` characters. A negative index or count is taken from the
    /// end: the length is added, and a result below 0 becomes 0. An index past the end gives the empty text.
    QELString operator()(int from) const;
    QELString operator()(int from, int count) const;

    /// Replaces the text by the formatted output and returns its length. If the formatter fails (a wide character
    /// outside the locale), the text becomes empty and the length 0.
    [[gnu::format(printf, 2, 3)]] unsigned int sprintf(const char* format, ...);

    /// Append. If the storage is too small, it becomes twice as large as the new text, so that appending in a loop
    /// takes linear time.
    QELString& operator+=(const QELString& other);
    QELString& operator+=(char ch);

    // Compare as unsigned bytes. A proper prefix is smaller than the whole text.
    int operator==(const QELString& other) const { return std::strcmp(text, other.text) == 0; }
    int operator!=(const QELString& other) const { return std::strcmp(text, other.text) != 0; }
    int operator<(const QELString& other) const { return std::strcmp(text, other.text) < 0; }
    int operator>(const QELString& other) const { return std::strcmp(text, other.text) > 0; }
    int operator<=(const QELString& other) const { return std::strcmp(text, other.text) <= 0; }
    int operator>=(const QELString& other) const { return std::strcmp(text, other.text) >= 0; }

    int beginsWith(const QELString& s) const; ///< 1 or 0; always 1 for an empty `s`
    int endsWith(const QELString& s) const;   ///< 1 or 0; always 1 for an empty `s`
    unsigned int count(char ch) const;        ///< how many times `ch` occurs

    void trim();                     ///< removes spaces at both ends; other white space stays
    void trim(const QELString& set); ///< removes characters that occur in `set` at both ends
    void ltrim(unsigned int width);  ///< removes leading spaces, then pads with spaces on the right up to `width`
    void rtrim(unsigned int width);  ///< removes trailing spaces, then pads with spaces on the left up to `width`

    /// Keeps the first n characters and returns 1. Returns 0 without a change if the text is shorter than n.
    int truncate(unsigned int n);

    void cutl(unsigned int n); ///< removes the first n characters, at most all
    void cutr(unsigned int n); ///< removes the last n characters, at most all

    /// Change ASCII letters only.
    void lowerCase();
    void upperCase();
    void initial(); ///< after leading spaces, makes the first character upper case and the rest lower case

    /// Cuts at the first `sep` and returns 1, with the texts before and after it. Without a `sep` returns 0, with the
    /// whole text in `left` and an empty `right`.
    int splitl(char sep, QELString& left, QELString& right) const;

    /// Does the same at the last `sep`.
    int splitr(char sep, QELString& left, QELString& right) const;

    /// Cuts at the last `sep` as splitr() does. Without a `sep`, `path` is empty and `name` the whole text.
    void splitName(char sep, QELString& path, QELString& name) const;

    /// Returns field n, from 0, of the text cut at every `sep`, without the spaces at its ends. Empty if there is no
    /// such field.
    QELString queryField(char sep, unsigned int n) const;

private:
    static constexpr unsigned int kInline = 20;

    unsigned int length() const;
    void reserve(unsigned long newLength, unsigned long size);
    void reallocate(unsigned long size);
    void setText(const char* s, unsigned int n);
    void insertSpaces(unsigned int at, unsigned int width);
    int splitAt(int separator, QELString& left, QELString& right) const;

    char buffer[kInline];
    unsigned int capacity = kInline;
    char* text = buffer; // `buffer`, or an owned heap block
};

/// Returns the length in bytes.
unsigned int len(const QELString& s);

QELString operator+(const QELString& left, const QELString& right);

// Each returns the index of the match, or -1. An empty `sub` is never found.
int find(const QELString& s, const QELString& sub);
int find(const QELString& s, char ch);
int findr(const QELString& s, const QELString& sub); ///< the last occurrence
int findr(const QELString& s, char ch);              ///< the last occurrence
int findAny(const QELString& s, const char* set);    ///< the first character that occurs in `set`
int findAny(const QELString& s, const QELString& set);

// Each returns a changed copy. The trim functions remove spaces only.
QELString upperCase(const QELString& s);
QELString lowerCase(const QELString& s);
QELString trim(const QELString& s);
QELString ltrim(const QELString& s);
QELString rtrim(const QELString& s);

/// Returns a number in decimal.
template <std::integral Number>
QELString nstr(Number v)
{
    return std::to_string(v).c_str();
}

/// Cuts a copy of a string at a separator and returns the parts one by one, without the spaces at their ends. A text
/// with k separators has k + 1 parts, empty ones included.
class QELStringIterator
{
public:
    /// Copies the string.
    explicit QELStringIterator(const QELString& s);
    QELStringIterator(const QELStringIterator&) = delete;
    QELStringIterator& operator=(const QELStringIterator&) = delete;

    /// Starts again, with `sep`, which must not be NUL.
    void beginEnum(char sep);

    /// Copies the next part into `out` and returns 1 if another part follows, 0 if it was the last. Returns 0 and
    /// leaves `out` alone if no part is left or beginEnum() was not called.
    int enumNext(QELString& out);

private:
    QELString source;
    std::list<QELString> parts;
    std::list<QELString>::const_iterator position;
};
