#include "support/SchemaFull.h"

#include <functional>

namespace {

// Recursion is cut, and growth beyond the bounds is refused.
struct Bound
{
    const char* name;
    CString (*schema)();
    const char* types; // null: refused, for a reason other than the declarations of the main file
    const char* box = "";
};

CString chained(std::size_t count, const std::function<CString(const CString& own, const CString& next)>& link)
{
    CString all;
    for (std::size_t i = 0; i < count; ++i)
        all += link(std::to_string(i), std::to_string((i + 1) % count));
    return all;
}

const Bound kBounds[] = {
    {"TenThousandExtensions",
     [] {
         return chained(10'000, [](const CString& own, const CString& next) {
             return "<complexType name='T" + own + "'><complexContent><extension base='t:T" + next +
                    "'><attribute name='a" + own + "'/></extension></complexContent></complexType>";
         });
     },
     "", "more than 1000000 fields, which is the limit."},
    {"ManyEmptyExtensions",
     [] {
         return "<element name='r' type='t:T0'/>" + chained(50'000, [](const CString& own, const CString& next) {
                    return "<complexType name='T" + own + "'><complexContent><extension base='t:T" + next +
                           "'/></complexContent></complexType>";
                });
     },
     "r(value:String)"},
    {"GroupsThatDouble",
     [] {
         return ROOT("<group ref='t:g0'/>") + chained(40, [](const CString& own, const CString& next) {
                    const CString reference = "<group ref='t:g" + next + "'/>";
                    return "<group name='g" + own + "'><sequence>" + (next == "0" ? "" : reference + reference) +
                           "</sequence></group>";
                });
     },
     "", "more than 20000000 steps through groups, substitution groups and derived types, which is the limit."},
    {"GroupsInsideEachOther",
     [] {
         return ROOT("<group ref='t:g0'/>") +
                chained(50'000,
                        [](const CString& own, const CString& next) {
                            return "<group name='g" + own + "'><sequence><group ref='t:g" + next +
                                   "'/></sequence></group>";
                        }) +
                "<group name='x'/>";
     },
     "r(value:String)"},
    {"ParticlesInsideEachOther",
     [] {
         return "<element name='r'><complexType>" + times(50'000, "<choice><sequence>") + "<element name='a'/>" +
                times(50'000, "</sequence><element name='a'/></choice>") + "</complexType></element>";
     },
     "r(a:String)"},
    {"SimpleTypesOfEachOther",
     [] {
         return ROOT("<attribute name='a' type='t:S0'/>") +
                chained(50'000, [](const CString& own, const CString& next) {
                    return "<simpleType name='S" + own + "'><union memberTypes='t:S" + next + " t:S" + next +
                           "'/></simpleType>";
                });
     },
     "r(a:String)"},
    {"MembersOfEachOthersSubstitutionGroups",
     [] {
         return ROOT("<sequence><element ref='t:e0'/></sequence>") +
                chained(50'000, [](const CString& own, const CString& next) {
                    return "<element name='e" + own + "' substitutionGroup='t:e" + next + "' abstract='true'/>";
                });
     },
     "r(value:String)"},
    {"DerivationsAndHeadsThatAreBlockedFarAway",
     [] {
         const auto derived = [](const CString& name, const char* way, const CString& base) {
             return "<complexType name='" + name + "'><complexContent><" + way + " base='t:" + base +
                    "'/></complexContent></complexType>";
         };
         return ROOT("<sequence><element ref='t:h'/></sequence>") +
                chained(200,
                        [&](const CString& own, const CString& next) {
                            const bool isLast = next == "0";
                            return "<element name='e" + own +
                                   "' substitutionGroup='t:" + (isLast ? "h' type='t:T0" : "e" + next) + "'/>" +
                                   derived("T" + own, isLast ? "extension" : "restriction", isLast ? "B" : "T" + next);
                        }) +
                "<element name='h' type='t:B' block='extension'/><element name='i' type='t:C' "
                "substitutionGroup='t:h'/><complexType name='B'/>" +
                derived("C", "restriction", "D") + derived("D", "restriction", "E") + derived("E", "restriction", "D");
     },
     "r(h:String i:String)"},
    {"UnionThatRepeatsAMember",
     [] {
         return ROOT("<attribute name='a' type='t:U'/>") "<simpleType name='U'><union memberTypes='" +
                times(400'000, "t:E ") + "'/></simpleType><simpleType name='E'><restriction base='string'>" +
                times(400'000, "<enumeration value='x'/>") + "</restriction></simpleType>";
     },
     "E{x} U{x} r(a:U)"},
    {"EnumerationUnderManyNames",
     [] {
         return chained(1'000,
                        [](const CString& own, const CString& next) {
                            return "<simpleType name='S" + own + "'><restriction base='t:S" + next + "'>" +
                                   (next == "0" ? chained(1'001,
                                                          [](const CString& constant, const CString&) {
                                                              return "<enumeration value='" + constant + "'/>";
                                                          })
                                                : CString()) +
                                   "</restriction></simpleType>";
                        }) +
                ROOT("<attribute name='a' type='t:S0'/>");
     },
     "", "more than 1000000 constants, which is the limit."},
};

class SchemaBound : public SchemaFull, public testing::WithParamInterface<Bound>
{};

TEST_P(SchemaBound, Holds)
{
    const Bound& bound = GetParam();
    const CString file = folder.write("x.xsd", documentOf(bound.schema()));
    EXPECT_EQ(message.parseFile(file, "\\b\\"), *bound.types != '\0');
    EXPECT_EQ(fullTypesOf(message), bound.types);
    EXPECT_EQ(boxes.take(), *bound.types ? std::vector<CString>() : std::vector<CString>{file + ": " + bound.box});
}

INSTANTIATE_TEST_SUITE_P(Rows, SchemaBound, testing::ValuesIn(kBounds), [](const auto& row) { return row.param.name; });

TEST_F(SchemaFull, ReportsTheTypeOfAnArrayThatItCantRead)
{
    const std::pair<CString, const char*> rows[] = {
        {"int" + times(9, "[]"), "x.xsd:1:239: cut short by a bound: more than 8 arrays inside each other\n"},
        {"no name[]", "x.xsd:1:239: name that XML can't represent: no name\n"},
    };
    for (const auto& [items, reported] : rows) {
        typesOfSchema(
            "<complexType name='A'><complexContent><restriction xmlns:e='http://schemas.xmlsoap.org/soap/encoding/' "
            "base='e:Array'><attribute ref='e:arrayType' xmlns:w='http://schemas.xmlsoap.org/wsdl/' w:arrayType='" +
            items + "'/></restriction></complexContent></complexType>");
        EXPECT_THAT(reportOf(message, folder.path()), testing::HasSubstr(reported));
    }
}

} // namespace
