#include "Base/QELStr.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <stdexcept>
#include <string>

namespace {

using Text = std::string;
using S = QELString;

const auto in = [](const QELString& s, int from = 0) { return static_cast<const char*>(s) + from; };
const Text k19(19, 'x'), k20(20, 'x'), k40(40, 'x');

QELString withRoom(const char* text, unsigned int room)
{
    QELString s;
    s.clear(room);
    s = text;
    return s;
}

// An operation on a text, with the result and the capacity afterwards.
struct Change
{
    const char* name;
    Text start;
    void (*change)(S& s);
    Text text;
    unsigned int capacity = 20;
};

S rest;

const Change kChanges[] = {
    {"NineteenStayInside", "", [](S& s) { s = k19.c_str(); }, k19},
    {"TwentyTakeExactly", "", [](S& s) { s = k20.c_str(); }, k20, 21},
    {"AssignTakesThePartOnly", "", [](S& s) { s.assign(k40.c_str(), 20); }, k20, 21},
    {"AssignBeyondTheEndTakesWhatIsThere", "", [](S& s) { s.assign("ab", 4000000000U); }, "ab"},
    {"NullIsEmpty", "ab", [](S& s) { s = static_cast<const char*>(nullptr); }, ""},
    {"NullWithCountIsEmpty", "ab", [](S& s) { s.assign(nullptr, 3); }, ""},
    {"NeverShrinks", k20, [](S& s) { s = "a"; }, "a", 21},
    {"AssignTakesTheSourcesRoom", "", [](S& s) { s = withRoom("ab", 30); }, "ab", 31},
    {"AppendTakesTwice", "twelve chars", [](S& s) { s += S("twelve chars"); }, "twelve charstwelve chars", 49},
    {"AppendCharThatFits", Text(18, 'x'), [](S& s) { s += 'x'; }, k19},
    {"AppendCharTakesTwice", k19, [](S& s) { s += 'x'; }, k20, 41},
    {"AppendNulChangesNothing", "ab", [](S& s) { s += '\0'; }, "ab"},
    {"ClearMakesRoom", "ab", [](S& s) { s.clear(20); }, "", 21},
    {"PaddingTakesTheWidth", "ab", [](S& s) { s.ltrim(22); }, "ab" + Text(20, ' '), 23},
    // The argument is the string itself or a part of it.
    {"AssignItself", "ab", [](S& s) { s = static_cast<const S&>(s); }, "ab"},
    {"AppendItself", "twelve chars", [](S& s) { s += static_cast<const S&>(s); }, "twelve charstwelve chars", 49},
    {"AssignItsMiddle", "abcdef", [](S& s) { s.assign(in(s, 2), 3); }, "cde"},
    {"AssignItsTail", k20 + "end", [](S& s) { s = in(s, 20); }, "end", 24},
    {"AppendItsTail", k19, [](S& s) { s += in(s, 18); }, k20, 41},
    {"FormatItself", "ab", [](S& s) { s.sprintf("%s-%s", in(s), in(s)); }, "ab-ab"},
    {"TrimByItself", "abc", [](S& s) { s.trim(s); }, ""},
    {"SplitLeftIntoItself", "ab=c", [](S& s) { s.splitl('=', s, rest); }, "ab"},
    {"SplitRightIntoItself", "a=b=c", [](S& s) { s.splitr('=', rest, s); }, "c"},
    {"SplitNameIntoItself", "abc", [](S& s) { s.splitName('=', s, rest); }, ""},
    {"FieldIntoItself", "a, b ", [](S& s) { s = s.queryField(',', 1); }, "b"},
    // In place.
    {"TrimSpacesOnly", "  \ta b  ", [](S& s) { s.trim(); }, "\ta b"},
    {"TrimAllSpaces", "   ", [](S& s) { s.trim(); }, ""},
    {"TrimSet", "-+a-b+\xE9-", [](S& s) { s.trim("+-\xE9"); }, "a-b"},
    {"TrimEmptySet", " a ", [](S& s) { s.trim(""); }, " a "},
    {"PadRight", " ab", [](S& s) { s.ltrim(5); }, "ab   "},
    {"PadLeft", "ab ", [](S& s) { s.rtrim(5); }, "   ab"},
    {"PadRightOfALongerText", "  abcdef ", [](S& s) { s.ltrim(3); }, "abcdef "},
    {"CutLeft", "abc", [](S& s) { s.cutl(2); }, "c"},
    {"CutLeftBeyond", "abc", [](S& s) { s.cutl(UINT_MAX); }, ""},
    {"CutRight", "abc", [](S& s) { s.cutr(2); }, "a"},
    {"CutRightBeyond", "abc", [](S& s) { s.cutr(UINT_MAX); }, ""},
    {"LowerCaseIsAscii", "@AZ[\xC4", [](S& s) { s.lowerCase(); }, "@az[\xC4"},
    {"UpperCaseIsAscii", "`az{\xE4", [](S& s) { s.upperCase(); }, "`AZ{\xE4"},
    {"Initial", "  hELLO wORLD", [](S& s) { s.initial(); }, "  Hello world"},
    {"InitialOfSpaces", "  ", [](S& s) { s.initial(); }, "  "},
    {"WriteByIndex", "abc", [](S& s) { s[1] = 'x'; }, "axc"},
    {"IndexBeyondIsTheEnd", "abc", [](S& s) { s[UINT_MAX] = '\0'; }, "abc"},
};

TEST(QELString, ChangesLeaveTextAndStorage)
{
    for (const Change& row : kChanges) {
        S s(row.start.c_str());
        row.change(s);
        EXPECT_EQ(in(s), row.text) << row.name << ": " << row.start;
        EXPECT_EQ(s.queryCapacity(), row.capacity) << row.name;
    }
}

TEST(QELString, ConstructsFromWhatItIsGiven)
{
    EXPECT_STREQ(S() + S(static_cast<const char*>(nullptr)) + S('x') + S('\0') + S("abc", 2), "xab");
    EXPECT_EQ(S(k40.c_str(), 20).queryCapacity(), 21U);
    EXPECT_EQ(S(withRoom("ab", 30)).queryCapacity(), 31U) << "a copy takes the room of a source on the heap";
    EXPECT_EQ(sizeof(S), sizeof(void*) + 20 + sizeof(unsigned int) + sizeof(char*));
    EXPECT_THROW(S().clear(UINT_MAX), std::length_error);
}

TEST(QELString, TakesPartsByIndex)
{
    const S s("abcdef");
    EXPECT_STREQ(s(-3) + "|" + s(-10) + "|" + s(10), "def|abcdef|");
    // A negative count is added to the length of the whole text.
    EXPECT_STREQ(s(1, 2) + "|" + s(4, 10) + "|" + s(0, -1) + "|" + s(2, -1) + "|" + s(INT_MIN, INT_MIN),
                 "bc|ef|abcde|cdef|");
    EXPECT_EQ((Text{s[5], s[6], s[UINT_MAX]}), Text("f\0\0", 3));
}

TEST(QELString, ComparesAsUnsignedBytes)
{
    const S ascending[] = {"", "A", "a", "ab", "b", "\x7F", "\x80", "\xFF"};
    for (const S& a : ascending)
        for (const S& b : ascending) {
            const auto i = &a - ascending, j = &b - ascending;
            EXPECT_EQ((std::array<int, 6>{a == b, a != b, a<b, a> b, a <= b, a >= b}),
                      (std::array<int, 6>{i == j, i != j, i<j, i> j, i <= j, i >= j}))
                << '"' << in(a) << "\" and \"" << in(b) << '"';
        }
}

TEST(QELString, Searches)
{
    const S s("abcabc");
    EXPECT_EQ((std::array{find(s, S("bc")), find(s, s), find(s, 'c'), findr(s, S("bc")), findr(S("aaa"), S("aa")),
                          findr(s, 'a'), findAny(s, "xcb")}),
              (std::array{1, 0, 2, 4, 1, 3, 1}));
    for (const int index : {find(s, S("bcx")), find(s, S()), find(s, 'x'), find(s, '\0'), findr(s, S("abcabca")),
                            findr(s, S()), findr(s, 'x'), findAny(s, S("x")), findAny(s, nullptr)})
        EXPECT_EQ(index, -1);
    EXPECT_EQ(s.count('b') + 10 * s.count('\0'), 2U);
    EXPECT_EQ(s.beginsWith("abca") + 10 * s.beginsWith("") + 100 * s.beginsWith("abcabcd"), 11);
    EXPECT_EQ(s.endsWith("cabc") + 10 * s.endsWith("") + 100 * s.endsWith("xabcabc"), 11);
    EXPECT_EQ(s.isNull() + 10 * S().isNull(), 10);
}

TEST(QELString, AnswersChangedCopies)
{
    const S s(" aB ");
    EXPECT_STREQ(upperCase(s) + lowerCase(s) + trim(s) + "|" + ltrim(s) + "|" + rtrim(s), " AB  ab aB|aB | aB");
    EXPECT_EQ(len(s), 4U);
    S cut("ab");
    EXPECT_EQ(cut.truncate(3), 0);
    EXPECT_EQ(len(cut), 2U);
    EXPECT_EQ(cut.truncate(1), 1);
    EXPECT_STREQ(cut, "a");
}

TEST(QELString, FormatsAnyLength)
{
    S s;
    for (const unsigned int width : {4095U, 4096U, 10000U}) {
        EXPECT_EQ(s.sprintf("%*d", static_cast<int>(width), 7), width);
        EXPECT_EQ(in(s), Text(width - 1, ' ') + "7");
    }
    EXPECT_EQ(s.sprintf("%ls", L"\x20AC"), 0U) << "in the C locale";
    EXPECT_STREQ(s, "");
    EXPECT_STREQ(nstr(static_cast<short>(-5)) + " " + nstr(static_cast<unsigned short>(65535)) + " " + nstr(-5),
                 "-5 65535 -5");
    EXPECT_STREQ(nstr(UINT_MAX) + " " + nstr(LONG_MIN) + " " + nstr(ULONG_MAX),
                 "4294967295 -9223372036854775808 18446744073709551615");
}

TEST(QELString, SplitsAtFirstOrLast)
{
    const char* const rows[][2] = {
        // splitl, splitr and splitName at '='
        {"key=val=x", "1 key|val=x 1 key=val|x key=val|x"},
        {"abc", "0 abc| 0 abc| |abc"},
        {"=", "1 | 1 | |"},
        {"", "0 | 0 | |"},
    };
    for (const auto& row : rows) {
        const S s(row[0]);
        S a("before"), b("before");
        const auto parts = [&] { return a + "|" + b; };
        S result = nstr(s.splitl('=', a, b));
        result = result + " " + parts();
        const int right = s.splitr('=', a, b);
        result = result + " " + nstr(right) + " " + parts();
        s.splitName('=', a, b);
        EXPECT_STREQ(result + " " + parts(), row[1]) << row[0];
    }
}

TEST(QELString, QueriesFields)
{
    const S s("a, b ,c");
    EXPECT_STREQ(s.queryField(',', 0) + s.queryField(',', 1) + s.queryField(',', 2) + s.queryField(',', 3), "abc");
    EXPECT_STREQ(S("abc").queryField(',', 0) + S().queryField(',', 0), "abc");
}

Text partsOf(QELStringIterator& parts)
{
    Text all;
    S part;
    for (int more = 1; more != 0;) {
        more = parts.enumNext(part);
        all += "<" + Text(in(part)) + ">";
    }
    return all;
}

TEST(QELStringIterator, HandsOutEveryPart)
{
    const char* const rows[][2] = {
        {"a, b ,c", "<a><b><c>"}, {"", "<>"}, {",", "<><>"}, {" a ", "<a>"}, {"a,,", "<a><><>"}, {"\ta", "<\ta>"},
    };
    for (const auto& row : rows) {
        QELStringIterator parts(row[0]);
        parts.beginEnum(',');
        EXPECT_EQ(partsOf(parts), row[1]) << row[0];
    }
}

TEST(QELStringIterator, LeavesTheOutputAloneWhenNothingIsLeft)
{
    QELStringIterator parts("a;b,c");
    S part("untouched");
    EXPECT_EQ(parts.enumNext(part), 0) << "not begun";
    EXPECT_STREQ(part, "untouched");
    parts.beginEnum(',');
    EXPECT_EQ(partsOf(parts), "<a;b><c>");
    EXPECT_EQ(parts.enumNext(part), 0);
    EXPECT_STREQ(part, "untouched");
    parts.beginEnum(';');
    EXPECT_EQ(partsOf(parts), "<a><b,c>") << "begun anew";
}

} // namespace
