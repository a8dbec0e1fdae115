#include "Import/Dtd/DTDFullMsg.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

namespace {

#define LATIN1 "<?xml version='1.0' encoding='ISO-8859-1'?>"

CString utf16(const CString& latin1, bool isBigEndian = false, bool isMarked = true)
{
    CString text = !isMarked ? "" : isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : latin1)
        text += isBigEndian ? CString{'\0', c} : CString{c, '\0'};
    return text;
}

struct Rule
{
    const char* name;
    CString dtd;
    const char* types;
    const char* report = "";
    std::vector<std::pair<const char*, CString>> others = {};
};

const Rule kRules[] = {
    {"EveryChildIsAField", "<!ELEMENT r (a,b?)><!ELEMENT a (c)><!ELEMENT b EMPTY><!ELEMENT c (#PCDATA)>",
     "a(c:String) r(a:a b:String)", "1 detail\n\n1 optional part\n"},
    {"RepeatsByItsMarkAGroupsOrTwiceInASequence",
     "<!ELEMENT r (a*,b+,(c,(d|e))*,f,f,g?)><!ELEMENT a (b)>"
     "<!ELEMENT b EMPTY><!ELEMENT c EMPTY><!ELEMENT d EMPTY><!ELEMENT e EMPTY><!ELEMENT f EMPTY><!ELEMENT g EMPTY>",
     "t_f[String] t_e[String] t_d[String] t_c[String] t_b[String] a(b:String) t_a[a] "
     "r(a:t_a b:t_b c:t_c d:t_d e:t_e f:t_f g:String)",
     "4 details\n\n3 optional parts\n1 choice\n"},
    {"AChoiceTakesTheMost",
     "<!ELEMENT r ((a|(a,b)),(c|d),((e|d)))><!ELEMENT a EMPTY><!ELEMENT b EMPTY><!ELEMENT c EMPTY><!ELEMENT d EMPTY>"
     "<!ELEMENT e EMPTY>",
     "t_d[String] r(a:String b:String c:String d:t_d e:String)", "3 details\n\n3 choices\n"},
    {"TextBesideFieldsIsAValue",
     "<!ELEMENT r (m,t,e)><!ELEMENT m (#PCDATA|x)*><!ELEMENT t (#PCDATA)><!ELEMENT e EMPTY><!ELEMENT x EMPTY>"
     "<!ATTLIST t u CDATA #IMPLIED><!ATTLIST e u CDATA #IMPLIED>",
     "e(e_u:String) t(value:String t_u:String) t_x[String] m(value:String x:t_x) r(m:m t:t e:e)",
     "5 details\nx:1:21: mixed content (order of text lost): m\n\n3 optional parts\n1 mixed content\n1 choice\n"},
    {"ARecordInsideItself", "<!ELEMENT s (s*,p)><!ELEMENT p (s?)>", "p(s:s) t_s[s] s(s:t_s p:p)",
     "2 details\n\n2 optional parts\n"},
    {"NamesGiveWay",
     "<!ELEMENT r (r_i,value,#PCDATA)><!ELEMENT r_i EMPTY><!ELEMENT value EMPTY><!ATTLIST r i CDATA #IMPLIED>",
     "r(value_2:String r_i:String value:String r_r_i:String)",
     "4 details\nx:1:1: mixed content (order of text lost): r\nx:1:1: name changed: r_i is r_r_i\nx:1:1: name changed: "
     "value is value_2\n\n2 names changed\n1 mixed content\n1 optional part\n"},
    {"ManyNamesAreThoseOfTheirRecordOnly",
     "<!ELEMENT r (y,z)><!ELEMENT y (a,b,c,d,e,f,g,h,i,j,k,l,m,n,o,p)><!ELEMENT z (b,c,d,e,f,g,h,i,j,k,l,m,n,o,p,q,a)>"
     "<!ELEMENT (a|b|c|d|e|f|g|h|i|j|k|l|m|n|o|p|q) EMPTY>",
     "y(a:String b:String c:String d:String e:String f:String g:String h:String i:String j:String k:String l:String "
     "m:String n:String o:String p:String) z(b:String c:String d:String e:String f:String g:String h:String i:String "
     "j:String k:String l:String m:String n:String o:String p:String q:String a:String) r(y:y z:z)"},
    {"TypesShareOneNameSpace",
     "<!ELEMENT r (k*,t_k,j)><!ELEMENT t_k (k)><!ELEMENT k (m)><!ELEMENT m EMPTY><!ELEMENT j (m)>"
     "<!ATTLIST j k (a|b) 'a'><!ATTLIST r k (a|b) 'a'><!ATTLIST k k (c) 'c'>",
     "j_k{a|b} k_k{c} k(m:String k_k:k_k) t_k(k:k) j(m:String j_k:j_k) t_r_k[k] r(k:t_r_k t_k:t_k j:j r_k:j_k)",
     "6 details\nx:1:42: name changed: k is k_k\nx:1:76: name changed: k is j_k\n\n3 default values\n2 names "
     "changed\n1 optional part\n"},
    {"EnumerationsAreTheirConstants",
     "<!ELEMENT r (a)><!ELEMENT a EMPTY><!ATTLIST r u ( yes | no ) 'no' v (-1|yes.no) #REQUIRED w CDATA #IMPLIED>"
     "<!ATTLIST a u (yes|no) #IMPLIED>",
     "v{-1|yes.no} u{yes|no} a(a_u:u) r(a:a r_u:u r_v:v r_w:String)",
     "3 details\n\n2 optional parts\n1 default value\n"},
    {"AttributesOfEveryTypeAndDefault",
     "<!ATTLIST r b ID #REQUIRED c NMTOKENS 'x > y' d NOTATION (e|f) #IMPLIED g CDATA #FIXED \"'\">"
     "<!ELEMENT r (a)><!ATTLIST r b CDATA #IMPLIED h ENTITY #IMPLIED><!ELEMENT a ANY>",
     "r(a:String r_b:String r_c:String r_d:String r_g:String r_h:String)",
     "7 details\nx:1:108: attribute declared twice: r b\nx:1:155: content ANY: a\n\n3 optional parts\n2 default "
     "values\n1 content ANY\n1 attribute declared twice\n"},
    {"NamespacesAreNoData",
     "<!ELEMENT f:r (f:a)><!ELEMENT f:a EMPTY><!ATTLIST f:r xmlns CDATA #FIXED 'u' xmlns:f CDATA #FIXED 'u' f:b CDATA "
     "#IMPLIED>",
     "f:r(f:a:String f:r_f:b:String)", "3 details\n\n2 default values\n1 optional part\n"},
    {"TheFirstDeclarationHolds", "<!ELEMENT r (a)>\n<!ELEMENT a EMPTY><!ELEMENT r (b)>", "r(a:String)",
     "2 losses\nx:2:19: declared twice: r\nx:2:32: reference to nothing that was read: b\n\n1 reference became text\n1 "
     "second declaration\n"},
    {"AChildThatNobodyDeclares", "<!ELEMENT r (a, b)><!ATTLIST b c CDATA #IMPLIED>", "b(b_c:String) r(a:String b:b)",
     "2 losses\nx:1:14: reference to nothing that was read: a\nx:1:17: reference to nothing that was read: b\n\n1 "
     "detail\n\n2 references became text\n1 optional part\n"},
    {"CommentsAndInstructionsAreSkippedWhole",
     "<?a > <!ELEMENT no (way)> ?><!-- <!ELEMENT no (way)> %no; ' --><!ELEMENT r (a)><!ELEMENT a EMPTY>"
     "<!ATTLIST r <!-- %no; > \" --> b CDATA #IMPLIED -- 'c' %no; -- c CDATA #IMPLIED><!><?sgml><!---->",
     "r(a:String r_b:String r_c:String)", "2 details\n\n2 optional parts\n"},
    {"EntitiesBetweenAndInsideDeclarations",
     "<!ENTITY % n 'r'><!ENTITY % m \"(a|%n;-b)\"><!Entity % t '<!ELEMENT a EMPTY><!ATTLIST %n; %l;>'>"
     "<!ENTITY % l 'c CDATA \"\"'><!ENTITY % l 'd CDATA'><!ELEMENT %n; %m;*>%t;<!ELEMENT r-b EMPTY>",
     "t_r-b[String] t_a[String] r(a:t_a r-b:t_r-b r_c:String)",
     "3 details\n\n1 optional part\n1 choice\n1 default value\n"},
    {"ReferencesThatAValueHides",
     "<!ENTITY % a '&#37;b;&#x2C;c'><!ENTITY % b 'd'><!ELEMENT r (%a;)><!ELEMENT c EMPTY><!ELEMENT d EMPTY>",
     "r(d:String c:String)"},
    {"AnEntityThatNobodyDeclared",
     "<!ELEMENT r (a, %u; b)><!ELEMENT a %u;><!ELEMENT b EMPTY>\n<!ATTLIST r %u; c %u; 'x' d %u; #IMPLIED e CDATA "
     "%u;>%u;",
     "r(a:String b:String r_c:String r_d:String r_e:String)",
     "7 losses\nx:1:17: entity declared nowhere: u\nx:1:36: entity declared nowhere: u\nx:2:13: entity declared "
     "nowhere: u\nx:2:19: entity declared nowhere: u\nx:2:29: entity declared nowhere: u\nx:2:50: entity declared "
     "nowhere: u\nx:2:54: entity declared nowhere: u\n\n2 details\n\n7 undeclared entities\n1 optional part\n1 default "
     "value\n"},
    {"EntitiesThatLeadBackAreCut", "<!ENTITY % a '%b;'><!ENTITY % b '(%a;x)'><!ELEMENT r %a;><!ELEMENT x EMPTY>",
     "r(x:String)",
     "1 loss\nx:1:34: declaration that makes no sense: b inside itself\n\n1 declaration not understood\n"},
    {"ModulesAreFoundAsTheyAreWritten",
     "<!ENTITY % m PUBLIC '-//x//EN' 'Sub/M%201.MOD'>%m;<!ENTITY % n SYSTEM 'http://x/n'>\n%n;<!ENTITY % o PUBLIC 'o'>"
     "%o;<!ENTITY % p SYSTEM 'sub'>%p;",
     "s(b:String) r(s:s)",
     "4 losses\nsub/m 1.mod:2:35: declaration that makes no sense: back inside itself\nx:2:1: module or document not "
     "local: http://x/n\nx:2:28: module or document not there: o\nx:2:57: module or document not there: sub\n\n2 "
     "documents not found\n1 document not local\n1 declaration not understood\n",
     {{"sub/m 1.mod", "<!ENTITY % m2 SYSTEM '2.mod'>\n%m2;<!ENTITY % back SYSTEM '../x'>%back;"},
      {"sub/2.mod", "<!ELEMENT r (s)><!ELEMENT s (b)><!ELEMENT b EMPTY>"}}},
    {"SectionsByTheirKeys",
     "<!ENTITY % off 'IGNORE'><!ENTITY % key ' %off; '><!ENTITY % on 'INCLUDE'>\n"
     "<![%on;[<!ELEMENT r (a,b)><![ %key; [<!ELEMENT r (no)>]]><![INCLUDE[<!ELEMENT a EMPTY>]]>]]>"
     "<![ Ignore [<![ INCLUDE [ <!ELEMENT b (no)> ]]> ' ]]>\n<![%u;[<!ELEMENT b (c)>]]><![MAYBE[<!ELEMENT c EMPTY>]]>",
     "b(c:String) r(a:String b:b)",
     "3 losses\nx:3:4: entity declared nowhere: u\nx:3:1: section with an unknown key: %u;\nx:3:27: section with an "
     "unknown key: MAYBE\n\n1 detail\nx:2:27: section left out by an entity: key\n\n2 sections not understood\n1 "
     "undeclared "
     "entity\n1 section left out\n"},
    {"AnIgnoredSectionEndsWithItsOwnEnd",
     "<![IGNORE[<![INCLUDE[<!ELEMENT r (no)>]]><!ELEMENT r (no)>]]><!ELEMENT r (a)><!ELEMENT a EMPTY>", "r(a:String)"},
    {"LinesInsideAndBehindAnEntity",
     "<!ENTITY % e '<!ELEMENT a EMPTY>\n\n<!ELMENT r (b)>\n'>%e;\n<!ELEMNT r (c)>\n<!ELEMENT r (a)>", "r(a:String)",
     "2 losses\nx:3:1: unknown statement: ELMENT\nx:5:1: unknown statement: ELEMNT\n\n2 statements not "
     "understood\n"},
    {"SgmlsWays",
     "<!ENTITY % t '#PCDATA'>\n<!element (H1|H2) - - (%t|B)* -- it's a heading --><!ELEMENT B - O EMPTY>\n"
     "<!ELEMENT r O O (H1 & H2?) +(I) -(B)><!ELEMENT I - - CDATA +(B)>"
     "<!ATTLIST (r|B) n NUMBER 1 -- %no; -- s NAME #CURRENT c (c) c>"
     "<!SHORTREF m '<' e \"&#RS;\" f><!usemap m (H1|H2)>",
     "c{c} B(B_n:String B_s:String B_c:c) t_B[B] H1(value:String B:t_B) H2(value:String B:t_B) "
     "r(H1:H1 H2:H2 r_n:String r_s:String r_c:c)",
     "12 details\nx:2:1: mixed content (order of text lost): H1\nx:2:1: mixed content (order of text lost): H2\nx:3:1: "
     "SGML exception: r\nx:3:38: SGML exception: I\n\n2 SGML exceptions\n2 mixed contents\n2 optional parts\n2 default "
     "values\n2 general entities\n1 choice\n1 content in any order\n"},
    {"SgmlsNamesHaveNoCase",
     "<!ELEMENT r - O (A, B?, C)><!ELEMENT a - - (#PCDATA)><!ATTLIST A x CDATA #REQUIRED><!ATTLIST a x CDATA #REQUIRED>"
     "<!ELEMENT b O O EMPTY><!ATTLIST B y CDATA #REQUIRED><!ELEMENT B - O CDATA>",
     "B(value:String B_y:String) a(value:String a_x:String) r(a:a B:B C:String)",
     "1 loss\nx:1:25: reference to nothing that was read: C\n\n1 detail\n\n1 reference became text\n1 optional part\n"},
    {"XmlsNamesHaveCase", "<!ELEMENT r (A)><!ELEMENT a (r)>", "r(A:String) a(r:r)",
     "1 loss\nx:1:14: reference to nothing that was read: A\n\n1 reference became text\n"},
    {"ANameInAMissingEntity",
     "<!ENTITY % s '%p;r'><!ELEMENT %s; (a)><!ATTLIST %s; k CDATA #IMPLIED>\n<!ELEMENT %a.name; EMPTY>\n"
     "<!ELEMENT %a.name; O O ANY>\n<!ATTLIST %a.name; id ID #IMPLIED>",
     "r(a:String r_k:String)",
     "8 losses\nx:1:15: entity declared nowhere: p\nx:2:11: entity declared nowhere: a.name\nx:2:1: declaration that "
     "makes no sense: ELEMENT without a name\nx:3:11: entity declared nowhere: a.name\nx:3:1: declaration that makes "
     "no "
     "sense: ELEMENT without a name\nx:4:11: entity declared nowhere: a.name\nx:4:1: declaration that makes no sense: "
     "ATTLIST without a name\nx:1:36: reference to nothing that was read: a\n\n1 detail\n\n4 undeclared entities\n3 "
     "declarations not understood\n1 reference became text\n1 optional part\n"},
    {"WhatMakesNoSenseIsSkipped",
     "<!ELEMENT><!ELEMENT 1 (a)>\n<!ELEMENT r (a,=,b) <!ELEMENT a EMPTY>\n<!ATTLIST r = CDATA #IMPLIED>"
     "<!ATTLIST r c CDATA \"x><!ELEMENT b (d><!LINKTYPE x>]]> > <\n<![ x <!ENTITY % 'x'>\n<!ENTITY x 'y'><!NOTATION z "
     "SYSTEM 'z'><!ELEMENT d EMPTY><!-- <!ELEMENT",
     "b(d:String) r(a:String b:b r_c:String)",
     "10 losses\nx:1:1: declaration that makes no sense: ELEMENT without a name\nx:1:11: declaration that makes no "
     "sense: ELEMENT without a name\nx:2:1: declaration that makes no sense: =\nx:3:1: declaration that makes no "
     "sense: r\nx:3:30: declaration that makes no sense: r\nx:3:53: declaration that makes no sense: b\nx:3:68: "
     "unknown statement: LINKTYPE\nx:4:1: declaration that makes no sense: section without '['\nx:4:7: "
     "declaration that makes no sense: ENTITY without a name\nx:5:58: comment or declaration without an end: "
     "comment\n\n2 details\n\n8 declarations not understood\n1 statement not understood\n1 comment or declaration "
     "without an end\n1 general entity\n1 notation\n"},
    {"ContentWithoutANameOrAConnector",
     "<!ENTITY % e ''>\n<!ELEMENT a ()>\n<!ELEMENT b (a,)>\n<!ELEMENT c (a 'x')>\n<!ELEMENT d (b?+)>\n"
     "<!ELEMENT r ((b | (c)+)* , d?)><!ELEMENT t (#PCDATA %e;)*>\n<!ELEMENT u (#PCDATAA)>",
     "c(a:String) b(a:String) d(b:b) t_b[b] t_c[c] r(b:t_b c:t_c d:d)",
     "5 losses\nx:2:1: declaration that makes no sense: a\nx:3:1: declaration that makes no sense: b\nx:4:1: "
     "declaration that makes no sense: c\nx:5:1: declaration that makes no sense: d\nx:7:1: declaration that makes no "
     "sense: u\n\n5 details\n\n5 declarations not understood\n4 optional parts\n1 choice\n"},
    {"ListsOfOtherThanWords", "<!ELEMENT r EMPTY><!ATTLIST r k ('x'|y|-) #IMPLIED l NOTATION (n) #IMPLIED>",
     "k{y|-} r(r_k:k r_l:String)",
     "1 loss\nx:1:19: declaration that makes no sense: r\n\n2 details\n\n1 declaration not understood\n2 optional "
     "parts\n"},
    {"ADoctypeHoldsDeclarations",
     "<!DOCTYPE r SYSTEM 'no' [ <![INCLUDE[<!ELEMENT r (a)>]]><!ELEMENT a EMPTY> ]><r>%off;<![CDATA[<!ELEMENT r "
     "(b)>]]>",
     "r(a:String)", "1 loss\nx:1:57: module or document not there: no\n\n1 document not found\n"},
    {"ADoctypeWithoutAName", "<!DOCTYPE [<!ELEMENT r (a)><!ELEMENT a EMPTY>]>", "r(a:String)",
     "1 loss\nx:1:1: declaration that makes no sense: DOCTYPE without a name\n\n1 declaration not understood\n"},
    {"ATextDeclarationInsideADeclaration",
     "<!ENTITY % e SYSTEM 'e'><!ELEMENT r (%e;)><!ENTITY % f SYSTEM 'f'><!ELEMENT a (%f;)><!ELEMENT b EMPTY>",
     "a(b:String) r(a:a c:String)",
     "1 loss\ne:2:21: reference to nothing that was read: c\n\n1 reference became text\n",
     {{"e", "<?xml version='1.0'\nencoding='UTF-8'?>a,c"}, {"f", "<?xml encoding='windows-1258'?>b"}}},
    {"ALeafIsARecordOfItsValue", "<!ELEMENT a (#PCDATA)>", "a(value:String)"},
    {"AttributesHaveATypeAndADefault",
     "<!ELEMENT r EMPTY>\n<!ATTLIST r a CDATA b CDATA #IMPLIED>\n<!ATTLIST r c FOO #IMPLIED>\n<!ATTLIST r d () 'x'>\n"
     "<!ATTLIST r e NOTATION #IMPLIED>\n<!ATTLIST r f (p|p|q) #OPTIONAL>\n<!ATTLIST r g CDATA>\n"
     "<!ATTLIST r h %no; i NOTATION %no; j (%no;) #CURRENT k CDATA %no;>\n<!ATTLIST r l",
     "f{p|q} r(r_a:String r_c:String r_d:String r_e:String r_f:f r_g:String r_h:String r_i:String r_j:String "
     "r_k:String)",
     "11 losses\nx:2:1: declaration that makes no sense: r\nx:3:1: declaration that makes no sense: r\nx:4:1: "
     "declaration "
     "that makes no sense: r\nx:5:1: declaration that makes no sense: r\nx:6:1: declaration that makes no sense: "
     "r\nx:7:1: declaration that makes no sense: r\nx:8:15: entity declared nowhere: no\nx:8:31: entity declared "
     "nowhere: "
     "no\nx:8:39: entity declared nowhere: no\nx:8:62: entity declared nowhere: no\nx:9:1: comment or declaration "
     "without "
     "an end: ATTLIST\n\n4 details\n\n6 declarations not understood\n4 undeclared entities\n1 comment or declaration "
     "without an end\n2 optional parts\n2 default values\n"},
    {"AGroupHasOneKindOfConnector", "<!ELEMENT r (a,b|c)><!ELEMENT s (a,%no;|c)><!ELEMENT (a|b|c) EMPTY>",
     "s(a:String c:String) r(a:String b:String c:String)",
     "2 losses\nx:1:1: declaration that makes no sense: r\nx:1:36: entity declared nowhere: no\n\n1 undeclared "
     "entity\n1 declaration not understood\n"},
    {"WithoutAnElementTheFileNamesTheFolder", "<!ATTLIST a b (c) #IMPLIED>", "b{c} a(a_b:b)",
     "2 details\nx:1:1: part that may not occur: a\n\n1 part that may not occur\n1 optional part\n"},
    // Each file has its own encoding: a byte order mark, a declared one, UTF-8, else Windows-1252.
    {"FileByFileAnEncoding",
     LATIN1 "<!ENTITY % m SYSTEM 'm'>%m;<!ENTITY % n SYSTEM 'n'>%n;<!ENTITY % o SYSTEM 'o'>%o;"
            "<!ENTITY % q SYSTEM 'q'>%q;<!ENTITY % s SYSTEM 's'>%s;<!ENTITY % t SYSTEM 't'>%t;"
            "<!ENTITY % u SYSTEM 'u'>%u;<!ELEMENT \xE4 (a, b, c, d, e, f, g)>",
     "g(\u043E:String) f(\u00F6:String) e(\u00F6:String) d(\u00F6:String) c(\u017E:String) b(\u00FC:String) "
     "a(\u00F6:String) \u00E4(a:a b:b c:c d:d e:e f:f g:g)",
     "1 loss\no:1:1: invalid value: encoding=\"no\"\n\n1 value not understood\n",
     {{"u",
       CString("<?xml encoding='ISO-8859-5'?><!ELEMENT g (\xDE)><!ELEMENT\0\xDE EMPTY>", 63)}, // the zero is a blank
      {"m", utf16("<!ELEMENT a (\xF6)><!ELEMENT \xF6 EMPTY>")},
      {"q", utf16("<!ELEMENT d (\xF6)>", true)},
      {"s", utf16("<!ELEMENT e (\xF6)>", false, false)},
      {"t", utf16("<?xml encoding='UTF-16'?><!ELEMENT f (\xF6)>", true, false)},
      {"n", "\xEF\xBB\xBF<!ELEMENT b (\u00FC)><!ELEMENT \u00FC EMPTY>"},
      {"o", "<?xml encoding='no'?><!ELEMENT c (\x9E)><!ELEMENT \x9E EMPTY>"}}},
};

