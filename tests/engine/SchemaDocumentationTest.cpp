#include "support/SchemaFull.h"

namespace {

#define SAID(text) "<annotation><documentation>" text "</documentation></annotation>"
#define COMPONENT(content) SAID("<c:Component xmlns:c='urn:c'>\n" content "\n</c:Component>")

// Returns the descriptions of all types, each before those of its fields or constants; generated ones as "-".
CString descriptionsOf(MsgBase& message)
{
    CString text;
    const auto add = [&text](const Element& element) {
        const CString description = element.queryDescription();
        text += description == element.queryName() + " (Automatically created)" ? "-;" : description + ";";
    };
    message.beginEnum();
    while (const Element* type = message.enumNext()) {
        add(*type);
        for (const Element* child : type->queryChildren())
            add(*child);
    }
    return text;
}

TEST_F(SchemaFull, TakesDescriptionsFromDocumentation)
{
    const CString e = times(255, "\xc3\xa9");
    const CString references =
        CString("<element ref='t:a'>" SAID("1") "</element>") + "<element ref='t:a'/><element ref='t:b'/>" +
        ("<element ref='t:c'>" SAID("3") "</element>") + ("<element ref='t:none'>" SAID("4") "</element>");
    const CString declarations = CString("<element name='a' type='t:T'>" SAID("2") "</element>") +
                                 "<element name='b' type='t:T'/><element name='c'/><attribute name='d'/>" +
                                 SIMPLE("T", SAID("6") "<restriction base='string'/>");
    const struct
    {
        CString schema;
        CString descriptions;
        std::size_t cut; // documentations
    } rows[] = {
        // The first documentation counts, with the text of nested elements. A long text is cut.
        {"<element name='r'><annotation><appinfo>no</appinfo><documentation/><documentation> Of\n <b>the</b>\tR "
         "</documentation><documentation>no</documentation></annotation>" SEQUENCE("") "</element>",
         "Of the R;-;", 1},
        {"<element name='r'>" + ("<annotation><documentation>" + e + "\xc3\xa9</documentation></annotation>") +
             "</element>",
         e + ";-;", 1},
        {"<element name='r'>" + ("<annotation><documentation> " + e + "\n</documentation></annotation>") + "</element>",
         e + ";-;", 0},
        {ROOT("<sequence><element name='x'>" SAID("D") "<complexType><sequence><element name='a'/></sequence>"
                                                       "</complexType></element></sequence>"),
         "D;-;-;D;", 0},
        // Precedence: the reference, the declaration, the type.
        {"<element name='r'><complexType><sequence>" + references +
             ("</sequence><attribute ref='t:d'>" SAID("5") "</attribute></complexType></element>") + declarations,
         "-;-;-;1;6;3;4;5;", 0},
        // In a substitution group, a reference is about the head only.
        {ROOT(SEQUENCE("<element ref='t:h'>" SAID(
             "1") "</element>")) "<element name='h'/><element name='m' substitutionGroup='t:h'>" SAID("2") "</element>",
         "-;1;2;", 0},
        // The main element takes precedence over its type.
        {"<element name='r' type='t:R'>" SAID("1") "</element>" TYPE("R", SAID("2") SEQUENCE("<element name='a'/>")),
         "1;-;", 0},
        {"<element name='r' type='t:R'/>" TYPE("R", SAID("2") SEQUENCE("<element name='a'/>")), "2;-;", 0},
        {"<element name='r' type='t:R'/>" SIMPLE("R", SAID("2") "<restriction base='string'/>"), "2;-;", 0},
        // Values of enumerations.
        {"<element name='r' type='t:E'/>" SIMPLE(
             "E", SAID("0") "<restriction base='string'><enumeration value='a'/>"
                            "<enumeration value='b'>" SAID("B  b") "</enumeration></restriction>"),
         "0;-;B b;0;-;", 0},
        {"<element name='r' type='t:U'/>" SIMPLE(
             "E", "<restriction base='string'><enumeration value='a'>" SAID("A") "</enumeration></restriction>")
             SIMPLE("U", "<union memberTypes='t:E'/>"),
         "-;A;-;A;-;-;", 0},
        // Structured documentation: its definition, else the first element with a sentence.
        {"<element name='r'>" COMPONENT(
             "<c:Type>My BIE</c:Type><c:Definition>The <c:i>R</c:i> it is.</c:Definition>") "</element>",
         "The R it is.;-;", 1},
        {"<element name='r'>" COMPONENT(
             "<c:Type>BIE</c:Type><c:n><c:b>The big</c:b> R.</c:n><c:n>No more.</c:n>") "</element>",
         "The big R.;-;", 1},
        {"<element name='r'>" COMPONENT("<c:Type>BIE</c:Type><c:Definition> </c:Definition>") "</element>", "BIE;-;",
         0},
        {"<element name='r'><annotation><documentation><c xmlns:c='urn:c'><c:Type>" + times(300, "long ") +
             "</c:Type><c:Definition>Short.</c:Definition></c></documentation></annotation></element>",
         "Short.;-;", 1},
        // Documentation without a target is counted.
        {"<annotation><documentation>S</documentation></annotation>" ROOT(
             "<sequence>" SAID("Q") "<element name='a'/></sequence>"),
         "-;-;", 2},
    };
    for (const auto& row : rows) {
        typesOfSchema(row.schema);
        EXPECT_EQ(descriptionsOf(message), row.descriptions) << row.schema;
        std::size_t cut = 0;
        for (const auto& [construct, times] : message.queryReport().queryCounts(SourceReport::detail))
            cut += construct == SourceReport::documentationCut ? times : 0;
        EXPECT_EQ(cut, row.cut) << row.schema;
    }
}

} // namespace
