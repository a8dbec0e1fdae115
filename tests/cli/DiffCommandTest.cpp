#include "CommandFixture.h"

namespace {

TEST_F(ImportCommand, TellsWhatDiffers)
{
    const Case rows[] = {
        // Differences from an earlier document, with the exit statuses of diff(1): 0, 1 and 2.
        {"$import r.dtd -o r.xml; $import r.dtd --diff r.xml && $import r.dtd --diff r.xml --json",
         {0, "{\"version\":1,\"same\":true,\"compatible\":true,\"for\":\"readers\",\"changes\":[]}\n", ""}},
        {"echo '<!ELEMENT r (a*, b, c)><!ELEMENT c (d)>' >d.dtd; $import d.dtd -q -b '\\sys\\rosettanet' --diff r.xml",
         {1,
          R"(added record \sys\rosettanet\r\c [type-added]
added table \sys\rosettanet\r\t_a [type-added]
changed repetition of \sys\rosettanet\r\r.a: once to repeated [repetition-changed]
changed repetition of \sys\rosettanet\r\r.b: repeated to once [repetition-changed]
added field \sys\rosettanet\r\r.c: \sys\rosettanet\r\c [field-added]
removed table \sys\rosettanet\r\t_b [type-removed]
not compatible: it breaks readers
)",
          ""}},
        {"echo '<!ELEMENT r (b+)>' >s.dtd; $import s.dtd -q --diff r.xml",
         {1, "removed field \\sys\\rosettanet\\r\\r.a: String [field-removed]\nnot compatible: it breaks readers\n",
          ""}},
        // Another folder is one line; types are compared as if they were in the same folder.
        {"$import r.dtd -b '\\acme' --diff - <r.xml",
         {1,
          "changed base path: \\sys\\rosettanet\\r\\ to \\acme\\r\\ [folder-changed]\n"
          "not compatible: it breaks readers\n",
          ""}},
        {"sed 's/r (/s (/' r.dtd >s.dtd; $import s.dtd --diff r.xml | head -1; $import s.dtd -b '\\' --diff r.xml | "
         "head -1",
         {0,
          "changed main element: \\sys\\rosettanet\\r\\ to \\sys\\rosettanet\\s\\ [folder-changed]\n"
          "changed base path and main element: \\sys\\rosettanet\\r\\ to \\s\\ [folder-changed]\n",
          ""}},
        {"$import dtd --full r.dtd s.dtd -b '\\acme' -o rs.xml; $import dtd --full r.dtd s.dtd -b '\\a\\b' --diff "
         "rs.xml",
         {1,
          "changed base path: \\acme\\ to \\a\\b\\ [folder-changed]\n"
          "not compatible: it breaks readers\n",
          ""}},
        {"$import r.dtd -b '\\acme' --diff r.xml --ignore-folders; $import - -b '\\acme' --diff - <r.dtd",
         {2, "", mistake("--diff: standard input can't be both the source and the document")}},
        {"printf '<!ELEMENT r (a, b, c+)>' >c.dtd; $import c.dtd -q --diff r.xml | grep -c breaks; $import r.dtd -o "
         "r2.xml;"
         "printf '<!ELEMENT r (a)>' >e.dtd; $import e.dtd -q --diff r.xml --allow type-removed",
         {1,
          "1\nremoved field \\sys\\rosettanet\\r\\r.b: String* [field-removed]\n"
          "removed table \\sys\\rosettanet\\r\\t_b [type-removed, allowed]\nnot compatible: it breaks readers\n",
          ""}},
        {"$import e.dtd -q --diff r.xml --allow type-removed --allow field-removed | tail -1",
         {0, "compatible: it breaks no readers\n", ""}},
        {"$import e.dtd -q --diff r.xml --allow x", {2, "", mistake("--allow: no change is called x")}},
        // An added constant breaks readers, a removed one breaks writers.
        {"e() { printf '<!ELEMENT r (t)><!ATTLIST r k (%s) #IMPLIED>' \"$1\" >k.dtd; shift; $import k.dtd -q --full "
         "\"$@\" | tail "
         "-1; }; e 'y|n' -o k.xml; for who in readers writers both; do e 'y|n|u' --diff k.xml --compatible $who; "
         "e y --diff k.xml --compatible $who; done",
         {0,
          "not compatible: it breaks readers\ncompatible: it breaks no readers\ncompatible: only additions\n"
          "not compatible: it breaks writers\nnot compatible: it breaks readers or writers\n"
          "not compatible: it breaks readers or writers\n",
          ""}},
        {"printf '<!ATTLIST r j (a|b) #IMPLIED k (y|n) #IMPLIED v CDATA #IMPLIED><!ELEMENT r (s?)><!ELEMENT s (t)>' "
         ">f1.dtd; $import "
         "f1.dtd -q --full -o f1.xml;"
         "printf '<!ATTLIST r j (b|c) #IMPLIED k (y|m) #IMPLIED s CDATA #IMPLIED><!ELEMENT r (k)><!ELEMENT k (t)>' "
         ">f2.dtd;"
         "$import f2.dtd -q --full --diff f1.xml --json | sed -E 's/,\"(place|breaks)\":(\\{[^}]*\\}|\\[[^]]*\\])//g'",
         {0, R"({"version":1,"same":false,"compatible":false,"for":"readers","changes":[
  {"id":"type-added","change":"added","what":"enumeration","name":"\\sys\\rosettanet\\r\\r_k","allowed":false},
  {"id":"constant-added","change":"added","what":"constant","name":"\\sys\\rosettanet\\r\\j.c","allowed":false},
  {"id":"constant-removed","change":"removed","what":"constant","name":"\\sys\\rosettanet\\r\\j.a","allowed":false},
  {"id":"kind-changed","change":"changed","what":"kind","name":"\\sys\\rosettanet\\r\\k","from":"enumeration","to":"record","allowed":false},
  {"id":"field-added","change":"added","what":"field","name":"\\sys\\rosettanet\\r\\r.k","to":"\\sys\\rosettanet\\r\\k","allowed":false},
  {"id":"type-changed","change":"changed","what":"type","name":"\\sys\\rosettanet\\r\\r.r_k","from":"\\sys\\rosettanet\\r\\k","to":"\\sys\\rosettanet\\r\\r_k","allowed":false},
  {"id":"field-added","change":"added","what":"field","name":"\\sys\\rosettanet\\r\\r.r_s","to":"String","allowed":false},
  {"id":"field-removed","change":"removed","what":"field","name":"\\sys\\rosettanet\\r\\r.s","from":"\\sys\\rosettanet\\r\\s","allowed":false},
  {"id":"field-removed","change":"removed","what":"field","name":"\\sys\\rosettanet\\r\\r.r_v","from":"String","allowed":false},
  {"id":"type-removed","change":"removed","what":"record","name":"\\sys\\rosettanet\\r\\s","allowed":false}]}
)",
          ""}},
        // Two fields of the same name.
        {"printf '<x><BROKERTYPEDESCRIPTION NAME=\"\\\\a\\\\R\"><ROW><FIELD NAME=\"f\" TYPE=\"String\"/><FIELD "
         "NAME=\"f\" "
         "TYPE=\"String\"/></ROW></BROKERTYPEDESCRIPTION></x>' >w.btd; "
         "$import btd w.btd -q -o w2.btd; $import btd w.btd -q --diff w2.btd",
         {0, "", ""}},
        // Types that the document has word for word are not imported. The document lacks one of them and has others; an
        // unchanged field has another content, because its table differs; a type in a comment is none.
        {R"(printf '<!ELEMENT r (s*,t)><!ELEMENT s (a)><!ELEMENT t (b)>' >h.dtd; $import h.dtd -q --full -o h.xml
edit() { sed -E "s#^$1</r>#$2</r>#" h.xml >h2.xml; $import h.dtd -q --full --diff h2.xml | head -n -1; echo; }
edit '(<B.*ION>)(<B.*ION>)(<B.*)' '\2\3<BROKERTYPEDESCRIPTION NAME="\\q"><ROW/></BROKERTYPEDESCRIPTION>'
edit '(.*COMPONENT TYPE=")[^"]*(.*)' '\1Time\2'
edit '(<B.*ION>)(<B.*ION>)(<B.*ION>)(<B.*)' '<BROKERTYPEDESCRIPTION NAME="\\q"><ROW><FIELD NAME="f" TYPE="Time"><!--</BROKERTYPEDESCRIPTION>\1<BROKERTYPEDESCRIPTION NAME="\\z">--></FIELD></ROW></BROKERTYPEDESCRIPTION>\2\3\4')",
         {0, R"(added record \sys\rosettanet\r\t [type-added]
added record \sys\rosettanet\r\s [type-added]
removed record \q [type-removed]

changed type of \sys\rosettanet\r\t_s: Time to \sys\rosettanet\r\s [type-changed]
changed type of \sys\rosettanet\r\r.s: Time to \sys\rosettanet\r\s [type-changed]

added record \sys\rosettanet\r\t [type-added]
removed record \q [type-removed]

)",
          ""}},
        // A field whose table is one of tables, of which the inner one differs.
        {R"(printf '<x><T NAME="\\a\\U"><TABLE><C TYPE="Time"/></TABLE></T><T NAME="\\a\\T"><TABLE><C TYPE="\\a\\U"/></TABLE></T>
<T NAME="\\a\\R"><ROW><FIELD NAME="f" TYPE="\\a\\T"/></ROW></T></x>' >t.btd
$import btd t.btd -o t.xml; sed -i s/Time/Number/ t.xml; $import btd t.btd --diff t.xml | head -n -1)",
         {0, R"(changed type of \a\T: Number to Time [type-changed]
changed type of \a\U: Number to Time [type-changed]
changed type of \a\R.f: Number to Time [type-changed]
)",
          ""}},
        // An array without a size has that of its document, whether that has been written or not.
        {"printf '<x><T NAME=\"\\\\a\\A\"><ARRAY/></T><T NAME=\"\\\\a\\R\"><ROW><FIELD NAME=\"f\" TYPE=\"String\"/>"
         "</ROW></T></x>' >v.btd; $import btd v.btd -q -o v.xml; sed -i s/String/Number/ v.xml; $import btd v.btd -q "
         "--diff "
         "v.xml --allow type-changed | head -n -1",
         {0, "changed type of \\a\\R.f: Number to String [type-changed, allowed]\n", ""}},
        // Two enumerations of the same name in two folders. The order of the sources makes no difference.
        {"for n in a b; do echo \"<schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:$n' "
         "targetNamespace='urn:$n'><simpleType name='E'><restriction base='string'><enumeration value='c'/>"
         "</restriction></simpleType><element name='D'><complexType><attribute name='e' type='t:E'/></complexType>"
         "</element></schema>\" >$n.xsd; done; $import xsd --full a.xsd b.xsd -o s.xml; "
         "$import xsd --full b.xsd a.xsd --diff s.xml",
         {0, "", ""}},
        // A second namespace changes the name of the first one's folder; that is not a move of all types.
        {"for n in x y; do sed s,urn:.,http://$n/a,g a.xsd >$n.xsd; done; "
         "$import x.xsd --full --folders namespace -o x.xml; $import xsd --full x.xsd y.xsd --diff x.xml",
         {1, R"(added enumeration \sys\xml\y-a\E [type-added]
added enumeration \sys\xml\x-a\E [type-added]
added record \sys\xml\x-a\D [type-added]
added record \sys\xml\y-a\D [type-added]
removed enumeration \sys\xml\a\E [type-removed]
removed record \sys\xml\a\D [type-removed]
not compatible: it breaks readers
)",
          ""}},
        {"$import r.dtd --diff none", {2, "", "none: error: No such file or directory\n"}},
        // The same types, but not a document: something follows the end, or the end is missing.
        {"(cat r.xml; echo x) >x.xml; $import r.dtd --diff x.xml; head -c -1 r.xml >x.xml; $import r.dtd --diff x.xml",
         {2, "", "x.xml:4:446: error: Extra content at the end of the document\nx.xml:4:445: error: expected '>'\n"}},
        {"echo '<a/>' >a.xml; $import r.dtd --diff a.xml", {2, "", "a.xml: error: it is not a document of types\n"}},
        {"echo null >n.json; $import json n.json --allow-empty -o n.xml; $import json n.json --allow-empty --diff "
         "n.xml && $import r.dtd --diff n.xml | tail -1",
         {0, "compatible: only additions\n", ""}},
        {"$import odbc x --user u --password-file none --diff r.xml",
         {2, "", says("can't open none: No such file or directory")}},
        {"printf '<!ELEMENT M (a\\344)><!ELEMENT a\\344 (x)>' >l.dtd; $import l.dtd -q -o l.xml; $import l.dtd -q "
         "--diff "
         "l.xml &&"
         "$import l.dtd -q --list --json | grep -c '\"a\u00e4\",\"folder' && $import l.dtd -q --type a\u00e4 "
         ">/dev/null",
         {0, "1\n", ""}},
        {"$import none --diff r.xml", {2, "", "none: error: No such file or directory\n"}},
        // A name can't move the cursor or begin a line.
        {"printf '<!ELEMENT a\\033[1m\\177\\302\\233\\nb(c)><!ELEMENT c EMPTY>' >e.dtd; $import e.dtd -q -l; "
         "$import e.dtd -q --diff r.xml --ignore-folders | head -1; $import e.dtd -q --graph | grep title; "
         "$import e.dtd -o e.xml",
         {0,
          "\\sys\\rosettanet\\a\uFFFD[1m   b\\a\uFFFD[1m   b\ta\uFFFD[1m   b (Automatically created)\n"
          "added record \\sys\\rosettanet\\a\uFFFD[1m   b\\a\uFFFD[1m   b [type-added]\n"
          "    t0 [label=\"<title> a\uFFFD[1m   b|<r0> c : String\\l\"]\n",
          "e.dtd: warning: 1 loss: 1 impossible name; --report FILE lists it\n"
          "e.dtd: warning: the document's root element is named a\uFFFD_1m___b, because a\uFFFD[1m   b is not an "
          "element name in XML\n"}},
    };
    for (const Case& row : rows)
        EXPECT_EQ(run(row.line), row.answer) << row.line;
}

} // namespace
