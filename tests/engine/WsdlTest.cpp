#include "Import/Schema/Full/WsdlMsg.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

namespace {

#define MESSAGE(name, parts) "<message name='" name "'>" parts "</message>"
#define PART(name, says) "<part name='" name "' " says "/>"
#define ELEMENT(name, fields)                                                                                          \
    "<s:element name='" name "'><s:complexType><s:sequence>" fields "</s:sequence></s:complexType></s:element>"

CString wsdl(const CString& content)
{
    return "<definitions xmlns='http://schemas.xmlsoap.org/wsdl/' xmlns:s='http://www.w3.org/2001/XMLSchema' "
           "xmlns:t='urn:t' xmlns:u='urn:u' xmlns:e='http://schemas.xmlsoap.org/soap/encoding/' "
           "xmlns:w='http://schemas.xmlsoap.org/wsdl/' targetNamespace='urn:w'>" +
           content + "</definitions>";
}

CString types(const CString& content, const CString& space = "urn:t")
{
    return "<types><s:schema targetNamespace='" + space + "' elementFormDefault='qualified'>" + content +
           "</s:schema></types>";
}

struct Row
{
    const char* name;
    CString source;
    const char* types;
    const char* losses = "";
    std::vector<std::pair<const char*, CString>> others = {};
    const char* main = nullptr; // the main types to choose from
};

const Row kRows[] = {
    {"ElementsThatPartsName",
     wsdl(types(ELEMENT("a", "<s:element name='x' type='t:X'/>") ELEMENT("b", "<s:element name='y'/>") ELEMENT(
              "c", "") "<s:complexType name='X'><s:sequence><s:element name='z' type='s:int'/></s:sequence>"
                       "</s:complexType>") +
          MESSAGE("In", PART("p", "element='t:b'")) MESSAGE("Out", PART("p", "element='t:a'"))
              MESSAGE("Again", PART("p", "element='t:a'"))),
     "X(z:Number) b(y:String) a(x:X)"},
    {"PartsOfTypesMakeARecord",
     wsdl(types("<s:complexType name='X'><s:sequence><s:element name='z'/></s:sequence></s:complexType>"
                "<s:element name='f'/>") +
          MESSAGE("Get", PART("id", "type='s:int'") PART("x", "type='t:X'") PART("f", "element='t:f'"))),
     "X(z:String) Get(id:Number x:X f:String)"},
    {"OperationsNameMessagesOfAnyFile",
     wsdl("<import location='b.wsdl'/>" MESSAGE(
         "M",
         PART("p", "type='s:int'")) "<portType><operation><input "
                                    "message='w:N'/><output message='M'/><fault message='w:No'/></operation></portType>"
                                    "<binding><operation><input><h:header message='w:N' xmlns:h='h'/><h:header "
                                    "message='w:Head' xmlns:h='h'/></input></operation></binding>"),
     "N(p:String) M(p:Number)",
     "2 losses: 2 references became text",
     {{"b.wsdl", wsdl(MESSAGE("N", PART("p", "type='s:string'")))}}},
    {"SchemasKnowEachOther",
     wsdl("<types><s:schema targetNamespace='urn:t'><s:import namespace='urn:u'/>" ELEMENT(
         "a", "<s:element name='x' type='u:X'/>") "</s:schema><s:schema targetNamespace='urn:u'><s:complexType "
                                                  "name='X'><s:sequence><s:element name='z'/></s:sequence>"
                                                  "</s:complexType></s:schema></types>" MESSAGE(
                                                      "M", PART("p", "element='t:a'"))),
     "X(z:String) a(x:X)"},
    {"ArraysOfSoapAreTables",
     wsdl(types("<s:complexType name='L'><s:complexContent><s:restriction base='e:Array'><s:attribute "
                "ref='e:arrayType' w:arrayType='s:int[]'/></s:restriction></s:complexContent></s:complexType>") +
          MESSAGE("M", PART("p", "type='t:L'") PART("q", "type='e:string'"))),
     "t_item[Number] L(item:t_item) M(p:L q:String)"},
    {"ItemsOfAnArrayKeepTheirName",
     wsdl(types(
              "<s:complexType name='L'><s:complexContent><s:restriction base='e:Array'><s:sequence><s:element name='i' "
              "type='s:int' maxOccurs='9'/></s:sequence><s:attribute ref='e:arrayType' w:arrayType='s:int[]'/>"
              "</s:restriction></s:complexContent></s:complexType>") +
          MESSAGE("M", PART("p", "type='t:L'"))),
     "t_i[Number] L(i:t_i) M(p:L)"},
    {"AnArrayOfUnknownItemsIsALoss",
     wsdl(types("<s:complexType name='L'><s:complexContent><s:restriction base='e:Array'><s:sequence/></s:restriction>"
                "</s:complexContent></s:complexType>") +
          MESSAGE("M", PART("p", "type='t:L'"))),
     "M(p:String)", "1 loss: 1 group or base type missing"},
    {"ArraysOfArraysAreRecordsOfTables",
     wsdl(types("<s:complexType name='L'><s:complexContent><s:restriction base='e:Array'><s:attribute "
                "ref='e:arrayType' w:arrayType='s:int[][2,2]'/></s:restriction></s:complexContent></s:complexType>") +
          MESSAGE("M", PART("p", "type='t:L'"))),
     "t_item[Number] item(item:t_item) t_L_item[item] L(item:t_L_item) M(p:L)"},
    {"ArraysOfSoap12",
     wsdl(types("<s:complexType name='L'><s:complexContent><s:restriction base='f:Array' "
                "xmlns:f='http://www.w3.org/2003/05/soap-encoding'><s:sequence><s:element name='i' type='e:base64' "
                "maxOccurs='unbounded'/></s:sequence></s:restriction></s:complexContent></s:complexType>") +
          MESSAGE("M", PART("p", "type='t:L'"))),
     "t_i[String] L(i:t_i) M(p:L)"},
    {"MessagesMayBeCalledLikeElements",
     wsdl(types("<s:element name='M'><s:complexType><s:sequence><s:element name='x'/></s:sequence></s:complexType>"
                "</s:element>",
                "urn:w") +
          MESSAGE("M", PART("p", "element='v:M' xmlns:v='urn:w'") PART("q", "type='s:int'"))),
     "M_2(x:String) M(M:M_2 q:Number)"},
    {"PrefixesEndWithTheirElement",
     wsdl(types(ELEMENT("a", "<s:element name='x'/>")) + MESSAGE("M", PART("p", "element='v:a' xmlns:v='urn:t'"))
                                                             MESSAGE("N", PART("p", "element='v:a'"))),
     "a(x:String)", "1 loss: 1 reference became text"},
    {"TwoMessagesOfOneName", wsdl(MESSAGE("M", PART("p", "type='s:int'")) MESSAGE("M", PART("q", "type='s:int'"))),
     "M(p:Number)", "1 loss: 1 second declaration"},
    {"MessagesWithoutAValidName",
     wsdl(MESSAGE("", PART("p", "type='s:int'")) MESSAGE("no name", PART("p", "type='s:int'"))
              MESSAGE("M", PART("q", "type='s:int'"))),
     "M(q:Number)", "2 losses: 1 impossible name, 1 missing name"},
    {"TwoMessagesOfOneType",
     wsdl(types("<s:complexType name='T'><s:sequence><s:element name='x'/></s:sequence></s:complexType>"
                "<s:element name='a' type='t:T'/><s:element name='b' type='t:T'/>") +
          MESSAGE("M", PART("p", "element='t:a'")) MESSAGE("N", PART("p", "element='t:b'"))),
     "b(x:String) a(x:String)"},
    {"OtherLanguagesAmongTheTypes",
     wsdl("<types><grammar xmlns='http://relaxng.org/ns/structure/1.0'/></types>" MESSAGE("M",
                                                                                          PART("p", "type='s:int'"))),
     "M(p:Number)", "1 loss: 1 declaration skipped"},
    {"OtherFiles",
     wsdl("<import namespace='urn:w' location='b.wsdl'/><types><s:schema targetNamespace='urn:t'><s:include "
          "schemaLocation='a.xsd'/></s:schema></types>"),
     "a(x:String)",
     "",
     {{"a.xsd",
       "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema'>" ELEMENT("a", "<s:element name='x'/>") "</s:schema>"},
      {"b.wsdl", wsdl(MESSAGE("M", PART("p", "element='t:a'")))}}},
    {"OtherFilesThatAreNone",
     wsdl("<import location='b.wsdl'/><import location='c.wsdl'/>" MESSAGE("M", PART("p", "type='s:int'"))),
     "M(p:Number)",
     "2 losses: 1 document not readable, 1 document not well-formed",
     {{"b.wsdl", "<definitions"}, {"c.wsdl", "<a/>"}}},
    {"WhatIsNotThere",
     wsdl("<import location='none.wsdl'/>" + types(ELEMENT("a", "<s:element name='x'/>")) +
          MESSAGE("M", PART("p", "element='t:none'")) MESSAGE("N", PART("p", "element='t:a'"))),
     "a(x:String)", "2 losses: 1 document not found, 1 reference became text"},
    {"PartsThatSayNothing",
     wsdl(types(ELEMENT("a", "<s:element name='x'/>")) +
          MESSAGE("M", PART("p", "") PART("", "type='s:int'") PART("q", "type='s:int'") PART("r", "element='x:a'"))),
     "M(q:Number)", "3 losses: 2 references became text, 1 missing name"},
    {"MisspeltStatements",
     wsdl("<mesage name='M'/>" MESSAGE("N", "<prt/>" PART("q", "type='s:int'")) "<service><prt/></service>"),
     "N(q:Number)", "2 losses: 2 statements not understood"},
    {"MisspeltStatementsOfInterfaces",
     wsdl(MESSAGE("N", PART("q", "type='s:int'")) "<portType><opration/><operation><outpt><any/></outpt></operation>"
                                                  "</portType>"),
     "N(q:Number)", "2 losses: 2 statements not understood"},
    {"PartOfATypeWithAnElement",
     wsdl(types(ELEMENT("a", "<s:element name='x'/>")) + MESSAGE("M", PART("p", "element='t:a' type='s:int'"))),
     "M(p:Number)", "1 loss: 1 attribute not understood"},
    {"Version2RefersToInterfacesAndFaults",
     "<description xmlns='http://www.w3.org/ns/wsdl' xmlns:s='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t'>"
     "<types><s:schema targetNamespace='urn:t'>" ELEMENT(
         "a", "<s:element name='x'/>") "</s:schema></types><interface name='I'><fault name='F' element='t:a'/>"
                                       "<operation><outfault ref='t:F'/><infault ref='t:I'/></operation></interface>"
                                       "<interface name='J' extends='t:I t:F'/></description>",
     "a(x:String)", "2 losses: 2 references became text"},
    {"Version2",
     "<d:description xmlns:d='http://www.w3.org/ns/wsdl' xmlns:s='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t'>"
     "<d:types><s:schema targetNamespace='urn:t'>" ELEMENT("a", "<s:element name='x'/>")
         ELEMENT("b", "<s:element name='y'/>") "</s:schema></d:types><d:interface><d:fault "
                                               "element='t:a'/><d:operation><d:input element='#none'/>"
                                               "<d:output element='t:b'/></d:operation></d:interface></d:description>",
     "a(x:String) b(y:String)",
     "",
     {},
     "b: a b "},
    {"Version2ImportsAmongItsTypes",
     "<description xmlns='http://www.w3.org/ns/wsdl' xmlns:s='http://www.w3.org/2001/XMLSchema'><types><s:import "
     "namespace='urn:a' schemaLocation='a.xsd'/></types><interface><operation><input element='a:a' xmlns:a='urn:a'/>"
     "<output element='#other'/><output element='#any'/></operation></interface></description>",
     "a(x:String)",
     "1 loss: 1 declaration skipped",
     {{"a.xsd", "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:a'>" ELEMENT(
                    "a", "<s:element name='x'/>") "</s:schema>"}}},
    {"WithoutMessagesItIsASet",
     wsdl(types(ELEMENT("a", "<s:element name='x'/>")) +
          types(ELEMENT(
              "b", "<s:element name='x'/><s:element name='y' type='t:X'/>") "<s:complexType name='X'>"
                                                                            "<s:sequence><s:element "
                                                                            "name='z'/></s:sequence></s:complexType>")),
     "a(x:String) X(z:String) b(x:String y:X)",
     "",
     {},
     "b: b a "},
};

class Wsdl : public Importing<WsdlMessage>, public testing::WithParamInterface<Row>
{};

TEST_P(Wsdl, GivesTheTypesOfItsMessages)
{
    for (const auto& [name, content] : GetParam().others)
        folder.write(name, content);
    EXPECT_EQ(message.parseFile(folder.write("x.wsdl", GetParam().source), "\\b\\"), 1);
    EXPECT_EQ(fullTypesOf(message), GetParam().types);
    EXPECT_EQ(message.queryReport().lossesInWords(), GetParam().losses);
    CString main = message.queryMainTypeName() + ": ";
    for (const CString& name : message.queryMainTypes())
        main += name + " ";
    if (GetParam().main) {
        EXPECT_EQ(main, GetParam().main);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, Wsdl, testing::ValuesIn(kRows), [](const auto& row) { return row.param.name; });

using WsdlRoot = Importing<WsdlMessage>;

// Without a root the messages are imported, but not what they don't reach.
TEST_F(WsdlRoot, LimitsTheReport)
{
    const CString source = wsdl(types(ELEMENT("a", "<s:element name='x' nillable='1'/>")
                                          ELEMENT("b", "<s:element name='y' type='t:none' minOccurs='0'/>")) +
                                MESSAGE("M", PART("p", "element='t:a'") "<documentation>m</documentation>")
                                    MESSAGE("O", PART("p", "element='t:none'"))
                                        MESSAGE("N", PART("q", "type='s:int'") PART("", "type='s:int'") "<prt/>"));
    const std::pair<const char*, const char*> rows[] = {
        {"", "3 losses: 1 reference became text, 1 statement not understood, 1 missing name; 1 documentation "
             "cut short; 1 nillable element"},
        {"a", "; 1 nillable element"},
        {"b", "1 loss: 1 reference became text; 1 optional part"},
        {"N", "2 losses: 1 statement not understood, 1 missing name"},
    };
    for (const auto& [root, counts] : rows) {
        message.setRoot(root);
        EXPECT_EQ(import(source), 1);
        EXPECT_EQ(countsOf(message), counts) << root;
    }
}

} // namespace