using DtdMain = Importing<DTDFullMessage>;

class DtdRule : public Importing<DTDFullMessage>, public testing::WithParamInterface<Rule>
{};

TEST_P(DtdRule, GivesTypesAndReport)
{
    for (const auto& [name, text] : GetParam().others)
        folder.write(name, text);
    EXPECT_EQ(import(GetParam().dtd), 1);
    EXPECT_EQ(fullTypesOf(message), GetParam().types) << GetParam().dtd;
    EXPECT_EQ(reportOf(message, folder.path()), GetParam().report) << GetParam().dtd;
}

INSTANTIATE_TEST_SUITE_P(Rows, DtdRule, testing::ValuesIn(kRules), [](const auto& row) { return row.param.name; });

TEST_F(DtdMain, IsChosenByReach)
{
    const CString chain = "<!ELEMENT a (b)><!ELEMENT b (c)><!ELEMENT c (d)>";
    struct
    {
        const char* file;
        CString dtd;
        const char* root;
        const char* main;
    } const rows[] = {
        {"x", "<!ELEMENT leaf EMPTY><!ELEMENT c (d)>" + chain, "", "a"},
        {"x", chain + "<!ELEMENT f (g)><!ELEMENT g (h)><!ELEMENT h (i)>", "", "a"}, // the first of equals
        {"1.2-B.dtd", chain, "", "b"},                                              // two of three words
        {"1.2-C.dtd", chain, "", "a"},                                              // one of three words
        {"xb_bx.b2.dtd", chain, "", "a"},                                           // no word
        {"x", "<!ELEMENT a (b)><!ELEMENT b (a)><!ELEMENT c (b)>", "", "c"},
        {"x.1.dtd", "<!ATTLIST a b CDATA #IMPLIED>", "", "x.1"},
        {"1 x.dtd", "<!ATTLIST a b CDATA #IMPLIED>", "", "_1_x"},
        {"x", chain, "c", "c"},
        {"x", chain + "<!ELEMENT leaf EMPTY>", "leaf", "leaf"},
    };
    for (const auto& row : rows) {
        message.setRoot(row.root);
        EXPECT_EQ(message.parseFile(folder.write(row.file, row.dtd), "\\"), 1);
        EXPECT_EQ(message.queryMainTypeName(), row.main) << row.file << " " << row.dtd;
    }
    EXPECT_EQ(fullTypesOf(message), "leaf(value:String)"); // only what the root reaches
}

