#include "support/SchemaFull.h"

namespace {

#define EXTENSION(base, content) "<complexContent><extension base='" base "'>" content "</extension></complexContent>"
#define RESTRICTION(base, content)                                                                                     \
    "<complexContent><restriction base='" base "'>" content "</restriction></complexContent>"
#define LISTED(base, a, b)                                                                                             \
    "<restriction base='" base "'><enumeration value='" a "'/><enumeration value='" b "'/></restriction>"

CString chameleon(const CString& content)
{
    return "<?xml version='1.0'?><x:schema xmlns:x='http://www.w3.org/2001/XMLSchema'>" + content + "</x:schema>";
}

CString other(const CString& content, const CString& space = "urn:o")
{
    return "<?xml version='1.0'?><schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:o='" + space +
           "' targetNamespace='" + space + "'>" + content + "</schema>";
}

struct Rule
{
    const char* name;
    CString schema;
    const char* types;
    std::vector<std::pair<const char*, CString>> others = {};
    const char* root = "";
};

const Rule kRules[] = {
    // Rules common to both languages.
    {"ALeafIsAFieldOfItsKind",
     ROOT(SEQUENCE("<element name='a' type='int'/><element name='b' type='date'/><element name='c' type='string'/>"
                   "<element name='d'/>")),
     "r(a:Number b:Time c:String d:String)"},
    {"NamedTypePrecedesATypeInside",
     ROOT(SEQUENCE("<element name='a' type='t:S'><complexType><attribute name='y'/></complexType></element>"
                   "<element name='b' type='string'><simpleType><restriction base='int'/></simpleType></element>"
                   "<element name='c' type='t:N'/>")) TYPE("S", "<attribute name='x'/>")
         SIMPLE("N", "<restriction base='int'><simpleType><restriction base='string'/></simpleType></restriction>"),
     "S(x:String) r(a:S b:String c:Number)"},
    {"RepeatedByItsOwnMark",
     ROOT(SEQUENCE("<element name='a' maxOccurs='2'/><element name='b' maxOccurs='01'/>"
                   "<element name='c' type='int' maxOccurs='unbounded'/><element name='d' minOccurs='0'/>")),
     "t_c[Number] t_a[String] r(a:t_a b:String c:t_c d:String)"},
    {"RepeatedByAGroupAroundIt",
     ROOT("<sequence maxOccurs='9'><choice><element name='a'/><sequence><element "
          "name='b'/></sequence></choice></sequence>"),
     "t_b[String] t_a[String] r(a:t_a b:t_b)"},
    {"TwiceInASequence", ROOT(SEQUENCE("<element name='a'/><choice><element name='b'/><element name='a'/></choice>")),
     "t_a[String] r(a:t_a b:String)"},
    {"OnceInEachAlternativeIsOnce",
     ROOT("<choice><element name='a'/>" SEQUENCE("<element name='a'/><element name='b'/>")
              SEQUENCE("<choice><element name='b'/><element name='a'/></choice>") "</choice>"),
     "r(a:String b:String)"},
    {"TwiceInOneOfTheAlternatives",
     ROOT("<choice><element name='a'/>" SEQUENCE(
         "<element name='b'/><element name='a'/><element name='a'/>") "</choice>"),
     "t_a[String] r(a:t_a b:String)"},
    {"AlternativesOfTwoChoicesAddUp",
     ROOT(SEQUENCE("<choice><element name='a'/><element name='b'/></choice><choice><element name='c'/><element "
                   "name='a'/></choice>")),
     "t_a[String] r(a:t_a b:String c:String)"},
    {"All", ROOT("<all><element name='a'/><element name='b'/></all>"), "r(a:String b:String)"},
    {"MixedContentIsAValue",
     "<element name='r'><complexType mixed='true'><sequence><element name='b'/></sequence>"
     "</complexType></element>",
     "r(value:String b:String)"},
    {"ValueGivesWayToAnElement",
     "<element name='r'><complexType mixed='1'><sequence><element name='value'/></sequence></complexType></element>",
     "r(value_2:String value:String)"},
    {"AttributeGivesWayToAnElement",
     ROOT(SEQUENCE("<element name='a'/>") "<attribute name='a' type='int'/><attribute name='b'/>"),
     "r(a:String r_a:Number b:String)"},
    {"RecordHoldsItself",
     "<element name='r' type='t:S'/>" TYPE("S", SEQUENCE("<element name='s' type='t:S' maxOccurs='2'/>")),
     "t_s[r] r(s:t_s)"},
    {"TakenNamesGetTheirRecordsName",
     ROOT(SEQUENCE("<element name='r'><complexType><attribute name='k'><simpleType>" LISTED(
         "string", "x", "y") "</simpleType></attribute></complexType></element>"
                             "<element name='q'><complexType><attribute name='k'><simpleType>" LISTED(
                                 "string", "x", "z") "</simpleType></attribute></complexType></element>")),
     "q_k{x|z} k{x|y} r_r(k:k) q(k:q_k) r(r:r_r q:q)"},
    {"UnusedEnumerationGivesWay",
     SIMPLE("q", LISTED("string", "x", "y"))
         ROOT(SEQUENCE("<element name='q'><complexType><attribute name='a'/></complexType></element>")),
     "q(a:String) q_2{x|y} r(q:q)"},
    {"MainElementReachesTheMost",
     "<element name='a' type='string'/><element name='s' type='t:S'/><element name='b' abstract='true'><complexType>"
     "<sequence><element name='r' type='t:R'/></sequence></complexType></element><element name='r' type='t:R'/>" TYPE(
         "R", SEQUENCE("<element ref='t:s'/>")) TYPE("S", SEQUENCE("<element name='x'/>")),
     "S(x:String) r(s:S) b(r:r)"},
    {"MainElementThatIsALeaf", "<element name='a' type='int'/><element name='b'/>", "a(value:Number)"},
    // Names and documents.
    {"AnyPrefix",
     "<?xml version='1.0'?><z:schema xmlns:z='http://www.w3.org/2000/10/XMLSchema' xmlns='urn:t' "
     "targetNamespace='urn:t'>"
     "<z:element name='r' type='T'/><z:complexType name='T'><z:all><z:element name='a' type='z:int'/>"
     "<z:element name='b' xmlns:y='http://www.w3.org/1999/XMLSchema' "
     "type='y:long'/></z:all></z:complexType></z:schema>",
     "r(a:Number b:Number)"},
    {"PrefixBoundInAnElementEndsWithIt",
     ROOT(SEQUENCE("<annotation xmlns:t='urn:o'><appinfo xmlns:t='urn:p'/></annotation>"
                   "<element name='a' xmlns:t='http://www.w3.org/2001/XMLSchema' type='t:int'/>"
                   "<element name='b' type='t:S'/>")) TYPE("S", SEQUENCE("<element name='x'/>")),
     "S(x:String) r(a:Number b:S)"},
    {"ForeignMarkupIsNoSchema",
     ROOT(SEQUENCE("<x:element xmlns:x='urn:x' name='lost'><element name='lost'/></x:element><annotation><appinfo>"
                   "<element name='lost'/></appinfo></annotation><element name='a'/>")),
     "r(a:String)"},
    {"IncludedInARing",
     "<include schemaLocation='b.xsd'/><element name='r' type='t:B'/>" TYPE("A", SEQUENCE("<element name='x'/>")),
     "A(x:String) r(a:A)",
     {{"b.xsd",
       documentOf("<include schemaLocation='x.xsd'/>" TYPE("B", SEQUENCE("<element name='a' type='t:A'/>")))}}},
    {"OverrideReplacesInAllThatItsDocumentIncludes",
     R"(
<include schemaLocation='x'/>
<override schemaLocation='s'><complexType name='T'><attribute name='new'/></complexType>
  <complexType name='X'><attribute name='new'/></complexType><element name='z'/>
  <group name='g'><sequence><element name='h'><complexType><group ref='t:g'/></complexType></element></sequence></group>
  <element name='m' type='int' substitutionGroup='t:a'/></override>)" ROOT(
         SEQUENCE("<element name='t' type='t:T'/><element name='x' type='t:X'/><group ref='t:g'/>"
                  "<element ref='t:a'/>")),
     "h(h:h) X(old:String) T(new:String) r(t:T x:X h:h a:String m:Number)",
     {{"x", documentOf(TYPE("X", "<attribute name='old'/>"))},
      {"s", documentOf("<include schemaLocation='u'/><group name='g'><sequence><element name='old'/></sequence></group>"
                       "<element name='a'/><element name='m'/>")},
      {"u", chameleon("<x:complexType name='T'><x:attribute name='old'/></x:complexType>")}}},
    {"ChameleonTakesTheNamespaceOfEachIncluder",
     "<include schemaLocation='c.xsd'/><import namespace='urn:o' schemaLocation='o.xsd'/>" ROOT(
         SEQUENCE("<element name='a' type='t:C'/><element xmlns:o='urn:o' ref='o:e'/>")),
     "C_2(d:String) C(d:String) r(a:C e:C_2)",
     {{"c.xsd", chameleon("<x:complexType name='C'><x:all><x:element name='d' type='D'/></x:all></x:complexType>"
                          "<x:simpleType name='D'><x:restriction base='x:string'/></x:simpleType>")},
      {"o.xsd", other("<include schemaLocation='c.xsd'/><element name='e' type='o:C'/>")}}},
    {"ImportedWithoutANamespace", "<import schemaLocation='c.xsd'/>" ROOT(SEQUENCE("<element xmlns:u='' ref='e'/>")),
     "r(e:String)"},
    {"RedefinitionExtendsWhatItRedefines",
     "<redefine schemaLocation='m.xsd'>" TYPE(
         "P", EXTENSION("t:P", SEQUENCE("<element name='c' type='t:P'/>"))) "</redefine>"
                                                                            "<element name='r' type='t:P'/>",
     "r(a:String b:String c:r)",
     {{"m.xsd", documentOf("<redefine schemaLocation='n.xsd'>" TYPE(
                    "P", EXTENSION("t:P", SEQUENCE("<element name='b'/>"))) "</redefine>")},
      {"n.xsd", documentOf(TYPE("P", SEQUENCE("<element name='a'/>")))}}},
    {"RedefinedGroupHoldsWhatItRedefines",
     "<redefine schemaLocation='m.xsd'><group name='g'><sequence><group ref='t:g'/><element "
     "name='b'/></sequence></group>"
     "</redefine>" ROOT("<group ref='t:g'/>"),
     "r(a:String b:String)",
     {{"m.xsd", documentOf("<group name='g'><sequence><element name='a'/></sequence></group>")}}},
    {"WhatTheMainDocumentDeclaresAndAllThatItReaches",
     "<import namespace='urn:o' schemaLocation='o.xsd'/>" ROOT(
         SEQUENCE("<element xmlns:o='urn:o' name='u' type='o:Used'/>")) TYPE("Own", SEQUENCE("<element name='x'/>"))
         SIMPLE("Kind", LISTED("string", "k", "l")),
     "Own(x:String) Used(x:String) Kind{k|l} r(u:Used)",
     {{"o.xsd", other(TYPE("Used", SEQUENCE("<element name='x'/>")) TYPE("Lost", SEQUENCE("<element name='y'/>")))}}},
    {"IncludedDocumentsStandInForAMainDocumentWithoutTypes",
     "<include schemaLocation='b.xsd'/><import namespace='urn:o' schemaLocation='o.xsd'/>",
     "r(x:String)",
     {{"b.xsd", documentOf(ROOT(SEQUENCE("<element name='x'/>")))},
      {"o.xsd", other(TYPE("Lost", SEQUENCE("<element name='y'/>")))}}},
    {"NamedEnumerationsAlone",
     "<include schemaLocation='b.xsd'/>" SIMPLE("E", LISTED("string", "x", "y"))
         SIMPLE("S", "<restriction base='int'/>"),
     "F{z|u} E{x|y}",
     {{"b.xsd", documentOf(SIMPLE("F", LISTED("string", "z", "u")))}}},
    {"RedefinedDocumentStandsInForOneThatOnlyRedefines",
     "<redefine schemaLocation='b.xsd'>" TYPE("P", EXTENSION("t:P", SEQUENCE("<element name='y'/>"))) "</redefine>",
     "P(x:String y:String) r(p:P)",
     {{"b.xsd",
       documentOf(ROOT(SEQUENCE("<element name='p' type='t:P'/>")) TYPE("P", SEQUENCE("<element name='x'/>")))}}},
    {"RootInAnIncludedDocument",
     "<include schemaLocation='b.xsd'/>" ROOT(SEQUENCE("<element name='x'/>")),
     "e(y:Number)",
     {{"b.xsd", documentOf("<element name='e'><complexType><attribute name='y' type='int'/></complexType></element>")}},
     "e"},
    // Derived types.
    {"ExtensionHasTheFieldsOfItsBaseFirst",
     "<element name='r' type='t:D'/>" TYPE(
         "D", EXTENSION("t:B", SEQUENCE("<element name='c'/><element name='a'/>") "<attribute name='y'/><attribute "
                                                                                  "name='x' use='prohibited'/>"))
         TYPE("B", SEQUENCE("<element name='a'/><element name='b'/>") "<attribute name='x'/>"),
     "B(a:String b:String x:String) t_a[String] r(a:t_a b:String c:String x:String y:String)"},
    {"RestrictionHasItsOwnElementsAndTheBasesAttributes",
     "<element name='r' type='t:D'/>" TYPE(
         "D", RESTRICTION("t:B",
                          SEQUENCE("<element name='a' type='int'/>") "<attribute name='y' use='prohibited'/><attribute "
                                                                     "name='z' type='int'/>"))
         TYPE("B", SEQUENCE("<element name='a'/><element name='b'/>") "<attribute name='x'/><attribute "
                                                                      "name='y'/><attribute name='z'/>"),
     "B(a:String b:String x:String y:String z:String) r(a:Number x:String z:Number)"},
    {"ExtensionOfMixedContentIsMixed",
     "<element name='r' type='t:D'/><complexType name='M' mixed='1'/>" TYPE("D", EXTENSION("t:E", ""))
         TYPE("E", EXTENSION("t:M", "<attribute name='a'/>")) TYPE("R", RESTRICTION("t:E", "")),
     "R(a:String) E(value:String a:String) M(value:String) r(value:String a:String)"},
    {"MixedAtTheContentHoldsBeforeThatOfTheType",
     "<element name='r' type='t:D'/><complexType name='D'><complexContent mixed='1'><extension base='t:B'/>"
     "</complexContent></complexType><complexType name='C' mixed='1'><complexContent mixed='false'>"
     "<extension base='t:B'/></complexContent></complexType>" TYPE("B", SEQUENCE("<element name='a'/>")),
     "B(a:String) C(a:String) r(value:String a:String)"},
    {"SimpleContent",
     "<element name='r' type='t:D'/>" TYPE("D", "<simpleContent><extension base='t:B'><attribute name='b'/></extension>"
                                                "</simpleContent>")
         TYPE("B", "<simpleContent><extension base='decimal'><attribute name='a'/></extension></simpleContent>"),
     "r(value:Number a:String b:String) B(value:Number a:String)"},
    {"ExtensionOfSimpleContentByAttributesAlone",
     ROOT("<complexContent><extension base='t:B'><attribute name='b'/></extension></complexContent>")
         TYPE("B", "<simpleContent><extension base='decimal'><attribute name='a'/></extension></simpleContent>"),
     "r(value:Number a:String b:String) B(value:Number a:String)"},
    {"TypeExtendsItself",
     "<element name='r' type='t:A'/>" TYPE("A", EXTENSION("t:B", SEQUENCE("<element name='a'/>")))
         TYPE("B", EXTENSION("t:A", SEQUENCE("<element name='b'/>"))),
     "B(b:String) r(b:String a:String)"},
    {"GroupInPlaceAndInsideItselfOnce",
     ROOT(SEQUENCE(
         "<element name='a'/><group ref='t:g' maxOccurs='2'/>")) "<group name='g'><sequence><element name='b'/><group "
                                                                 "ref='t:h'/></sequence></group>"
                                                                 "<group name='h'><choice><element name='c'/><group "
                                                                 "ref='t:g'/></choice></group>",
     "t_c[String] t_b[String] r(a:String b:t_b c:t_c)"},
    {"GroupTwiceInASequence",
     ROOT(SEQUENCE("<group ref='t:g'/><group ref='t:g'/>")) "<group name='g'><choice><element name='a'/><element "
                                                            "name='b'/></choice></group>",
     "t_b[String] t_a[String] r(a:t_a b:t_b)"},
    {"AttributeGroup",
     ROOT("<attributeGroup ref='t:g'/><attribute ref='t:c'/><attribute ref='xml:lang'/>") "<attributeGroup "
                                                                                          "name='g'><attribute "
                                                                                          "name='a'/><attributeGroup "
                                                                                          "ref='t:h'/></attributeGroup>"
                                                                                          "<attributeGroup "
                                                                                          "name='h'><attribute "
                                                                                          "name='b'/><attributeGroup "
                                                                                          "ref='t:g'/></attributeGroup>"
                                                                                          "<attribute name='c' "
                                                                                          "type='int'/>",
     "r(a:String b:String c:Number lang:String)"},
    {"ReferenceIsTheDeclarationItNames",
     ROOT(SEQUENCE(
         "<element ref='t:a'/><element ref='t:none'/><element ref='nobody:b'/>")) "<element name='a' type='int'/>",
     "r(a:Number none:String b:String)"},
    {"MembersOfASubstitutionGroupStandBesideItsHead",
     ROOT(SEQUENCE(
         "<element ref='t:shape' maxOccurs='2'/><element ref='t:head'/>")) "<element name='shape' "
                                                                           "abstract='true'/><element name='circle' "
                                                                           "type='int' substitutionGroup='t:shape'/>"
                                                                           "<element name='round' abstract='1' "
                                                                           "substitutionGroup='t:circle'/>"
                                                                           "<element name='square' "
                                                                           "substitutionGroup='t:round'/><element "
                                                                           "name='head' type='date'/>"
                                                                           "<element name='member' "
                                                                           "substitutionGroup='t:head'/>",
     "t_square[Number] t_circle[Number] r(circle:t_circle square:t_square head:Time member:Time)"},
    {"BlockedSubstitution",
     "<include schemaLocation='d'/>" ROOT(
         SEQUENCE("<element ref='t:a'/><element ref='t:b'/><element ref='t:c'/>")) "<element name='a' block='extension "
                                                                                   "substitution'/><element name='x' "
                                                                                   "substitutionGroup='t:a'/>"
                                                                                   "<element name='y' "
                                                                                   "substitutionGroup='t:b'/><element "
                                                                                   "name='z' substitutionGroup='t:c'/>",
     "r(a:String b:String c:String z:String)",
     {{"d", "<?xml version='1.0'?><schema xmlns='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:t' "
            "blockDefault='#all'><element name='b'/><element name='c' block=''/></schema>"}}},
    {"BlockedDerivations",
     R"(
<element name='r'><complexType><sequence><element ref='t:a'/><element ref='t:b'/><element ref='t:c'/>
  <element name='n' type='t:N' block='extension'/><element name='o' type='t:O'/></sequence></complexType></element>
<element name='a' type='t:A' block='extension'/><element name='ax' type='t:X' substitutionGroup='t:a'/>
<element name='ay' type='t:Y' substitutionGroup='t:a'/><element name='az' substitutionGroup='t:a'/>
<element name='b' type='string' block='restriction'/><element name='bx' type='t:S' substitutionGroup='t:b'/>
<element name='c' type='t:N'/><element name='cx' type='t:P' substitutionGroup='t:c'/>
<element name='cy' type='t:Q' substitutionGroup='t:c'/>
<complexType name='N' abstract='1'/><complexType name='O' abstract='1' block='restriction'/>
<complexType name='P' block='#all'><complexContent><extension base='t:N'><attribute name='p'/></extension>
  </complexContent></complexType>)" TYPE("A", "<attribute name='a'/>") TYPE("X", EXTENSION("t:A", ""))
         TYPE("Y", RESTRICTION("t:A", "")) TYPE("Q", EXTENSION("t:P", "<attribute name='q'/>"))
             TYPE("E", EXTENSION("t:O", "<attribute name='e'/>")) TYPE("F", RESTRICTION("t:O", "<attribute name='f'/>"))
                 SIMPLE("S", LISTED("string", "x", "y")),
     "Q(p:String q:String) E(e:String) P(p:String) Y(a:String) A(a:String) r(a:A ay:Y az:A b:String c:String cx:P "
     "n:String o:String)",
     {},
     "r"},
    {"OneRecordForEachType",
     ROOT(SEQUENCE("<element name='a' type='t:T'/><element name='b' type='t:T' maxOccurs='2'/>"
                   "<element name='c'><complexType><attribute name='d'/></complexType></element>"))
         TYPE("T", SEQUENCE("<element name='x'/>")),
     "c(d:String) T(x:String) t_b[T] r(a:T b:t_b c:c)"},
    {"TypeWithoutFieldsIsText", ROOT(SEQUENCE("<element name='a' type='t:E'/>")) TYPE("E", ""), "r(a:String)"},
    {"SecondNamespacesNameGetsANumber",
     "<import namespace='urn:o' schemaLocation='o.xsd'/>" ROOT(
         SEQUENCE("<element name='e'/><element xmlns:o='urn:o' ref='o:e'/><element name='e' form='unqualified'/>")),
     "r(e:String e_2:Number e_3:String)",
     {{"o.xsd", other("<element name='e' type='int'/>")}}},
    // Simple types.
    {"BuiltInTypes",
     ROOT("<attribute name='a' type='positiveInteger'/><attribute name='b' type='float'/><attribute name='c' "
          "type='dateTime'/>"
          "<attribute name='d' type='time'/><attribute name='e' type='boolean'/><attribute name='f' type='gYear'/>"
          "<attribute name='g' type='duration'/><attribute name='h' type='unheard'/>"),
     "r(a:Number b:Number c:Time d:Time e:String f:String g:String h:String)"},
    {"EnumerationOverTextKeepsItsConstantsAsWritten",
     ROOT("<attribute name='a' type='t:E'/><attribute name='b' type='t:N'/><attribute name='c' type='t:F'/>")
         SIMPLE("E", LISTED("token", " b c", "")) SIMPLE("N", LISTED("int", "1", "2"))
             SIMPLE("F", "<restriction base='t:E'><maxLength value='9'/></restriction>"),
     "F{ b c|} E{ b c|} r(a:E b:Number c:F)"},
    {"NamedEnumerationIsOneTypeAnAnonymousOneTheFields",
     ROOT("<attribute name='a' type='t:E'/><attribute name='b' type='t:E'/><attribute name='c'><simpleType>" LISTED(
         "t:E", "x", "x") "</simpleType></attribute>") SIMPLE("E", LISTED("string", "x", "y")),
     "c{x} E{x|y} r(a:E b:E c:c)"},
    {"Union",
     ROOT("<attribute name='a' type='t:U'/><attribute name='b' type='t:N'/><attribute name='c' type='t:M'/>")
         SIMPLE("U", "<union memberTypes='t:E t:U'><simpleType>" LISTED("string", "y", "z") "</simpleType></union>")
             SIMPLE("N", "<union memberTypes='int long'/>") SIMPLE("M", "<union memberTypes='int t:E'/>")
                 SIMPLE("E", LISTED("string", "x", "y")),
     "r(a:String b:Number c:String) E{x|y}"},
    {"UnionOfEnumerationsHasAllConstants",
     ROOT("<attribute name='a' type='t:U'/>")
         SIMPLE("U", "<union memberTypes='t:E'><simpleType>" LISTED("string", "y", "z") "</simpleType></union>")
             SIMPLE("E", LISTED("string", "x", "y")),
     "E{x|y} U{x|y|z} r(a:U)"},
    {"ListIsText", ROOT("<attribute name='a'><simpleType><list itemType='int'/></simpleType></attribute>"),
     "r(a:String)"},
    {"SimpleContentOfAnEnumeration",
     ROOT("<simpleContent><restriction base='t:B'><enumeration value='x'/></restriction></simpleContent>")
         TYPE("B", "<simpleContent><extension base='string'><attribute name='a'/></extension></simpleContent>"),
     "B(value:String a:String) value{x} r(value:value a:String)"},
    {"WhatMayNotOccurIsNoField",
     ROOT(SEQUENCE("<element name='a' maxOccurs='0'/><sequence maxOccurs='00'><element name='b'/></sequence><any/>"
                   "<element name='c'/>") "<anyAttribute/>"),
     "r(c:String)"},
    {"ValueOfAnAttributeInADraftIsItsDefault",
     "<?xml version='1.0'?><s:schema xmlns:s='http://www.w3.org/2000/10/XMLSchema'><s:element name='r'><s:complexType>"
     "<s:attribute name='Target' use='default' value='Production'/><s:attribute value='x' name='b' use='fixed'/>"
     "</s:complexType></s:element></s:schema>",
     "r(Target:String b:String)"},
    {"AnAttributeThatMayNotOccurInADraft",
     "<?xml version='1.0'?><s:schema xmlns:s='http://www.w3.org/1999/XMLSchema'><s:element name='r'><s:complexType>"
     "<s:attribute name='a' maxOccurs='0'/><s:attribute name='b' minOccurs='1' maxOccurs='1'/>"
     "</s:complexType></s:element></s:schema>",
     "r(b:String)"},
    {"BoundsOfADraft",
     "<?xml version='1.0'?><s:schema xmlns:s='http://www.w3.org/1999/XMLSchema'><s:element name='r'><s:complexType>"
     "<s:sequence maxOccurs='*'><s:element name='a'/></s:sequence><s:element name='b' minOccurs='2'/>"
     "<s:element name='c' minOccurs='0' maxOccurs='1'/></s:complexType></s:element></s:schema>",
     "t_b[String] t_a[String] r(a:t_a b:t_b c:String)"},
    {"TextContentOfADraft",
     "<?xml version='1.0'?><s:schema xmlns:s='http://www.w3.org/1999/XMLSchema'><s:element name='r'><s:complexType "
     "content='elementOnly'><s:element name='m'><s:complexType content='mixed'><s:element name='a'/></s:complexType>"
     "</s:element><s:element name='t'><s:complexType content='textOnly'><s:attribute name='b'/></s:complexType>"
     "</s:element></s:complexType></s:element></s:schema>",
     "t(value:String b:String) m(value:String a:String) r(m:m t:t)"},
    {"TypesDerivedFromAnAbstractOne",
     "<include schemaLocation='d'/>" ROOT(SEQUENCE("<element name='a' type='t:A'/><element name='b' type='t:B'/>"))
         TYPE("B", SEQUENCE("<element name='y'/>")) "<complexType name='A' abstract='true'><sequence><element "
                                                    "name='x'/></sequence></complexType>",
     "D(x:String d:String) B(y:String) A(x:String) r(a:A b:B) E(x:String d:String e:D)",
     {{"d", other(TYPE("C", EXTENSION("o:B", "")) "<complexType name='F' abstract='true'>" EXTENSION(
                      "o:A", "") "</complexType>" TYPE("D", EXTENSION("o:F", SEQUENCE("<element name='d'/>")))
                      TYPE("E", EXTENSION("o:D", SEQUENCE("<element name='e' type='o:D'/>"))),
                  "urn:t")}}},
    {"RedefinitionOfATypeDerivedFromAnAbstractOne",
     "<redefine schemaLocation='m.xsd'>" TYPE(
         "D",
         EXTENSION("t:D",
                   SEQUENCE("<element name='e'/>"))) "</redefine>" ROOT(SEQUENCE("<element name='a' type='t:A'/>")),
     "D(d:String e:String) r(a:String)",
     {{"m.xsd", documentOf("<complexType name='A' abstract='true'/>" TYPE(
                    "D", EXTENSION("t:A", SEQUENCE("<element name='d'/>"))))}},
     "r"},
    {"StatementsForOtherVersions",
     "<?xml version='1.0'?><schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' "
     "xmlns:vc='http://www.w3.org/2007/XMLSchema-versioning'>" ROOT(
         SEQUENCE("<element name='a' type='t:A'/><element name='b' vc:minVersion='1.2'/><element name='c' "
                  "vc:minVersion='1.1'/><element name='d' vc:maxVersion='1.1'><annotation/></element>"
                  "<element name='e' vc:typeAvailable='int t:A'/><element name='f' vc:typeUnavailable='int t:A'/>"
                  "<element name='g' vc:typeUnavailable='int dateTimeStamp'/><element name='h' vc:facetAvailable="
                  "'pattern'/><element name='i' xmlns:s='urn:s' vc:facetAvailable='s:pattern'/><element name='j' "
                  "vc:facetUnavailable='volume'/>")) SIMPLE("A' vc:maxVersion='1.1", "<restriction base='int'/>")
         SIMPLE("A", "<restriction base='date'/>") "</schema>",
     "r(a:Time c:String f:String h:String j:String)"},
    {"DefaultAttributes",
     "<?xml version='1.0'?><schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' "
     "defaultAttributes='t:g'>" ROOT(SEQUENCE("<element name='a' type='t:A'/><element name='b' type='t:B'/>"))
         TYPE("A", "<attribute name='x'/>") "<complexType name='B' defaultAttributesApply='false'><attribute name='y'/>"
                                            "</complexType><attributeGroup name='g'><attribute name='id' type='int'/>"
                                            "</attributeGroup></schema>",
     "B(y:String) A(x:String id:Number) r(a:A b:B id:Number)"},
    {"TypesOfAlternatives",
     ROOT(
         SEQUENCE("<element name='e' type='t:B'><alternative test='@k' type='t:D'/><alternative test='@l'><complexType>"
                  "<attribute name='i'/></complexType></alternative><alternative test='@m' type='error'/></element>"
                  "<element name='f'><alternative type='t:A'/></element>")) TYPE("B", "<attribute name='k'/>")
         TYPE("D", EXTENSION("t:B", SEQUENCE("<element name='d' type='int'/>")))
             TYPE("X", "<attribute name='x'/>") "<complexType name='A' abstract='true'/>" TYPE(
                 "C", EXTENSION("t:A", "<attribute name='c'/>")),
     "e(i:String) C(c:String) B(k:String) r(e:B f:String) D(d:Number k:String)",
     {},
     "r"},
    {"TypesForAnAbstractRootType",
     "<element name='r' type='t:A'/><complexType name='A' abstract='true'/><complexType name='N' "
     "abstract='true'/>" TYPE("D", EXTENSION("t:A", SEQUENCE("<element name='d'/>"))) TYPE("M", EXTENSION("t:N", "")),
     "D(d:String) r(value:String)",
     {},
     "r"},
    {"OneOfThemAsTheMainType",
     "<element name='r' type='t:A'/><complexType name='A' abstract='true'/>" TYPE(
         "D", EXTENSION("t:A", SEQUENCE("<element name='d'/>"))),
     "D(d:String)",
     {},
     "D"},
    {"AnAbstractTypeAsTheMainType",
     "<complexType name='A' abstract='true'><attribute name='a'/></complexType>" TYPE(
         "D", EXTENSION("t:A", SEQUENCE("<element name='d'/>"))),
     "D(d:String a:String) A(a:String)",
     {},
     "A"},
    {"TheMainDocumentKeepsItsNames",
     "<import namespace='urn:o' schemaLocation='o'/><element name='r' xmlns:o='urn:o'><complexType><sequence>"
     "<element name='a' type='o:T'/><element name='b' type='t:T'/></sequence></complexType></element>" TYPE(
         "T", SEQUENCE("<element name='own'/>")),
     "T(own:String) T_2(x:String) r(a:T_2 b:T)",
     {{"o", other(TYPE("T", SEQUENCE("<element name='x'/>")))}}},
    {"NegativeIntegersAndTimeStamps",
     ROOT("<attribute name='a' type='negativeInteger'/><attribute name='b' type='dateTimeStamp'/>"),
     "r(a:Number b:Time)"},
    {"UnionThatNamesAMemberTwice",
     ROOT("<attribute name='a'><simpleType><union memberTypes='t:E t:E t:F'/></simpleType></attribute>")
         SIMPLE("E", LISTED("string", "x", "y")) SIMPLE("F", LISTED("string", "y", "z")),
     "a{x|y|z} F{y|z} E{x|y} r(a:a)"},
    {"AbstractElementAmongLeaves", "<element name='a' abstract='true'/><element name='b' type='int'/>",
     "b(value:Number)"},
    {"SchemaOfSchemas",
     "<?xml version='1.0'?><s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' "
     "targetNamespace='http://www.w3.org/2001/XMLSchema'>"
     "<s:element name='r' type='s:all'/><s:complexType name='all'><s:attribute name='n' type='s:int'/><s:attribute "
     "name='f'"
     " type='s:form'/></s:complexType><s:simpleType name='int'><s:restriction "
     "base='s:string'/></s:simpleType><s:simpleType"
     " name='form'><s:restriction base='s:NMTOKEN'><s:enumeration "
     "value='q'/></s:restriction></s:simpleType></s:schema>",
     "f{q} r(n:Number f:f)"},
};

