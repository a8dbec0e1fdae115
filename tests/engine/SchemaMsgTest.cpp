#include "Import/Schema/Literal/SchemaMsg.h"

#include "support/Importing.h"
#include "support/SchemaModel.h"

using testing::ElementsAre;

namespace {

constexpr char kNoRoot[] = "Parse error: this document does not contain a root element";
constexpr char kCyclic[] = "Incorrect XSD file: cyclic references";

constexpr char kOrder[] = R"(
    <xsd:element name="Order" type="OrderType"/>
    <xsd:complexType name="OrderType">
      <xsd:sequence>
        <xsd:element name="number" type="xsd:decimal"/>
        <xsd:element name="customer" type="Party"/>
        <xsd:element name="line" maxOccurs="unbounded">
          <xsd:complexType><xsd:sequence><xsd:element name="sku" type="xsd:string"/></xsd:sequence></xsd:complexType>
        </xsd:element>
      </xsd:sequence>
      <xsd:attribute name="id" type="xsd:string"/>
    </xsd:complexType>
    <xsd:complexType name="Party">
      <xsd:sequence><xsd:element name="name" type="xsd:string"/></xsd:sequence>
    </xsd:complexType>)";

struct Declarations
{
    const char* name;
    CString schema;
    const char* model;
    std::vector<CString> boxes = {};
};

const CString kMain = NESTED("Main", FIELD("a")), kTyped = FIELD("Main", "type='T'");

const Declarations kDeclarations[] = {
    {"AnonymousTypeMakesTheMainElement", RECORD("T", FIELD("t")) + kMain, "Main{a:String} T{t:String}"},
    {"ElementOfABuiltInTypeIsNotMain", FIELD("No", "type='xsd:string'") NESTED("Main", "<xsd:element ref='No'/>"),
     "Main{No:String}"},
    {"WithoutAnyComplexTypeTheFirstTypedElementEndsTheSearch",
     FIELD("a", "type='xsd:string'") FIELD("b"),
     "",
     {kNoRoot}},
    {"OtherPrefixesAreNotRead",
     "<s:element name='Main'><s:complexType><s:all><s:element name='a'/></s:all></s:complexType></s:element>",
     "",
     {kNoRoot}},
    {"ShortPrefixReadsTheSame",
     "<xs:element name='Main' type='T'/><xs:complexType name='T'><xs:choice><xs:element name='d' type='xs:date'/>"
     "</xs:choice><xs:attribute name='n' type='xs:decimal'/></xs:complexType>",
     "Main{d:Time n:Number}"},
    {"LongPrefixIsSearchedFirst", NESTED("Main", "<xs:element name='lost'/>" FIELD("a") "<xs:element name='b'/>"),
     "Main{a:String b:String}"},
    {"NamelessFieldIsReadOnlyWhenItRepeats",
     NESTED("Main", "<xsd:element id='x'/><xsd:element id='y' maxOccurs='2'/>" FIELD("a")),
     "Main{t_:table :String a:String}"},
    {"BuiltInTypes",
     NESTED("Main", FIELD("a", "type='xsd:date'") FIELD("b", "type='xsd:dateTime'") FIELD("c", "type='xsd:decimal'")
                        FIELD("d", "type='xsd:int'") FIELD("e", "type='tns:Main'")
                            FIELD("f", "type='Nowhere'") "<xsd:element name='g'><xsd:simpleType/></xsd:element>"),
     "Main{a:Time b:String c:Number d:String e:=String f:=String g:String}"},
    {"MaxOccursIsANumberOfAnyLength",
     NESTED("Main", FIELD("a", "maxOccurs='1'") FIELD("b", "maxOccurs='2'") FIELD("c", "maxOccurs='unbounded'")
                        FIELD("d", "maxOccurs='00000000000000000001'") FIELD("e", "maxOccurs='4294967297'")
                            FIELD("f", "maxOccurs='18446744073709551616'") FIELD("g", "maxOccurs='many'")
                                FIELD("h", "maxOccurs='-7'") FIELD("i", "maxOccurs='0'")),
     "Main{a:String t_b:table t_c:table d:String t_e:table t_f:table g:String h:String i:String}"},
    {"MaxOccursAtTheTopChangesNothing", FIELD("Main", "type='T' maxOccurs='9'") RECORD("T", FIELD("a")),
     "Main{a:String}"},
    {"RepeatedElementLosesItsType",
     NESTED("Main", FIELD("p", "type='Party' maxOccurs='2'") FIELD("Party", "type='Party' maxOccurs='2'"))
         RECORD("Party", FIELD("name")),
     "Main{t_p:table t_Party:table} Party{name:String}"},
    {"ElementCalledLikeItsTypeTakesItsPlace",
     NESTED("Main", FIELD("Party", "type='Party'")) RECORD("Party", FIELD("name")), "Main{Party:=Party}"},
    {"ReferenceFromANamedTypeTakesTheElementsType",
     kTyped + NESTED("Note", FIELD("x")) FIELD("When", "type='xsd:date'")
                  RECORD("T", "<xsd:element ref='Note'/><xsd:element ref='When'/>"),
     "Main{Note:=String When:Time}"},
    {"ReferenceToAnAnonymousTypeIsTextAlsoBesideATypeOfThatName",
     kTyped + NESTED("Note", FIELD("x")) RECORD("AnonymousType", FIELD("y")) RECORD("T", "<xsd:element ref='Note'/>"),
     "AnonymousType{y:String} Main{Note:=String}"},
    {"ReferenceFromTheMainTypeComesTooEarly",
     NESTED("Main", "<xsd:element ref='Note'/>") "<xsd:element name='Note'><xsd:complexType/></xsd:element>",
     "Main{Note:String}"},
    {"ElementCalledREFCountsAsAReference", NESTED("Main", NESTED("REF", FIELD("x"))), "Main{REF:String}"},
    {"NestedTypesAreFiledUnderTheirElements", NESTED("Main", NESTED("a", NESTED("b", FIELD("c"))) FIELD("d")),
     "Main{a:row d:String} a{b:row} b{c:String}"},
    {"OnlyTheGroupOfTheFirstElementIsRead",
     NESTED("Main", "<xsd:choice>" FIELD("a") "</xsd:choice><xsd:choice>" FIELD("lost") "</xsd:choice>"),
     "Main{a:String}"},
    {"AttributesBelowAnExtensionAreNotRead",
     kTyped +
         "<xsd:complexType name='T'><xsd:complexContent><xsd:extension base='B'>"
         "<xsd:all><xsd:element name='a'/></xsd:all><xsd:attribute name='lost'/></xsd:extension></xsd:complexContent>"
         "<xsd:attribute name='kept'/></xsd:complexType>",
     "Main{a:String kept:String}"},
    {"KeysRunTogether",
     NESTED("Main", "") RECORD("Or", FIELD("derline", "type='xsd:decimal'"))
         RECORD("Order", FIELD("line", "type='xsd:date'")),
     "Order{derline:Number} Or{derline:Number}"},
    {"TypeCalledLikeAKeyGoesByTheFieldsName", kMain + RECORD("Maina", FIELD("b")), "Main{a:row} a{b:String}"},
    {"DeclarationCalledLikeItsParentIsLeftOut",
     NESTED("Main", "") RECORD("Node", FIELD("Node", "type='Node'") FIELD("x")),
     "Node{x:String}",
     {kCyclic, kCyclic}},
    {"RepeatedDeclarationCalledLikeItsParentIsRead",
     NESTED("Main", "") RECORD("Node", FIELD("Node", "maxOccurs='2'") FIELD("x")), "Node{t_Node:table x:String}"},
    {"NamelessTypeAtTheTopLeavesItsElementsThere",
     kMain + "<xsd:complexType><xsd:all>" FIELD("stray", "type='xsd:date'") "</xsd:all></xsd:complexType>" RECORD(
                 "U", "<xsd:element ref='stray'/>"),
     "Main{a:String} U{stray:Time}",
     {kCyclic, kCyclic}},
    {"TypesThatReachEachOtherAreRead",
     NESTED("Main", FIELD("a", "type='A'")) RECORD("A", FIELD("b", "type='B'")) RECORD("B", FIELD("a", "type='A'")),
     "A{b:=B} B{a:=A} Main{a:=A}"},
};

