#include "Formats/SchemaMsg.h"

#include "support/SchemaModel.h"

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(SchemaMsg, OrderBecomesItsRecordsInOneFolder)
{
    Boxes boxes;
    const TempDir dir;
    SchemaMessage message;
    ASSERT_EQ(message.parseFile(writeSchema(dir, "order.xsd", kOrder), "\\sys\\xml"), 1);
    EXPECT_EQ(message.queryMainTypeName(), "Order");
    EXPECT_EQ(modelOf(message), "Order{number:Number customer:=Party t_line:table id:String} Party{name:String} "
                                "line{sku:String}");
    EXPECT_EQ(message.beginEnum(), 4);
    for (Element* type = message.enumNext(); type; type = message.enumNext()) {
        EXPECT_EQ(type->queryPath(), "\\sys\\xml\\Order\\");
        EXPECT_EQ(type->queryDescription(), type->queryName() + " (Automatically created)");
    }
}

// What stands between the tags of a main element's own type.
CString mainType(const char* fields, const char* behind = "")
{
    return CString("<xsd:element name='Main'><xsd:complexType><xsd:sequence>") + fields +
           "</xsd:sequence></xsd:complexType></xsd:element>" + behind;
}

struct Declarations
{
    const char* name;
    CString schema;
    const char* model;
    std::vector<const char*> boxes{};
};

void PrintTo(const Declarations& row, std::ostream* out)
{
    *out << row.name;
}