class SchemaRule : public SchemaFull, public testing::WithParamInterface<Rule>
{};

TEST_P(SchemaRule, GivesTypes)
{
    for (const auto& [name, content] : GetParam().others)
        folder.write(name, content);
    message.setRoot(GetParam().root);
    EXPECT_EQ(typesOfSchema(GetParam().schema), GetParam().types) << GetParam().schema;
}

INSTANTIATE_TEST_SUITE_P(Rows, SchemaRule, testing::ValuesIn(kRules), [](const auto& row) { return row.param.name; });

TEST_F(SchemaFull, ReportsWhatIsNotCarriedOver)
{
    folder.write("b.xsd", "<schema");
    const CString schema = R"(<include schemaLocation='none.xsd'/><include schemaLocation='b.xsd'/>
<element name='r' nillable='1'><complexType mixed='true'><sequence>
  <element ref='t:none'/><group ref='t:g' maxOccurs='2'/><group ref='t:g'/><group ref='t:nog'/>
  <element name='a' type='t:A' maxOccurs='0'/><element name='b' type='t:A' default='x'/>
</sequence><attribute name='b' type='t:L'/><attribute name='u' type='t:U'/><anyAttribute/><attribute name='n' type='NMTOKENS'/></complexType><key name='k'/></element>
<complexType name='A' abstract='true'><sequence><element name='y' type='anyType'/></sequence><attribute name='x' type='t:X'/></complexType>
<group name='g'><choice><any/></choice></group>
<element name='r'/><complexType name='Lost'><attribute name='x' type='Int'/></complexType>
<simpleType name='L'><list itemType='t:U'/></simpleType>
<simpleType name='U'><union memberTypes='int string t:V'/></simpleType>
<simpleType name='F'><restriction base='string'><length value='1'/><pattern value='a'/></restriction></simpleType>
<complexType name='no name'/><complexType name='E'><complexContent><extension base='t:W'><sequence>
  <element name='a\b'/><element ref='t:1st'/></sequence><attribute name='e' type='t:no name'/></extension></complexContent></complexType>)";
    EXPECT_EQ(
        typesOfSchema(schema),
        "E(e:String) Lost(x:String) A(y:String x:String) r(value:String none:String b:A r_b:String u:String n:String)");
    EXPECT_EQ(reportOf(message, folder.path()), R"(13 losses
b.xsd:1:8: document not well-formed: Couldn't find end of Start Tag schema line 1 (named in x.xsd:1:157)
x.xsd:1:121: module or document not there: none.xsd
x.xsd:3:3: reference to nothing that was read: none
x.xsd:3:76: missing group or base type: nog
x.xsd:6:94: reference to nothing that was read: X
x.xsd:8:1: declared twice: r
x.xsd:8:45: reference to nothing that was read: Int
x.xsd:10:22: reference to nothing that was read: V
x.xsd:12:1: name that XML can't represent: no name
x.xsd:12:68: missing group or base type: W
x.xsd:13:3: name that XML can't represent: a\b
x.xsd:13:24: name that XML can't represent: 1st
x.xsd:13:57: name that XML can't represent: no name

23 details
x.xsd:2:32: mixed content (order of text lost): r
x.xsd:4:3: part that may not occur: a
x.xsd:5:76: any attribute: r
x.xsd:5:91: list: n
x.xsd:6:1: abstract type: A
x.xsd:6:49: content ANY: y
x.xsd:7:25: any element: g
x.xsd:9:1: list: L
x.xsd:10:1: union of several kinds: U
x.xsd:2:32: name changed: b is r_b

4 references became text
4 impossible names
2 groups or base types missing
1 document not found
1 document not well-formed
1 second declaration
6 optional parts
2 lists
2 facets
1 content ANY
1 mixed content
1 any element
1 any attribute
1 abstract type
1 union
1 part that may not occur
1 name changed
1 bound of occurrence
1 choice
1 nillable element
1 default value
1 identity constraint
)");
}

