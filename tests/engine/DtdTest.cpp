#include "Import/Dtd/DTDMsg.h"
#include "support/Documents.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

#include <algorithm>

namespace {

const Case kDtds[] = {
    {"WorkedExample",
     "<!ELEMENT order (header, item+, note?)><!ELEMENT header (#PCDATA)>\n<!ELEMENT item (sku, (qty, price)*)>"
     "<!ATTLIST order id CDATA #IMPLIED>",
     "t_price:t=String(price:S=String) t_qty:t=String(qty:S=String) item:R(sku:S t_qty:t=String t_price:t=String) "
     "t_item:t(item:R) order:R(header:S t_item:t note:S order_id:S)"},
    {"Nothing", "", ""},
    {"TextElements", "<!ELEMENT r (x, y, z)><!ELEMENT x EMPTY><!ELEMENT y ANY><!ELEMENT z (#CDATA)>",
     "r:R(x:S y:S z:S)"},
    {"NameTwiceRepeats", "<!ELEMENT x (a, a)>", "t_a:t=String(a:S=String) x:R(t_a:t=String)"},
    {"MarkedChoice", "<!ELEMENT x (a|b)+>",
     "t_b:t=String(b:S=String) t_a:t=String(a:S=String) x:R(t_a:t=String t_b:t=String)"},
    {"MarkBeforeAnother", "<!ELEMENT x (a*?, b?+, c?)>",
     "t_b:t=String(b:S=String) t_a:t=String(a:S=String) x:R(t_a:t=String t_b:t=String c:S)"},
    {"NestedGroupIsFlattened", "<!ELEMENT x (a, (b, (c))*, d)>",
     "t_c:t=String(c:S=String) t_b:t=String(b:S=String) x:R(a:S t_b:t=String t_c:t=String d:S)"},
    {"MarkedGroupIsOneFlatList", "<!ELEMENT x (a, (b, c)+, d)*>",
     "t_d:t=String(d:S=String) t_c):t=String(c):S=String) t_b:t=String(b:S=String) t_a:t=String(a:S=String) "
     "x:R(t_a:t=String t_b:t=String t_c):t=String t_d:t=String)"},
    {"MarkBehindSeparatorIsAnothers", "<!ELEMENT x ((a), b*)>", "t_b:t=String(b:S=String) x:R(a:S t_b:t=String)"},
    {"MarkReachesOverAGroup", "<!ELEMENT x ((a) (b)*, c)>", "t_a:t=String(a:S=String) x:R(t_a:t=String c:S)"},
    {"MixedContent", "<!ELEMENT x (#PCDATA|a|#CDATA ? *)*>", "t_a:t=String(a:S=String) x:R(t_a:t=String)"},
    {"AndConnector", "<!ELEMENT x - - (a & b)>", "x:R(- -:S a:S b:S)"},
    {"LoneMarksAreNoNames", "<!ELEMENT x (a, *, +*?, ?)>", "x:R(a:S)"},
    {"EmptyFirstPiece", "<!ELEMENT x (, a)>", ""},
    {"KeywordsOfAnyCaseAndAnyWhiteSpace", "<!element\tX\n (\r\n aA\t)><!AttList X b CDATA #IMPLIED>",
     "X:R(aA:S X_b:S)"},
    {"CommentWithMarkup", "<!-- <!ELEMENT no (way)> --><!ELEMENT x (a)>", "no:R(way:S > --><!ELEMENT x:S a:S)"},
    {"CommentLeftOpenEndsTheScan", "<!ELEMENT x (a)><!-- <!ELEMENT x (b)>", "x:R(a:S)"},
    {"EndsBehindStartsAreSoughtAgain", ">>> <!ELEMENT x (a)>", "x:R(a:S)"},
    {"EndOfACommentBehindItsStart", "-->> <!-- c --><!ELEMENT x (a)>", "x:R(a:S)"},
    {"StatementWithoutItsMarkAtTheStart", "<ELEMENT x (a)>", "x:R(a:S)"},
    {"StartsDriftAhead", "< <!ELEMENT x (a)><!ELEMENT y (b)>",
     "t_a:t=String(a:S=String) x:R(t_a:t=String ><!ELEMENT y:S b:S)"},
    {"TooFewParentheses", "<!ELEMENT x (a, (b, (c)>", "x:R(a:S b:S c:S)"},
    {"LastParenthesisEndsAllThatAreOpen", "<!ELEMENT x (a, (b, (c)+, d>",
     "t_c:t=String(c:S=String) t_b:t=String(b:S=String) t_a:t=String(a:S=String) x:R(t_a:t=String t_b:t=String "
     "t_c:t=String d:S)"},
    {"OpenGroupBehindAClosedOne", "<!ELEMENT x ((a*, b)+()+>",
     "t_b):t=String(b):S=String) t_a:t=String(a:S=String) x:R(t_a:t=String t_b):t=String)"},
    {"TooManyParentheses", "<!ELEMENT x (a)), b)>", "x:R(a:S b:S)"},
    {"NamelessRecordTakesNothing", "<!ELEMENT (a, b)><!ELEMENT x (a)>", "x:R(a:S)"},
    {"ElementsOwnField", "<!ELEMENT list (item, list?)>", "list:R(item:S list:R)"},
    {"TwoThatHoldEachOther", "<!ELEMENT a (b)><!ELEMENT b (a*)>", "a:R(b:R) t_a:t(a:R) b:R(t_a:t)"},
    {"AttributeBeforeItsElement", "<!ATTLIST x id CDATA #IMPLIED><!ELEMENT x (a)>", "x:R(x_id:S a:S)"},
    {"AttlistNamesTheOtherKeyword", "<!ATTLIST element id CDATA #IMPLIED>", "element:R(element_id:S)"},
    {"SecondAttributeReadsAsThePair", "<!ATTLIST x a CDATA #IMPLIED b CDATA #IMPLIED>", "b:R(b_CDATA:S) x:R(x_a:S)"},
    {"NamesInEucJp", "<!ELEMENT \xB6\xC8\xCC\xB3 (\xCC\xBE)><!ELEMENT \xCC\xBE (\xC0\xAB)>",
     "\xCC\xBE:R(\u00C0\u00AB:S) \u00B6\u00C8\u00CC\u00B3:R(\xCC\xBE:R)"}, // one of them is also valid UTF-8
    {"EachNameIsOfAnEncodingOfItsOwn",
     "<!ELEMENT \xE4 (\u00E4*, \x8D)><!ELEMENT \u00E4 (\xC3)><!ATTLIST \u00E4 \xE4 CDATA #IMPLIED>",
     "\u00E4:R(t_\u00E4:t \xC2\x8D:S \u00C3:S \u00E4_\u00E4:S) t_\u00E4:t(\u00E4:R)"},
    // A usage key is the record's name, a dot and the field's name, so names with dots can collide.
    {"DotsInNames", "<!ELEMENT a (b.c)><!ELEMENT a.b (c)>",
     "a.b:R(c:S) t_b.c:t=String(b.c:S=String) a:R(t_b.c:t=String)"},
};

class Dtd : public Importing<DTDMessage>
{};

TEST_F(Dtd, GivesTypes)
{
    for (const Case& row : kDtds) {
        DTDMessage fresh;
        EXPECT_EQ(fresh.parseData(row.in, "\\b\\") + fresh.parseData(row.in, "\\b\\"), 2) << "nothing stays";
        EXPECT_EQ(typesOf(fresh), row.out) << row;
        boxes.take();
    }
}

// Only the first record in which an element repeats has its table. Equal names share an element.
const Case kLosses[] = {
    {"InTheFirstRecord", "<!ELEMENT x (a*, b, b)><!ELEMENT y (a, b)>", ""},
    {"InASecondRecord", "<!ELEMENT x (a*)>\n<!ELEMENT y (b,\n a+)>", "x:3:2: repetition skipped: a\n"},
    {"OfANameTwice", "<!ELEMENT x (a*)>\n<!ELEMENT y (a, a)>", "x:2:17: repetition skipped: a\n"},
    {"InOneRecordTwice", "<!ELEMENT x (a*, a*)>", ""},
    {"WithTheTablesNameTaken", "<!ELEMENT x (a*, t_a)>", "x:1:14: repetition skipped: a\n"},
    {"OfAlternatives", "<!ELEMENT x (a |\n (a, b))>", "x:2:3: single field read as repeated: a\n"},
    {"OfAlternativesInASecondRecord", "<!ELEMENT y (a, a)><!ELEMENT x (a | (a, b))>", ""},
    {"BesideAlternatives", "<!ELEMENT x (a, (a | b))>", ""},
    {"InTwoDeclarations", "<!ELEMENT x (a)><!ELEMENT x (a, b)>",
     "x:1:27: declared twice: x\nx:1:30: single field read as repeated: a\n"},
    {"OfAnAttribute", "<!ELEMENT x (a)>\n<!ATTLIST x i CDATA #IMPLIED>\n<!ATTLIST x i CDATA #IMPLIED>",
     "x:3:13: single field read as repeated: x_i\n"},
    {"AttributeCalledLikeATable", "<!ELEMENT x (x_i, x_i)><!ELEMENT x_i EMPTY>\n<!ATTLIST x i CDATA #IMPLIED>",
     "x:2:13: single field read as repeated: x_i\n"},
    {"TableCalledLikeAnAttribute", "<!ATTLIST x i CDATA #IMPLIED>\n<!ELEMENT x (x_i*)><!ELEMENT x_i EMPTY>",
     "x:1:13: single field read as repeated: x_i\n"},
    {"AttributeCalledLikeATableElsewhere",
     "<!ELEMENT x (x_y_i*)><!ELEMENT x_y_i EMPTY><!ELEMENT x_y EMPTY><!ATTLIST x_y i CDATA #IMPLIED>", ""},
    {"AttributeCalledLikeARecord", "<!ELEMENT x (b)><!ELEMENT x_i (a)>\n<!ATTLIST x i CDATA #IMPLIED>",
     "x:2:13: name declared differently elsewhere: x_i\n"},
    {"RecordCalledLikeAnAttribute", "<!ATTLIST x i CDATA #IMPLIED>\n<!ELEMENT x_i (a)><!ELEMENT x (a)>",
     "x:1:13: name declared differently elsewhere: x_i\n"},
    {"RecordCalledLikeAFieldOfAnother", "<!ELEMENT x (a)><!ELEMENT y (x.a)>\n<!ELEMENT x.a (b)>",
     "x:1:30: single field read as repeated: a in x, because of x.a\n"},
    {"InAnotherEncoding", "<!ELEMENT x (\xE4*)>\n<!ELEMENT y (\xE4, \xE4?)>", "x:2:17: repetition skipped: \u00E4\n"},
    {"TextBesideElements", "<!ELEMENT x (#PCDATA|a)*>", "x:1:11: text beside fields skipped: x\n"},
    {"TextBesideAnAttribute", "<!ELEMENT y (x)>\n<!ELEMENT x (#PCDATA)><!ATTLIST x k CDATA #IMPLIED>",
     "x:2:11: text beside fields skipped: x\n"},
    {"NoContent", "\n<!ELEMENT x >", "x:2:1: declaration that makes no sense: x\n"},
    {"NoSuchContent", "<!ELEMENT x a>", "x:1:1: declaration that makes no sense: x\n"},
    {"AnEmptyGroup", "<!ELEMENT x ( )>", "x:1:1: declaration that makes no sense: x\n"},
    {"AGroupWithoutAFirstName", "<!ELEMENT x (, a)>", "x:1:1: declaration that makes no sense: x\n"},
    {"AGroupWithoutAnEnd", "<!ELEMENT x (a>", "x:1:1: declaration that makes no sense: x\n"},
    {"ContentsOfXmlAndSgml", "<!ELEMENT x (a)?><!ELEMENT y Any\n><!ELEMENT z - O EMPTY><!ELEMENT u - - cdata>", ""},
    {"TwoDeclarations", "<!ELEMENT x (a)>\n<!ELEMENT x (b)><!ATTLIST ELEMENT b CDATA #IMPLIED>",
     "x:2:11: declared twice: x\nx:2:27: type without a declaration: ELEMENT\n"},
    {"AGroupOfNames", "<!ELEMENT (x|y) (a)>", "x:1:11: declaration that makes no sense: ELEMENT without a name\n"},
    {"AttributeBehindADefaultWithAnEnd", "<!ELEMENT x (a)><!ATTLIST x k CDATA \"a>b\" l (c|d) 'c' m ID #FIXED '>' >",
     "x:1:43: declaration skipped: l\nx:1:55: declaration skipped: m\n"},
    {"AttributeInWhatIsSkipped", "<!ELEMENT x (a)><!ATTLIST x y ID 'v'\n  z ID '0' >",
     "x:2:3: declaration skipped: z\n"},
    {"AttributesBehindOtherTypes", "<!ELEMENT x (a)><!ATTLIST x k ID #IMPLIED ><!ATTLIST x l CDATA ''>", ""},
    {"BehindAByteOrderMark", "\xEF\xBB\xBF<!ELEMENT x (a)>", ""},
    {"PlaceBehindAByteOrderMark", "\xEF\xBB\xBF<!ELEMENT x (#PCDATA|a)*>", "x:1:11: text beside fields skipped: x\n"},
    {"GroupBetweenAGroupAndItsMark", "<!ELEMENT x ((a) (t_a)*,\n(b)?)>", "x:1:19: group skipped: t_a\n"},
    {"AnyBesideAnAttribute", "<!ELEMENT x ANY ><!ATTLIST x k CDATA #IMPLIED>",
     "x:1:11: text beside fields skipped: x\n"},
};

TEST_F(Dtd, TellsWhatTheModelDropsOrInvents)
{
    for (const Case& row : kLosses) {
        import(row.in + "<!ELEMENT a EMPTY><!ELEMENT b EMPTY><!ELEMENT t_a EMPTY><!ELEMENT \xE4 EMPTY>");
        const CString report = reportOf(message, folder.path());
        const std::size_t start = report.find('\n') + 1;
        EXPECT_EQ(row.out.empty() ? "" : report.substr(start, report.find("\n\n") + 1 - start), row.out) << row;
        EXPECT_EQ(message.queryReport().queryTotal(SourceReport::loss), std::ranges::count(row.out, '\n')) << row;
    }
}

TEST_F(Dtd, AttlistThatCannotBeSplitIsReportedAndTheRestGoesOn)
{
    for (const auto& [attlist, types] : {std::pair(" x id CDATA #REQUIRED>", "y:R(z:S) x:R(x_id:S)"),
                                         std::pair(" x id NMTOKEN #IMPLIED>", "y:R(z:S) x:R(x_id:S)"),
                                         std::pair(" x>", "y:R(z:S)"), std::pair(" >", "y:R(z:S)")}) {
        EXPECT_EQ(message.parseData(CString("<!ATTLIST") + attlist + "<!ELEMENT y (z)>", "\\"), 1);
        EXPECT_THAT(boxes.take(), testing::ElementsAre(CString("Can not parse DTD statement:\n") + attlist));
        EXPECT_EQ(typesOf(message), types) << attlist;
    }
}

TEST_F(Dtd, MainTypeStaysAndFolderFollowsIt)
{
    message.parseData("<!ELEMENT first (a)>", "\\sys\\");
    message.beginEnum();
    EXPECT_EQ(message.enumNext()->queryPath(), "\\sys\\first\\");
    EXPECT_EQ(message.parseData(CString("<!ELEMENT\0second (b, b.c)>", 26), "\\"), 1);
    EXPECT_EQ(message.queryMainTypeName(), "first");
    EXPECT_EQ(typesOf(message), "second:R(b:S b.c:S)");
}

// The base path, the main type and the names in it may differ in encoding.
TEST_F(Dtd, NamesOfTheFolderAreReadOneByOne)
{
    CString document;
    for (const char* path : {"\\Auftr\xE4ge\\", "\\Auftr\u00E4ge\\"}) {
        DTDMessage fresh;
        fresh.parseData("<!ELEMENT gr\xF6\xDF"
                        "e* (\u00E4)><!ELEMENT \u00E4 (gr\xF6\xDF"
                        "e*)>",
                        path);
        EXPECT_EQ(documentFault(fresh), "");
        fresh.getXML(document);
        EXPECT_THAT(document, testing::HasSubstr("<gr\u00F6\u00DFe_>\r\n"));
        EXPECT_THAT(document, testing::HasSubstr("\"\\Auftr\u00E4ge\\gr\u00F6\u00DFe*\\\u00E4\""));
    }
}

TEST_F(Dtd, MainTypeFitsAFolder)
{
    const CString name(4096, 'n');
    EXPECT_EQ(message.parseData("<!ELEMENT " + name + "n(a)>", "\\"), 0);
    EXPECT_THAT(boxes.take(), testing::ElementsAre("Can not parse DTD statement:\n " + name.substr(0, 199)));
    EXPECT_EQ(message.parseData("<!ELEMENT " + CString(4096, '\x8D') + "(a)>", "\\") + message.beginEnum(), 2);
    EXPECT_EQ(documentFault(message), "");
}

TEST_F(Dtd, FileThatCannotBeOpened)
{
    message.parseData("<!ELEMENT x (a)>", "\\");
    EXPECT_EQ(message.parseFile(folder.path("none.dtd"), "\\") + message.parseFile(folder.path(), "\\"), 0);
    EXPECT_THAT(boxes.take(), testing::ElementsAre("Can't open file " + folder.path("none.dtd") + ", error = 2",
                                                   "Can't open file " + folder.path() + ", error = 5"));
    EXPECT_EQ(message.enumNext(), nullptr);
}

// Guards against scanning per statement, which takes minutes or gigabytes, and against recursion by groups.
TEST_F(Dtd, LargeAndCrookedTextsEndSoon)
{
    constexpr int kRefused = -1;
    // The record x.n0 has the usage key of the first field of x, so that this one has no usage of its own.
    CString manyTables = "<!ELEMENT x.n0 (a)><!ELEMENT x (", manyTwice = "<!-- < --><!ELEMENT x (a)>";
    for (int i = 0; i < 200'000; ++i) {
        manyTables += "n" + std::to_string(i) + "*,";
        manyTwice += "n" + std::to_string(i) + ",n" + std::to_string(i) + ",";
    }
    for (const auto& [text, types] :
         {std::pair(times(500'000, "<") + times(500'000, ">"), kRefused),
          {times(200'000, "<!ELEMENT ") + times(200'000, ">"), kRefused},
          {times(5'000, "<") + "<!ELEMENT x (" + times(10'000, "a,") + "b)" + times(5'001, ">"), 3},
          {"<!ELEMENT x (a)><!ELEMENT " + CString(100'000, 'n') + " (" + times(50'000, "a,b.,") + "c)>", 4},
          {"<!ELEMENT x " + times(1'000'000, "(") + "a" + times(1'000'000, ")") + ">", 1},
          {"<!ELEMENT x " + times(1'000'000, "(") + "a>", 1},
          {"<!ELEMENT x (" + times(300'000, "a,(b)?,") + "c)*>", 4},
          {times(300, "<") + "<!ELEMENT x (" + times(1'000'000, " ") + "a)" + times(301, ">"), kRefused},
          {times(100'000, "<!-- "), 0},
          {manyTwice + "last)>", 200'001},
          {manyTables + "last)>", 200'002},
          {"<!ELEMENT x (a)>" + times(400'000, "% "), 1}}) {
        EXPECT_EQ(message.parseData(text, "\\"), types != kRefused) << text.substr(0, 40);
        EXPECT_EQ(message.beginEnum(), std::max(types, 0)) << text.substr(0, 40);
        EXPECT_EQ(boxes.take().size(), types == kRefused) << text.substr(0, 40);
    }
}

} // namespace