// Sources that exceed bounds by growth, nesting or repetition, with the refusal; rows without one pass.
TEST_F(DtdMain, RefusesWhatPassesABound)
{
    const auto numbered = [](std::size_t from, std::size_t to,
                             const std::function<CString(const CString&, const CString&)>& make) {
        CString all;
        for (; from < to; ++from)
            all += make(std::to_string(from), std::to_string(from + 1));
        return all;
    };
    const auto later = [](const CString& n, const CString& next) { return "<!ENTITY % e" + n + " '%e" + next + ";'>"; };
    const auto name = [](const CString& n, const CString&) { return "n" + n + "|"; };
    const auto once = [](const CString& n, const CString& next) { return "<!ENTITY % e" + next + " '%e" + n + ";'>"; };
    const auto twice = [](const CString& n, const CString& next) {
        return "<!ENTITY % e" + next + " '%e" + n + ";%e" + n + ";'>";
    };
    const CString names = "(" + numbered(0, 1100, name) + "n)";
    const CString deep = times(100'000, "("), longName(1 << 20, 'n');
    for (int i = 0; i < 10'000; ++i)
        folder.write("m" + std::to_string(i), "<!ELEMENT m" + std::to_string(i) + " (a)>");
    const std::pair<CString, const char*> rows[] = {
        {"<!ELEMENT r (a)>" + numbered(0, 39, later) + "<!ENTITY % e39 ''>%e0;", ""},
        {"<!ELEMENT r (a)>" + numbered(0, 40, later) + "<!ENTITY % e40 ''>%e0;", "40 entities inside each other"},
        {"<!ENTITY % e0 'a'>" + numbered(0, 50, once), "40 entities inside each other"},
        {"<!ENTITY % e0 '" + times(100, "a") + "'>" + numbered(0, 30, twice), "100 times its own size in entities"},
        {"<!ENTITY % m SYSTEM 'm0'><!ENTITY % e0 '%m;%m;'>" + numbered(0, 25, twice) + "%e25;",
         "100 times its own size in entities"},
        {"<!ELEMENT " + names + names + ">", "1000000 fields"},
        {"<!ATTLIST " + names +
             numbered(0, 1100, [](const CString& n, const CString&) { return "n" + n + " ID 'x' "; }) + ">",
         "1000000 fields"},
        {"<!ELEMENT " + longName + " (a)><!ATTLIST " + longName +
             numbered(0, 300, [](const CString& n, const CString&) { return " n" + n + " ID 'x'"; }) + ">",
         "256 MB of names"},
        {"<!ELEMENT " + longName + " (a)>", ""},
        {"<!ELEMENT r " + deep + "a" + times(100'000, ")*") + "><![" + times(100'000, "<![INCLUDE[") + deep, ""},
        {"<!ELEMENT r (a)>" + times(100'000, "<!--") + times(100'000, "<?") + times(100'000, "<!ATTLIST '\"%"), ""},
        {numbered(
             0, 10'000,
             [](const CString& n, const CString&) { return "<!ENTITY % m" + n + " SYSTEM 'm" + n + "'>%m" + n + ";"; }),
         ""},
    };
    for (const auto& [dtd, refusal] : rows) {
        const CString file = folder.write("x", dtd);
        const bool passes = *refusal == '\0';
        EXPECT_EQ(message.parseFile(file, "\\"), passes) << dtd.substr(0, 50);
        EXPECT_EQ(boxes.take(), passes
                                    ? std::vector<CString>()
                                    : std::vector<CString>{file + ": more than " + refusal + ", which is the limit."});
    }
    EXPECT_EQ(message.beginEnum(), 10'000);
}

TEST_F(DtdMain, AnImportLeavesNothingToTheNext)
{
    message.setRoot("a");
    EXPECT_EQ(import("<!ELEMENT a (b)><!ELEMENT b (#PCDATA)>"), 1);
    message.setRoot("");
    EXPECT_EQ(import("<!ATTLIST c d CDATA #IMPLIED>"), 1);
    EXPECT_EQ(message.queryMainTypes(), std::vector<CString>());
    EXPECT_EQ(message.queryMainTypeName(), "x");
    EXPECT_EQ(fullTypesOf(message), "c(c_d:String)");
    EXPECT_EQ(import("<!ELEMENT a (b)>"), 1);
    EXPECT_EQ(message.queryMainTypes(), std::vector<CString>{"a"});
    message.setCatalogs({"/none"});
    EXPECT_EQ(import("<!ELEMENT a (b)>"), 0);
    EXPECT_EQ(message.queryMainTypes(), std::vector<CString>());
    boxes.take();
}

// What belongs to elements that the root doesn't reach is not reported; what belongs to none always is.
TEST_F(DtdMain, ReportsWhatTheRootReaches)
{
    const CString dtd = R"(<!ENTITY % none SYSTEM 'none'>%none;<!ENTITY e 'x'>
<!ELEMENT a (b?, c)*><!ELEMENT c ANY><!ATTLIST a x (p|q) 'p' y CDATA #IMPLIED>
<!ELEMENT (d|f) - - (#PCDATA|g)*><!ATTLIST f z CDATA #IMPLIED z CDATA #IMPLIED>
<!ELEMENT h (%no;, i?)><!ATTLIST h j CDATA #FIXED 'j' !>
<!ELEMENT h EMPTY><!ELEMENT 1x EMPTY><!ELEMENT k (l m)><!ELEMNT n (o)>
<!ELEMENT o (p)
)";
    const std::pair<const char*, const char*> rows[] = {
        {"a", "4 losses: 1 document not found, 1 reference became text, 1 statement not understood, 1 comment or "
              "declaration without an end; 3 optional parts; 1 content ANY; 1 default value; 1 general entity"},
        {"d", "4 losses: 1 document not found, 1 reference became text, 1 statement not understood, 1 comment or "
              "declaration without an end; 1 mixed content; 1 optional part; 1 choice; 1 general entity"},
        {"f", "4 losses: 1 document not found, 1 reference became text, 1 statement not understood, 1 comment or "
              "declaration without an end; 3 optional parts; 1 mixed content; 1 attribute declared twice; 1 choice; 1 "
              "general entity"},
        {"h", "7 losses: 1 document not found, 1 undeclared entity, 1 reference became text, 1 statement not "
              "understood, 1 comment or declaration without an end, 1 declaration not understood, 1 second "
              "declaration; 1 optional part; 1 default value; 1 general entity"},
        {"k", "6 losses: 2 references became text, 1 document not found, 1 statement not understood, 1 comment or "
              "declaration without an end, 1 declaration not understood; 1 general entity"},
    };
    for (const auto& [root, counts] : rows) {
        message.setRoot(root);
        EXPECT_EQ(import(dtd), 1);
        EXPECT_EQ(countsOf(message), counts) << root;
    }
}

TEST_F(DtdMain, NothingToImportIsAnError)
{
    EXPECT_EQ(import("<!ENTITY % a 'b'>"), 0);
    EXPECT_EQ(boxes.details, "") << "the text says all";
    EXPECT_EQ(import("<!ENTITY % a SYSTEM 'none'>%a;"), 0);
    EXPECT_THAT(boxes.details, testing::StartsWith("1 loss: "));
    EXPECT_EQ(boxes.take(), std::vector(2, folder.path("x") + " declares no element, type or enumeration."));
    message.setRoot("no");
    EXPECT_EQ(import("<!ELEMENT a (b)>"), 0);
    EXPECT_THAT(boxes.take(), testing::ElementsAre("There is no element called no."));
}

} // namespace