// The others have no derived type, or no field has them.
TEST_F(SchemaFull, ReportsTypesThatDerivedOnesMayReplace)
{
    typesOfSchema(ROOT(SEQUENCE("<element name='e' type='t:B'/><element name='f' type='t:D'/>")) TYPE("A", "") TYPE(
        "B", EXTENSION("t:A", SEQUENCE("<element name='b'/>"))) TYPE("D", EXTENSION("t:B", "<attribute name='d'/>")));
    ASSERT_EQ(message.queryReport().queryEntries(SourceReport::detail).size(), 1U);
    EXPECT_EQ(SourceReport::inWords(message.queryReport().queryEntries(SourceReport::detail).front()),
              "type that a derived one may replace: B");
}

// A is overridden in a document that doesn't have it, B twice.
TEST_F(SchemaFull, ReportsOverridesWithoutEffect)
{
    folder.write("n", documentOf("<element name='A'/>"));
    folder.write("m", documentOf("<element name='B'/>"));
    folder.write("l", documentOf("<override schemaLocation='m'><element name='B'/></override>"));
    typesOfSchema("<override schemaLocation='n'><element name='A'/></override><include schemaLocation='l'/>"
                  "<override schemaLocation='m'><element name='A'/><element name='B'/></override>");
    EXPECT_EQ(countsOf(message), "1 loss: 1 second declaration; 1 part that may not occur");
}

