#include "Base/Encoding.h"

#include "Base/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <iconv.h>
#include <memory>

namespace {

struct Mark
{
    std::string_view bytes;
    const char* encoding;
    std::size_t size; // of the byte order mark in them
};

// The first bytes of a text (https://www.w3.org/TR/xml/#sec-guessing): a byte order mark, else "<?" or "<!" in UTF-16.
// UTF-32 is not supported.
using namespace std::string_view_literals;
constexpr Mark kMarks[] = {
    {kByteOrderMark, "UTF-8", 3}, {"\xFF\xFE", "UTF-16LE", 2}, {"\xFE\xFF", "UTF-16BE", 2}, {"<\0?\0"sv, "UTF-16LE", 0},
    {"<\0!\0"sv, "UTF-16LE", 0},  {"\0<\0?"sv, "UTF-16BE", 0}, {"\0<\0!"sv, "UTF-16BE", 0},
};

constexpr std::string_view kBlank = " \t\r\n";
constexpr std::string_view kEncodingName = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
constexpr std::size_t kLongDeclaration = 1000; // bytes; only the start of a file is searched

// Returns the name after `encoding =` in an XML or text declaration, empty if there is none. XML 1.0, productions [77]
// TextDecl and [80] EncodingDecl, read leniently: the rest of the declaration is not checked, and blanks may come
// before it.
CString declaredEncoding(std::string_view bytes)
{
    std::string_view text = bytes.substr(std::min(bytes.find_first_not_of(kBlank), bytes.size()), kLongDeclaration);
    if (!text.starts_with("<?xml"))
        return {};
    text = text.substr(0, text.find('>'));
    const std::size_t word = text.find("encoding");
    const std::size_t quote = word == text.npos ? text.npos : text.find_first_of("\"'", word);
    if (quote == text.npos)
        return {};
    const std::string_view name = text.substr(quote + 1, text.find(text[quote], quote + 1) - quote - 1);
    // The EncName production [81]. iconv_open() would take more, such as the "//TRANSLIT" that glibc reads after a
    // name.
    return name.find_first_not_of(kEncodingName) == name.npos ? CString(name) : CString();
}

// Returns false if the encoding is unknown or the bytes are not valid in it. A character that is cut off at the end is
// not valid either (EINVAL).
bool convert(std::string_view bytes, const CString& encoding, CString& out)
{
    const iconv_t converter = ::iconv_open("UTF-8", encoding.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1))
        return false;
    const std::unique_ptr<void, int (*)(iconv_t)> owner(converter, ::iconv_close);
    out.resize(bytes.size() + 16);                // enough for ASCII; grows on E2BIG
    char* from = const_cast<char*>(bytes.data()); // iconv() reads it only
    std::size_t fromLeft = bytes.size(), size = 0;
    // The last call has no input. It writes what the converter holds back: in windows-1258 a letter waits for an
    // accent.
    for (bool isFlushed = false; !isFlushed;) {
        char* to = out.data() + size;
        std::size_t toLeft = out.size() - size;
        const bool isLast = fromLeft == 0;
        const bool isDone =
            ::iconv(converter, isLast ? nullptr : &from, &fromLeft, &to, &toLeft) != static_cast<std::size_t>(-1);
        size = out.size() - toLeft;
        if (!isDone && errno != E2BIG)
            return false;
        if (!isDone)
            out.resize(out.size() * 2);
        isFlushed = isDone && isLast;
    }
    out.resize(size);
    return true;
}

// Returns the text made fit for XML: itself if it is already, else a view of `room`. `text` may be a view of `room`,
// which is why the copy comes first.
std::string_view withoutControls(std::string_view text, CString& room)
{
    if (isXmlText(text))
        return text;
    CString copy(text);
    std::replace(copy.begin(), copy.end(), '\0', ' ');
    return room = toXmlText(copy);
}

} // namespace

std::string_view decodeText(std::string_view bytes, CString& room, CString& wrongEncoding)
{
    for (const Mark& mark : kMarks)
        if (bytes.starts_with(mark.bytes)) {
            bytes.remove_prefix(mark.size);
            return convert(bytes, mark.encoding, room) ? withoutControls(room, room) : withoutControls(bytes, room);
        }
    const CString declared = declaredEncoding(bytes);
    // Text that claims to be UTF-8 is not converted: that would only copy it, and withoutControls() checks it anyway.
    const bool isUtf8 = declared.empty() || isSameAscii(declared, "utf-8");
    if (!isUtf8 && convert(bytes, declared, room))
        return withoutControls(room, room);
    if (!isUtf8 && !isAscii(bytes))
        wrongEncoding = declared;
    return withoutControls(bytes, room);
}
