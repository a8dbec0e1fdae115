#include "Types/TypeStructure.h"

#include "Import/Btd/BrokerMsg.h"
#include "Import/Dtd/DTDMsg.h"
#include "Types/TypeGraph.h"
#include "support/Importing.h"

namespace {

// Returns each type on a line: kind and name, its parts with their types, and its users after "<".
CString structureOf(MsgBase& message)
{
    const TypeStructure structure(message);
    CString text;
    for (std::uint32_t type = 0; type < structure.size(); ++type) {
        text += CString(structure.kindOf(type)) + " " + structure.queryFullName(type) + ":";
        const std::span<const TypePart> parts = structure.parts(type);
        EXPECT_EQ(parts.size(), structure.partCount(type));
        for (const TypePart& part : parts) {
            const TypeContent content = structure.contentOf(part);
            text.append(" ").append(part.name).append("=").append(part.typeName);
            text += structure.find(part.typeName) == TypeStructure::kNone ? "" : "!";
            EXPECT_EQ(structure.find(part.typeName), part.type);
            if (content.typeName != part.typeName)
                text.append("(").append(content.typeName).append(content.repeats).append(")");
        }
        for (const std::uint32_t user : structure.users(type))
            text += " <" + CString(shortName(structure.queryFullName(user)));
        text += "\n";
    }
    return text;
}

class DtdStructure : public Importing<DTDMessage>
{};

TEST_F(DtdStructure, PassesThroughTablesAndEndsAtCycles)
{
    import("<!ELEMENT a (b*, c, c2)><!ELEMENT b (a, e)><!ELEMENT c (#PCDATA)><!ELEMENT c2 (c*)><!ELEMENT e EMPTY>");
    EXPECT_EQ(structureOf(message), R"(record \b\a\b: a=\b\a\a! e=String <t_b
table \b\a\t_c: =String <c2
record \b\a\c2: c=\b\a\t_c!(String*) <a
record \b\a\a: b=\b\a\t_b!(\b\a\b*) c=String c2=\b\a\c2! <b
table \b\a\t_b: =\b\a\b! <a
)");
    const TypeStructure structure(message);
    bool isComplete = false;
    const std::uint32_t a = structure.find("\\b\\a\\a");
    EXPECT_EQ(structure.reach(a, 3, isComplete).size(), 3u);
    EXPECT_TRUE(isComplete);
    const std::vector<std::uint32_t> nearest = structure.reach(a, 2, isComplete);
    EXPECT_FALSE(isComplete);
    EXPECT_EQ(TypeGraph(structure, nearest, 2).toDot(), R"(digraph types {
    rankdir=LR
    node [shape=record]
    t0 [label="<title> a|<r0> b : b*\l|<r1> c : String\l|<r2> ... 1 more\l"]
    t1 [label="<title> b|<r0> a : a\l|<r1> e : String\l"]
    t0:r0 -> t1:title
    t1:r0 -> t0:title
}
)");
}

class BtdStructure : public Importing<BrokerMessage>
{};

TEST_F(BtdStructure, KnowsEveryKindAndNamesOutsideTheImport)
{
    const auto type = [](const CString& name, const CString& content) {
        return "<BROKERTYPEDESCRIPTION NAME=\"\\t\\" + name + "\">" + content + "</BROKERTYPEDESCRIPTION>";
    };
    import("<M>" + type("colour", "<ENUM><CONSTANT NAME=\"red\"/><CONSTANT NAME=\"a|b\"/></ENUM>") +
           type("five", "<ARRAY SIZE=\"7\"><COMPONENT TYPE=\"Time\"/></ARRAY>") +
           type("t_t", "<TABLE><COMPONENT TYPE=\"\\t\\t_colour\"/></TABLE>") +
           type("t_colour", "<TABLE><COMPONENT TYPE=\"\\t\\colour\"/></TABLE>") +
           type("loop", "<TABLE><COMPONENT TYPE=\"\\t\\loop\"/></TABLE>") +
           type("all", "<ROW><FIELD NAME=\"n\" TYPE=\"Number\"/><FIELD NAME=\"c\" TYPE=\"\\t\\t_t\"/><FIELD NAME=\"d\" "
                       "TYPE=\"\\t\\t_t\"/><FIELD NAME=\"l\" TYPE=\"\\t\\loop\"/><FIELD NAME=\"o\" "
                       "TYPE=\"\\else\\where\"/></ROW>") +
           "</M>");
    EXPECT_EQ(structureOf(message), R"(table \t\loop: =\t\loop! <loop <all
table \t\t_colour: =\t\colour! <t_t
table \t\t_t: =\t\t_colour!(\t\colour*) <all
array \t\five: =\t\five! <five
enumeration \t\colour: red= a|b= <t_colour
record \t\all: n=Number c=\t\t_t!(\t\colour**) d=\t\t_t!(\t\colour**) l=\t\loop! o=\else\where
)");
    const TypeStructure structure(message);
    const std::vector<std::uint32_t> types{structure.find("\\t\\all"), structure.find("\\t\\colour")};
    EXPECT_EQ(TypeGraph(structure, types, 9).toDot(), R"(digraph types {
    rankdir=LR
    node [shape=record]
    t0 [label="<title> all|<r0> n : Number\l|<r1> c : colour**\l|<r2> d : colour**\l|<r3> l : loop*\l|<r4> o : where\l"]
    t1 [label="<title> colour|<r0> red\l|<r1> a\|b\l"]
    t0:r1 -> t1:title
    t0:r2 -> t1:title
}
)");
}

} // namespace
