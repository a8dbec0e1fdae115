#include "Import/Schema/Full/SchemaFullMsg.h"
#include "Import/Schema/Literal/SchemaMsg.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

namespace {

#define ELEMENT(...) "<xs:element " __VA_ARGS__ "/>"
#define SEQUENCE(fields) "<xs:sequence>" fields "</xs:sequence>"
#define TYPE(name, content) "<xs:complexType name='" name "'>" content "</xs:complexType>"
#define SIMPLE(name, base, facets)                                                                                     \
    "<xs:simpleType" name "><xs:restriction base='" base "'>" facets "</xs:restriction></xs:simpleType>"
#define CODES "<xs:enumeration value='a'/><xs:enumeration value='b'/>"
// The main element; its fields begin on the second line.
#define MAIN(fields)                                                                                                   \
    "<xs:element name='M'><xs:complexType>" SEQUENCE("\n" fields ELEMENT("name='z'")) "</xs:complexType></"            \
                                                                                      "xs:element>\n"
#define RECORD TYPE("R", SEQUENCE(ELEMENT("name='x'")))

// The losses of the readings as LINE:COL and the report's words. `full` is "=" if the full reading has the same.
struct Loss
{
    const char* name;
    const char* schema;
    const char* literal;
    const char* full = "=";
};

const Loss kLosses[] = {
    {"ValidStatementsOfBothVersions",
     MAIN("<xs:annotation><xs:appinfo source='x'><other a='1'/><xs:elem/></xs:appinfo>"
          "<xs:documentation>text</xs:documentation></xs:annotation>"
          "<xs:element name='a' id='i' x:nam='1' xmlns:x='urn:x' block='#all' nillable='1' default='1'>"
          "<xs:alternative test='1' type='xs:string'/><xs:key name='k'><xs:selector xpath='.'/>"
          "<xs:field xpath='@b'/></xs:key></xs:element><xs:any namespace='##any' notQName='a'/>")
         TYPE("T", "<xs:openContent mode='suffix'><xs:any/></xs:openContent>" SEQUENCE(
                       ELEMENT("name='x'")) "<xs:anyAttribute processContents='lax'/><xs:assert test='1'/>")
             SIMPLE(" name='S' final='list'", "xs:string",
                    "<xs:pattern value='a' fixed='true'/>"
                    "<xs:explicitTimezone value='required'/>"
                    "<xs:assertion test='1'/>") "<xs:notation name='n' public='p' system='s'/>",
     ""},
    // Statements that the language lacks, or doesn't allow at that place.
    {"UnknownStatement", MAIN("<!--\xc3\xa9--><xs:elem name='\xc3\xa9\xc3\xa9'><xs:nothing/></xs:elem>"),
     "2:9 unknown statement: xs:elem"},
    {"ForeignStatement", MAIN("<x:element xmlns:x='urn:x' name='a'/>"), "2:1 unknown statement: x:element"},
    {"UnknownAttribute", MAIN("\n  " ELEMENT("nam='a'")), "3:3 unknown attribute: nam in xs:element"},
    {"AttributeOfAnotherStatement", MAIN(ELEMENT("\nname='a' base='xs:int'")),
     "2:1 unknown attribute: base in xs:element"},
    {"AttributeWithAPrefix", MAIN(ELEMENT("name='a' xs:type='xs:int'")),
     "2:1 unknown attribute: xs:type in xs:element"},
    {"AttributeOfADraft", MAIN("") TYPE("T", "<xs:attribute name='a' value='1'/>"),
     "3:26 unknown attribute: value in xs:attribute"},
    {"NameBesideReference", MAIN(ELEMENT("name='a' ref='g'")) ELEMENT("name='g'"),
     "2:1 unknown attribute: name beside ref"},
    {"TypeBesideReference", MAIN(ELEMENT("ref='g' type='xs:int'")) ELEMENT("name='g'"),
     "2:1 unknown attribute: type beside ref"},
    {"MisplacedStatement", MAIN("<xs:simpleType><xs:elem/></xs:simpleType>"),
     "2:1 statement that has no effect there: xs:simpleType inside xs:sequence"},
    {"FacetOfElements",
     MAIN("") TYPE("T", "<xs:complexContent><xs:restriction base='xs:anyType'>\n<xs:length value='1'/>"
                        "</xs:restriction></xs:complexContent>"),
     "4:1 statement that has no effect there: xs:length inside xs:restriction"},
    {"TypeBesideType", MAIN("<xs:element name='a' type='xs:string'>" SIMPLE("", "xs:string", "") "</xs:element>"),
     "2:39 statement that has no effect there: xs:simpleType inside xs:element"},
    {"ContentBesideContent", MAIN("") TYPE("T", "<xs:simpleContent/>" SEQUENCE("") "<xs:attribute name='a'/>"),
     "3:26 declaration that makes no sense: simpleContent without extension or restriction\n"
     "3:45 statement that has no effect there: xs:sequence inside xs:complexType\n"
     "3:72 statement that has no effect there: xs:attribute inside xs:complexType"},
    {"StatementInAReference", MAIN("<xs:element ref='z'>\n<xs:complexType/></xs:element>") ELEMENT("name='z'"),
     "3:1 statement that has no effect there: xs:complexType inside xs:element"},
    {"Values", MAIN(ELEMENT("name='a' maxOccurs='many'") ELEMENT("name='b' type=''")),
     "2:1 invalid value: maxOccurs=\"many\"\n2:40 invalid value: type=\"\""},
    {"Conditions",
     MAIN("<xs:element name='a' "
          "xmlns:vc='http://www.w3.org/2007/XMLSchema-versioning' vc:minVersion='1.x' vc:typAvailable='xs:int'/>"),
     "", "2:1 invalid value: vc:minVersion=\"1.x\"\n2:1 invalid value: vc:typAvailable=\"xs:int\""},
    {"WaysOfDerivation", MAIN(ELEMENT("name='a' block='foo' final='#all list'")), "2:1 invalid value: block=\"foo\""},
    {"LongValue", MAIN(ELEMENT("name='a' maxOccurs='1öööööööööööööööööööööööööööööööööööööööööööööööööööööööööööö'")),
     "2:1 invalid value: maxOccurs=\"1öööööööööööööööööööööööööööööööööööööööööööööööööööööööööööö\""},
    {"BoundsThatContradictEachOther",
     MAIN(ELEMENT("name='a' minOccurs='2'") "\n" ELEMENT("name='b' minOccurs='10' maxOccurs='09'") "\n" ELEMENT(
         "name='c' minOccurs='09' maxOccurs='10'") ELEMENT("name='d' minOccurs='2' maxOccurs='unbounded'")),
     "2:1 invalid value: minOccurs=\"2\" above maxOccurs\n3:1 invalid value: minOccurs=\"10\" above maxOccurs"},
    {"WithoutAName", MAIN("<xs:element/>") "<xs:complexType/>",
     "2:1 without a name: xs:element\n3:1 without a name: xs:complexType\n3:1 declaration inside itself: ",
     "2:1 without a name: xs:element\n3:1 without a name: xs:complexType"},
    {"WithoutWhatItRefersTo",
     MAIN("") TYPE("T", "<xs:group/><xs:complexContent><xs:extension/></xs:complexContent>") "<xs:include/>"
                                                                                             "<xs:simpleType "
                                                                                             "name='S'><xs:restriction/"
                                                                                             "></xs:simpleType>",
     "3:26 declaration that makes no sense: xs:group without ref\n"
     "3:37 statement that has no effect there: xs:complexContent inside xs:complexType\n"
     "3:108 declaration that makes no sense: xs:include without schemaLocation\n"
     "3:145 declaration that makes no sense: restriction without base"},
    {"StatementsWithoutContent",
     MAIN("") "<xs:simpleType name='S'/>\n<xs:simpleType name='L'><xs:list/></xs:simpleType>\n"
              "<xs:simpleType name='U'><xs:union/></xs:simpleType>\n" TYPE("C", "<xs:complexContent/>"),
     "3:1 declaration that makes no sense: simpleType without restriction, list or union\n"
     "4:25 declaration that makes no sense: list without itemType\n"
     "5:25 declaration that makes no sense: union without memberTypes\n"
     "6:26 declaration that makes no sense: complexContent without extension or restriction"},
    {"MisspeltContent",
     MAIN("") "<xs:simpleType name='L'><xs:list itmType='S'/></xs:simpleType><xs:simpleType name='S'><xs:unio/>"
              "</xs:simpleType>",
     "3:25 unknown attribute: itmType in xs:list\n3:87 unknown statement: xs:unio"},
    // References.
    {"TypeThatNobodyDeclares", MAIN(ELEMENT("name='a' type='No'") ELEMENT("name='b' type='xs:strin'")),
     "2:1 reference to nothing that was read: No\n2:33 reference to nothing that was read: xs:strin",
     "2:1 reference to nothing that was read: No\n2:33 reference to nothing that was read: strin"},
    {"ElementThatNobodyDeclares", MAIN(ELEMENT("ref='no'")), "2:1 reference to nothing that was read: no"},
    {"GroupAndBaseThatNobodyDeclares",
     MAIN("<xs:group ref='no'/>") TYPE("D", "<xs:complexContent><xs:extension base='No'/></xs:complexContent>"),
     "2:1 group skipped: no\n3:45 extension skipped: No",
     "2:1 missing group or base type: no\n3:45 missing group or base type: No"},
    {"AttributeOfAComplexType", MAIN("") RECORD TYPE("T", "\n<xs:attribute name='a' type='R'/>"), "",
     "4:1 reference to nothing that was read: R"},
    {"AttributeOfAnotherKindInAnExtension",
     MAIN("") TYPE("B", "<xs:attribute name='a'/>")
         TYPE("D", "<xs:complexContent><xs:extension base='B'>\n<xs:attribute name='a' type='xs:date'/>"
                   "</xs:extension></xs:complexContent>"),
     "3:111 extension skipped: B\n4:1 declaration skipped: a", "4:1 name declared differently elsewhere: a"},
    {"CircleOfBases",
     MAIN(ELEMENT("name='a' type='D'"))
         TYPE("D", "<xs:complexContent><xs:extension base='E'/></xs:complexContent>") "\n" TYPE(
             "E", "<xs:complexContent><xs:extension base='D'/></xs:complexContent>") "\n"
                                                                                     "<xs:simpleType "
                                                                                     "name='S'><xs:restriction "
                                                                                     "base='S'/></xs:simpleType>",
     "3:45 extension skipped: E\n4:45 extension skipped: D\n2:1 reference to nothing that was read: D",
     "4:45 missing group or base type: D\n5:1 missing group or base type: S"},
    {"ItemAndHeadThatNobodyDeclares",
     MAIN("") "<xs:simpleType name='L'><xs:list itemType='No'/></xs:simpleType>" ELEMENT(
         "name='m' substitutionGroup='no'"),
     "3:65 substitution group skipped: m",
     "3:25 reference to nothing that was read: No\n3:65 reference to nothing that was read: no"},
    {"AbstractMainType",
     "<xs:element name='M' type='T'/><xs:complexType name='T' abstract='true'>" SEQUENCE(
         ELEMENT("name='a'")) "</xs:complexType>",
     "1:56 main type is abstract: M"},
    {"TwoTypesOfOneName", MAIN(ELEMENT("name='a' type='R'")) RECORD "\n" RECORD,
     "4:1 name declared differently elsewhere: R", "4:1 declared twice: R"},
    {"OneNameTwoTypes", MAIN(ELEMENT("name='a' type='xs:date'") ELEMENT("name='a' type='xs:string'")),
     "2:38 name declared differently elsewhere: a"},
    {"EntityThatIsNotExpanded",
     "<!DOCTYPE s [<!ENTITY e SYSTEM 'e.xml'>]><xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n\n &e;" MAIN(
         "") "</xs:schema>",
     "3:2 entity not expanded: e"},
    // Losses of the literal reading only.
    {"TypesThatBecomeText",
     MAIN(ELEMENT("name='a' type='xs:int'") "\n" ELEMENT("name='b' type='t:R' xmlns:t=''") "\n" ELEMENT(
         "name='c' type='E'") "\n<xs:element name='d'>" SIMPLE("", "xs:decimal",
                                                               "") "</xs:element>\n" ELEMENT("name='e' type='C'")
              ELEMENT("name='f' type='S'") ELEMENT("name='g' type='U'")) RECORD TYPE("E", "")
         SIMPLE(" name='C'", "S", CODES)
             SIMPLE(" name='S'", "xs:token", "<xs:length value='1'/>") "<xs:simpleType name='U'>"
                                                                       "<xs:union memberTypes='xs:int S'/>"
                                                                       "</xs:simpleType>",
     "2:1 unknown type, imported as text: xs:int\n3:1 unknown type, imported as text: t:R\n"
     "4:1 reference to nothing that was read: E\n5:1 simple type skipped: d\n6:1 unknown type, imported as text: C",
     "3:1 reference to nothing that was read: R"},
    {"ExtensionOfText",
     MAIN("<xs:element name='a'><xs:complexType><xs:simpleContent><xs:extension base='xs:token'/></xs:simpleContent>"
          "</xs:complexType></xs:element>\n<xs:element name='b'><xs:complexType><xs:simpleContent>\n"
          "<xs:extension base='xs:int'/></xs:simpleContent></xs:complexType></xs:element>"),
     "4:1 extension skipped: xs:int", ""},
    {"MemberThatIsNoSimpleType",
     MAIN("\n" ELEMENT("name='a' type='U'")) "<xs:simpleType name='U'><xs:union memberTypes='No R xs:int'/>"
                                             "</xs:simpleType>" RECORD,
     "3:1 unknown type, imported as text: U",
     "4:25 reference to nothing that was read: No\n4:25 reference to nothing that was read: R"},
    {"TypesOfWhatRepeats",
     MAIN(ELEMENT("name='a' type='R' maxOccurs='2'") "\n" ELEMENT("name='b' type='xs:date' maxOccurs='2'")
              ELEMENT("name='c' maxOccurs='2'") ELEMENT("name='R' type='R' maxOccurs='2'")) RECORD,
     "2:1 unknown type, imported as text: R\n3:1 unknown type, imported as text: xs:date", ""},
    {"RepetitionOfAGroup", MAIN("<xs:choice maxOccurs='2'>\n" ELEMENT("name='a'") "</xs:choice>"),
     "3:35 declaration skipped: z\n3:1 repetition skipped: a", ""},
    {"RepetitionOfAGroupWithOneNameTwice",
     MAIN("<xs:sequence maxOccurs='2'>" ELEMENT("name='a'") "\n" ELEMENT("name='b'")
              ELEMENT("name='a'") "</xs:sequence>"),
     "3:59 declaration skipped: z\n3:1 repetition skipped: b", ""},
    {"RepetitionInASecondRecord",
     MAIN(ELEMENT("name='a' maxOccurs='2'")) TYPE("P", SEQUENCE("\n" ELEMENT("name='a' maxOccurs='2'"))),
     "4:1 repetition skipped: a", ""},
    {"DeclaredTwiceInASecondRecord",
     MAIN(ELEMENT("name='a'") ELEMENT("name='a'"))
         TYPE("P", SEQUENCE("\n" ELEMENT("name='a'") ELEMENT("name='b'") ELEMENT("name='a'"))),
     "4:1 repetition skipped: a", ""},
    {"RecordCalledLikeARepeatedFieldOfAnother",
     MAIN("") TYPE("P.a", SEQUENCE(ELEMENT("name='b'"))) TYPE("P", SEQUENCE("\n" ELEMENT("name='a' maxOccurs='2'"))),
     "4:1 single field read as repeated: P.a, because of a in P\n4:1 repetition skipped: a", ""},
    {"RepetitionBesideAFieldCalledLikeItsTable", MAIN(ELEMENT("name='t_a'") "\n" ELEMENT("name='a' maxOccurs='2'")),
     "3:1 repetition skipped: a", ""},
    {"AlternativesOfOneNameInASecondRecord",
     MAIN(ELEMENT("name='a'") ELEMENT("name='a'"))
         TYPE("P", "<xs:choice>" ELEMENT("name='a'") "\n" ELEMENT("name='a'") "</xs:choice>"),
     "4:1 single field read as repeated: a", ""},
    {"TextCalledLikeAnEarlierType", MAIN("") RECORD TYPE("P", SEQUENCE("\n" ELEMENT("name='R' type='xs:string'"))),
     "4:1 name declared differently elsewhere: R", ""},
    {"TextBesideARecordOfItsName",
     MAIN("<xs:element name='a'><xs:complexType>" SEQUENCE(
         ELEMENT("name='b'")) "</xs:complexType></xs:element>\n" ELEMENT("name='a' type='xs:string'")),
     "3:1 name declared differently elsewhere: a", "="},
    {"FieldsCalledLikeTypes",
     MAIN(ELEMENT("name='R' type='R'") ELEMENT("name='P' type='Q'")) "\n" RECORD "\n" TYPE(
         "P", SEQUENCE(ELEMENT("name='p'"))) TYPE("Q", SEQUENCE(ELEMENT("name='q'"))),
     "4:1 declaration skipped: R\n5:1 declaration skipped: P", ""},
    {"AlternativesOfOneName", MAIN("<xs:choice>" ELEMENT("name='a'") "\n" ELEMENT("name='a'") "</xs:choice>"),
     "3:1 single field read as repeated: a\n3:35 declaration skipped: z", ""},
    {"SequenceOfOneNameInsideAChoice",
     MAIN("<xs:choice>" SEQUENCE(ELEMENT("name='a'") ELEMENT("name='a'")) "\n" ELEMENT("name='b'") "</xs:choice>"),
     "3:1 declaration skipped: b\n3:35 declaration skipped: z", ""},
    {"RepeatedFieldsOfOneName",
     MAIN(ELEMENT("name='a' maxOccurs='2'") "\n" ELEMENT("name='a' type='xs:date' maxOccurs='2'")),
     "3:1 name declared differently elsewhere: a", "="},
    {"AttributeCalledLikeARepeatedElement",
     MAIN("") TYPE("P", SEQUENCE(ELEMENT("name='a' maxOccurs='2'")) "\n<xs:attribute name='a'/>"),
     "4:1 name declared differently elsewhere: a", ""},
    {"TypeInsideAFieldCalledLikeItsRecord",
     MAIN("<xs:element name='M' maxOccurs='2'>\n<xs:complexType>" SEQUENCE(
         ELEMENT("name='a'")) "</xs:complexType></xs:element>"),
     "3:1 name declared differently elsewhere: M", ""},
    {"NamesThatMeanTwoThings",
     MAIN(ELEMENT("name='a' type='R'"))
         RECORD TYPE("P", SEQUENCE("\n" ELEMENT("name='a' type='xs:date'") ELEMENT("name='x' type='xs:token'"))),
     "4:1 name declared differently elsewhere: a", ""},
    {"TypesInsideElementsOfOneName",
     MAIN("<xs:element name='a'><xs:complexType>" SEQUENCE(ELEMENT("name='b'")) "</xs:complexType></xs:element>")
         TYPE("P", SEQUENCE("<xs:element name='a'>\n<xs:complexType>" SEQUENCE(
                       ELEMENT("name='c'")) "</xs:complexType></xs:element>")),
     "4:1 name declared differently elsewhere: a", ""},
    {"GroupsAndDerivations",
     MAIN("<xs:group ref='G'/>\n") TYPE("D", "<xs:complexContent>\n<xs:restriction base='R'>" SEQUENCE(
                                                 ELEMENT("name='x'")) "</xs:restriction></xs:complexContent>") RECORD
     "<xs:group name='G'>" SEQUENCE("\n" ELEMENT("name='g'")) "</xs:group>",
     "2:1 group skipped: G\n5:1 restriction skipped: R\n6:1 declaration skipped: g", ""},
    {"MixedText",
     "<xs:element name='M'>\n<xs:complexType mixed='1'>" SEQUENCE(ELEMENT("name='a'")) "</xs:complexType></xs:element>",
     "2:1 text beside fields skipped: M", ""},
    {"MemberBesideAFieldOfItsName",
     MAIN(ELEMENT("ref='h'") ELEMENT("name='m' type='xs:date'")) ELEMENT("name='h' type='xs:date'")
         ELEMENT("name='m' substitutionGroup='h'"),
     "3:38 substitution group skipped: m\n2:1 unknown type, imported as text: h", ""},
    {"ReferenceToASimpleTypeInside",
     MAIN(ELEMENT("ref='g'")) "<xs:element name='g'>" SIMPLE("", "xs:date", "") "</xs:element>",
     "2:1 simple type skipped: g", ""},
    {"ReferenceThatComesTooEarly", MAIN(ELEMENT("ref='g'")) ELEMENT("name='g' type='xs:date'"),
     "2:1 unknown type, imported as text: g", ""},
    {"OtherPrefix", MAIN("<s:element name='b' xmlns:s='http://www.w3.org/2001/XMLSchema'/>"),
     "2:1 declaration skipped: b", ""},
    {"MainElementWithoutFields", "<xs:element name='M' type='T'/><xs:complexType name='T'/>" RECORD,
     "1:56 declaration skipped: M", ""},
};

template <class Message>
CString lossesOf(const CString& file)
{
    Message message;
    EXPECT_EQ(message.parseFile(file, "\\"), 1);
    CString losses;
    for (const SourceReport::Entry& entry : message.queryReport().queryEntries(SourceReport::loss))
        losses += (losses.empty() ? "" : "\n") + std::to_string(entry.place.line) + ":" +
                  std::to_string(entry.place.column) + " " + SourceReport::wordsFor(entry.construct) + ": " +
                  CString(entry.name);
    return losses;
}

TEST(SchemaLoss, IsToldAtItsPlaceInBothReadings)
{
    const TempDir folder;
    Boxes boxes;
    for (const Loss& row : kLosses) {
        const CString schema = row.schema;
        const CString file = folder.write("x.xsd", schema.starts_with("<!DOCTYPE")
                                                       ? schema
                                                       : "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>" +
                                                             schema + "</xs:schema>");
        EXPECT_EQ(lossesOf<SchemaMessage>(file), row.literal) << row.name;
        EXPECT_EQ(lossesOf<SchemaFullMessage>(file), CString(row.full) == "=" ? row.literal : row.full) << row.name;
        boxes.take();
    }
}

TEST(SchemaLoss, DocumentationAndBuiltInListsAreDetailsOfTheLiteralReading)
{
    const TempDir folder;
    SchemaMessage message;
    message.parseFile(folder.write("x.xsd",
                                   "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>" MAIN(
                                       "<xs:annotation><xs:documentation>a</xs:documentation></xs:annotation>" ELEMENT(
                                           "name='a' type='xs:NMTOKENS'"))
                                       TYPE("T", "<xs:attribute name='b'/>") "</xs:schema>"),
                      "\\");
    EXPECT_EQ(countsOf(message), "; 1 list; 1 optional part; 1 documentation cut short");
}

} // namespace