const Declarations kDeclarations[] = {
    {"AnonymousTypeMakesTheMainElement",
     "<xsd:complexType name='T'><xsd:all><xsd:element name='t'/></xsd:all></xsd:complexType>" +
         mainType("<xsd:element name='a'/>"),
     "Main{a:String} T{t:String}"},
    {"ElementOfABuiltInTypeIsNotMain",
     "<xsd:element name='No' type='xsd:string'/>" + mainType("<xsd:element ref='No'/>"), "Main{No:String}"},
    {"WithoutAnyComplexTypeTheFirstTypedElementEndsTheSearch",
     "<xsd:element name='a' type='xsd:string'/><xsd:element name='b'/>",
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
    {"LongPrefixIsSearchedFirst", mainType("<xs:element name='lost'/><xsd:element name='a'/><xs:element name='b'/>"),
     "Main{a:String b:String}"},
    {"NamelessFieldIsReadOnlyWhenItRepeats",
     mainType("<xsd:element id='x'/><xsd:element id='y' maxOccurs='2'/><xsd:element name='a'/>"),
     "Main{t_:table :String a:String}"},
    {"BuiltInTypes",
     mainType("<xsd:element name='a' type='xsd:date'/><xsd:element name='b' type='xsd:dateTime'/>"
              "<xsd:element name='c' type='xsd:decimal'/><xsd:element name='d' type='xsd:int'/>"
              "<xsd:element name='e' type='tns:Main'/><xsd:element name='f' type='Nowhere'/>"
              "<xsd:element name='g'><xsd:simpleType/></xsd:element>"),
     "Main{a:Time b:String c:Number d:String e:=String f:=String g:String}"},
    {"MaxOccursIsANumberOfAnyLength",
     mainType("<xsd:element name='a' maxOccurs='1'/><xsd:element name='b' maxOccurs='2'/>"
              "<xsd:element name='c' maxOccurs='unbounded'/><xsd:element name='d' maxOccurs='00000000000000000001'/>"
              "<xsd:element name='e' maxOccurs='4294967297'/><xsd:element name='f' maxOccurs='18446744073709551616'/>"
              "<xsd:element name='g' maxOccurs='many'/><xsd:element name='h' maxOccurs='-7'/>"
              "<xsd:element name='i' maxOccurs='0'/>"),
     "Main{a:String t_b:table t_c:table d:String t_e:table t_f:table g:String h:String i:String}"},
    {"MaxOccursAtTheTopChangesNothing",
     "<xsd:element name='Main' type='T' maxOccurs='9'/><xsd:complexType name='T'><xsd:all><xsd:element name='a'/>"
     "</xsd:all></xsd:complexType>",
     "Main{a:String}"},
    {"RepeatedElementLosesItsType",
     mainType("<xsd:element name='p' type='Party' maxOccurs='2'/><xsd:element name='Party' type='Party' "
              "maxOccurs='2'/>",
              "<xsd:complexType name='Party'><xsd:all><xsd:element name='name'/></xsd:all></xsd:complexType>"),
     "Main{t_p:table t_Party:table} Party{name:String}"},
    {"ElementCalledLikeItsTypeTakesItsPlace",
     mainType("<xsd:element name='Party' type='Party'/>",
              "<xsd:complexType name='Party'><xsd:all><xsd:element name='name'/></xsd:all></xsd:complexType>"),
     "Main{Party:=Party}"},
    {"ReferenceFromANamedTypeTakesTheElementsType",
     "<xsd:element name='Main' type='T'/>"
     "<xsd:element name='Note'><xsd:complexType><xsd:all><xsd:element name='x'/></xsd:all></xsd:complexType>"
     "</xsd:element><xsd:element name='When' type='xsd:date'/>"
     "<xsd:complexType name='T'><xsd:all><xsd:element ref='Note'/><xsd:element "
     "ref='When'/></xsd:all></xsd:complexType>",
     "Main{Note:=String When:Time}"},
    {"ReferenceFromTheMainTypeComesTooEarly",
     mainType("<xsd:element ref='Note'/>", "<xsd:element name='Note'><xsd:complexType/></xsd:element>"),
     "Main{Note:String}"},
    {"ElementCalledREFCountsAsAReference",
     mainType("<xsd:element name='REF'><xsd:complexType><xsd:all><xsd:element name='x'/></xsd:all></xsd:complexType>"
              "</xsd:element>"),
     "Main{REF:String}"},
    {"NestedTypesAreFiledUnderTheirElements",
     mainType("<xsd:element name='a'><xsd:complexType><xsd:all><xsd:element name='b'><xsd:complexType><xsd:all>"
              "<xsd:element name='c'/></xsd:all></xsd:complexType></xsd:element></xsd:all></xsd:complexType>"
              "</xsd:element><xsd:element name='d'/>"),
     "Main{a:row d:String} a{b:row} b{c:String}"},
    {"OnlyTheGroupOfTheFirstElementIsRead",
     mainType("<xsd:choice><xsd:element name='a'/></xsd:choice><xsd:choice><xsd:element name='lost'/></xsd:choice>"),
     "Main{a:String}"},
    {"AttributesBelowAnExtensionAreNotRead",
     "<xsd:element name='Main' type='T'/><xsd:complexType name='T'><xsd:complexContent><xsd:extension base='B'>"
     "<xsd:all><xsd:element name='a'/></xsd:all><xsd:attribute name='lost'/></xsd:extension></xsd:complexContent>"
     "<xsd:attribute name='kept'/></xsd:complexType>",
     "Main{a:String kept:String}"},
    {"KeysRunTogether",
     mainType("", "<xsd:complexType name='Or'><xsd:all><xsd:element name='derline' type='xsd:decimal'/></xsd:all>"
                  "</xsd:complexType><xsd:complexType name='Order'><xsd:all><xsd:element name='line' type='xsd:date'/>"
                  "</xsd:all></xsd:complexType>"),
     "Order{derline:Number} Or{derline:Number}"},
    {"TypeCalledLikeAKeyGoesByTheFieldsName",
     mainType("<xsd:element name='a'/>",
              "<xsd:complexType name='Maina'><xsd:all><xsd:element name='b'/></xsd:all></xsd:complexType>"),
     "Main{a:row} a{b:String}"},
    {"DeclarationCalledLikeItsParentIsLeftOut",
     mainType("", "<xsd:complexType name='Node'><xsd:all><xsd:element name='Node' type='Node'/><xsd:element name='x'/>"
                  "</xsd:all></xsd:complexType>"),
     "Node{x:String}",
     {kCyclic, kCyclic}},
    {"RepeatedDeclarationCalledLikeItsParentIsRead",
     mainType("",
              "<xsd:complexType name='Node'><xsd:all><xsd:element name='Node' maxOccurs='2'/><xsd:element name='x'/>"
              "</xsd:all></xsd:complexType>"),
     "Node{t_Node:table x:String}"},
    {"NamelessTypeAtTheTopLeavesItsElementsThere",
     mainType("<xsd:element name='a'/>",
              "<xsd:complexType><xsd:all><xsd:element name='stray' type='xsd:date'/></xsd:all></xsd:complexType>"
              "<xsd:complexType name='U'><xsd:all><xsd:element ref='stray'/></xsd:all></xsd:complexType>"),
     "Main{a:String} U{stray:Time}",
     {kCyclic, kCyclic}},
    {"TypesThatReachEachOtherAreRead",
     mainType("<xsd:element name='a' type='A'/>",
              "<xsd:complexType name='A'><xsd:all><xsd:element name='b' type='B'/></xsd:all></xsd:complexType>"
              "<xsd:complexType name='B'><xsd:all><xsd:element name='a' type='A'/></xsd:all></xsd:complexType>"),
     "A{b:=B} B{a:=A} Main{a:=A}"},
};

class SchemaDeclarations : public testing::TestWithParam<Declarations>
{};

TEST_P(SchemaDeclarations, BecomeTheModel)
{
    Boxes boxes;
    const TempDir dir;
    SchemaMessage message;
    const bool fails = std::ranges::count(GetParam().boxes, CString(kNoRoot)) > 0;
    EXPECT_EQ(message.parseFile(writeSchema(dir, "a.xsd", GetParam().schema), "\\"), fails ? 0 : 1);
    EXPECT_EQ(modelOf(message), GetParam().model);
    EXPECT_EQ(boxes.take(), std::vector<CString>(GetParam().boxes.begin(), GetParam().boxes.end()));
}

INSTANTIATE_TEST_SUITE_P(Rows, SchemaDeclarations, testing::ValuesIn(kDeclarations),
                         [](const auto& row) { return row.param.name; });

TEST(SchemaMsg, IllFormedSchemaIsReportedOnceWithItsPlace)
{
    Boxes boxes;
    const TempDir dir;
    SchemaMessage message;
    EXPECT_EQ(message.parseFile(dir.write("a.xsd", "<xsd:schema>\n</xsd:element>"), "\\"), 0);
    EXPECT_THAT(boxes.take(), ElementsAre(testing::StartsWith("Error on line 2, column ")));
    EXPECT_EQ(message.parseFile(dir.path("missing.xsd"), "\\"), 0);
    EXPECT_THAT(boxes.take(), ElementsAre(testing::StartsWith("Error on line 0, column 0.\nError text is '")));
}

TEST(SchemaMsg, TypeOfAnEarlierMainElementStaysKnown)
{
    Boxes boxes;
    const TempDir dir;
    SchemaMessage message;
    ASSERT_EQ(message.parseFile(writeSchema(dir, "order.xsd", kOrder), "\\"), 1);
    const CString second = mainType("<xsd:element name='a'/>", "<xsd:complexType name='OrderType'><xsd:all>"
                                                               "<xsd:element name='b'/></xsd:all></xsd:complexType>");
    ASSERT_EQ(message.parseFile(writeSchema(dir, "second.xsd", second), "\\"), 1);
    EXPECT_EQ(modelOf(message), "Main{a:String b:String}");
}

TEST(SchemaMsg, TypesNestedTwoHundredDeepAreAllRead)
{
    Boxes boxes;
    const TempDir dir;
    CString fields = "<xsd:element name='e0'/>";
    for (int depth = 1; depth <= 80; ++depth) // three levels each
        fields = "<xsd:element name='e" + std::to_string(depth) + "'><xsd:complexType><xsd:all>" + fields +
                 "</xsd:all></xsd:complexType></xsd:element>";
    SchemaMessage message;
    ASSERT_EQ(message.parseFile(writeSchema(dir, "deep.xsd", mainType(fields.c_str())), "\\"), 1);
    EXPECT_EQ(message.beginEnum(), 81);
}

} // namespace