class SchemaMsg : public Importing<SchemaMessage>
{
protected:
    int importSchema(const CString& declarations, const CString& basePath = "\\")
    {
        return message.parseFile(writeSchema(folder, "a.xsd", declarations), basePath);
    }
};

TEST_F(SchemaMsg, OrderBecomesItsRecordsInOneFolder)
{
    ASSERT_EQ(importSchema(kOrder, "\\sys\\xml"), 1);
    EXPECT_EQ(message.queryMainTypeName(), "Order");
    EXPECT_EQ(modelOf(message), "Order{number:Number customer:=Party t_line:table id:String} Party{name:String} "
                                "line{sku:String}");
    EXPECT_EQ(message.beginEnum(), 4);
    for (Element* type = message.enumNext(); type; type = message.enumNext())
        EXPECT_EQ(type->queryPath() + type->queryDescription(),
                  "\\sys\\xml\\Order\\" + type->queryName() + " (Automatically created)");
    // The root type of the earlier schema stays known.
    ASSERT_EQ(importSchema(kMain + RECORD("OrderType", FIELD("b"))), 1);
    EXPECT_EQ(modelOf(message), "Main{a:String b:String}");
}

TEST_F(SchemaMsg, DeclarationsBecomeTheModel)
{
    for (const Declarations& row : kDeclarations) {
        SchemaMessage fresh;
        const int status = fresh.parseFile(writeSchema(folder, "a.xsd", row.schema), "\\");
        EXPECT_EQ(status, row.boxes == std::vector<CString>{kNoRoot} ? 0 : 1) << row.name;
        EXPECT_EQ(modelOf(fresh), row.model) << row.name << ": " << row.schema;
        EXPECT_EQ(boxes.take(), row.boxes) << row.name << ": " << row.schema;
    }
}

TEST_F(SchemaMsg, IllFormedSchemaIsReportedOnceWithItsPlace)
{
    EXPECT_EQ(import("<xsd:schema>\n</xsd:element>") + message.parseFile(folder.path("missing.xsd"), "\\"), 0);
    EXPECT_THAT(boxes.take(), ElementsAre(testing::StartsWith("Error on line 2, column "),
                                          testing::StartsWith("Error on line 0, column 0.\nError text is '")));
}

TEST_F(SchemaMsg, TypesNestedTwoHundredDeepAreAllRead)
{
    CString fields = "<xsd:element name='e0'/>";
    for (int depth = 1; depth <= 80; ++depth) // three levels each
        fields = formatText(NESTED("e%d", "%s"), depth, fields.c_str());
    ASSERT_EQ(importSchema(formatText(NESTED("Main", "%s"), fields.c_str())), 1);
    EXPECT_EQ(message.beginEnum(), 81);
}

} // namespace