// What belongs to components that the root doesn't reach is not reported; what belongs to none always is.
TEST_F(SchemaFull, ReportsWhatTheRootReaches)
{
    folder.write("c",
                 "<schema xmlns='http://www.w3.org/2001/XMLSchema'><element name='c' nam='1' nillable='1'/></schema>");
    const CString schema = R"(<include schemaLocation='none.xsd'/><include schemaLocation='c'/>
<element name='a' type='t:T' nillable='1'/><element name='head' abstract='1'/><notation name='n' public='p'/>
<complexType name='T'><sequence><element name='x' minOccurs='0' type='t:S'/><group ref='t:g'/><element ref='t:head'/>
  </sequence><attributeGroup ref='t:h'/></complexType>
<simpleType name='S'><restriction base='string'><length value='1'/></restriction></simpleType>
<group name='g'><choice><element name='y' type='int' default='1'/></choice></group>
<attributeGroup name='h'><attribute name='z' use='optional' typ='int'/></attributeGroup>
<element name='member' substitutionGroup='t:head' fixed='1'/><element name='lost' substitutionGroup='t:none'/>
<element name='b' foo='1'><complexType mixed='maybe'> text <sequence><elem/><element name='1x' maxOccurs='2'/>
  <element type='t:none'/></sequence></complexType><key name='k'/></element><element name='2b' bar='1'/>
<element name='a' typ='1'/><element name='b'><annotation><documentation>b</documentation></annotation></element>
<elem/> stray <annotation><documentation>c</documentation></annotation>)";
    const std::pair<const char*, const char*> rows[] = {
        {"a", "6 losses: 2 statements not understood, 2 attributes not understood, 1 document not found, 1 second "
              "declaration; 2 optional parts; 2 default values; 1 choice; 1 facet; 1 documentation cut short; 1 "
              "nillable element; 1 notation"},
        {"b", "10 losses: 4 statements not understood, 1 document not found, 1 attribute not understood, 1 value not "
              "understood, 1 second declaration, 1 impossible name, 1 missing name; 1 bound of occurrence; 1 "
              "documentation cut short; 1 identity constraint; 1 notation"},
        {"c", "4 losses: 2 statements not understood, 1 document not found, 1 attribute not understood; 1 "
              "documentation cut short; 1 nillable element; 1 notation"},
    };
    for (const auto& [root, counts] : rows) {
        message.setRoot(root);
        typesOfSchema(schema);
        EXPECT_EQ(countsOf(message), counts) << root;
    }
}

} // namespace
