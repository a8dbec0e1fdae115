#include "Import/Full/EqualTypes.h"

#include "Import/Schema/Full/SchemaFullMsg.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

#include <algorithm>
#include <random>

namespace {

using Index = SourceTypes::Index;

// Few names and fields, so that many records are equal, and some differ only in the records that they hold.
void addRandomTypes(SourceTypes& types, std::mt19937& random)
{
    const auto below = [&random](Index most) { return std::uniform_int_distribution<Index>(0, most - 1)(random); };
    static constexpr std::string_view kNames[] = {"a", "b", "c"};
    const SourceTypes::Constant constants[] = {{"u"}, {"v"}};
    for (Index i = 0; i < 4; ++i)
        types.addEnumeration({.name = kNames[below(2)], .space = types.spaceOf(kNames[below(3)])},
                             std::span(constants).first(1 + below(2)));
    const Index count = 1 + below(30), kinds = 1 + below(3);
    for (Index i = 0; i < count; ++i)
        types.addRecord({kNames[below(kinds)], {}, {}, SourceTypes::kNone, types.spaceOf(kNames[below(3)])});
    for (Index i = 0; i < count; ++i) {
        std::vector<SourceTypes::Field> fields;
        for (Index place = below(3); place > 0; --place) {
            const auto enumerations = static_cast<Index>(types.enumerations.size());
            const SourceTypes::Type type = below(6) > 0
                                               ? SourceTypes::Type{SourceTypes::kindRecord, below(count)}
                                               : SourceTypes::Type{SourceTypes::kindEnumeration, below(enumerations)};
            fields.push_back({kNames[place], {}, type, SourceTypes::roleElement, 0});
        }
        types.setFields(i, fields);
    }
}

bool areAlike(const SourceTypes& types, SourceTypes::Type one, SourceTypes::Type other,
              const std::vector<std::vector<bool>>& equal)
{
    if (one.kind != other.kind || one.kind == SourceTypes::kindText)
        return one.kind == other.kind;
    if (one.kind == SourceTypes::kindRecord)
        return equal[one.index][other.index];
    return types.enumerations[one.index].name == types.enumerations[other.index].name &&
           std::ranges::equal(types.constantsOf(one.index), types.constantsOf(other.index), {},
                              &SourceTypes::Constant::name, &SourceTypes::Constant::name);
}

// A reference implementation: all pairs are equal until a difference is found.
std::vector<Index> naiveClasses(const SourceTypes& types)
{
    const std::size_t count = types.records.size();
    std::vector<std::vector<bool>> equal(count, std::vector<bool>(count, true));
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (Index one = 0; one < count; ++one)
            for (Index other = 0; other < count; ++other) {
                const bool isEqual =
                    types.records[one].name == types.records[other].name &&
                    std::ranges::equal(types.fieldsOf(one), types.fieldsOf(other), [&](const auto& a, const auto& b) {
                        return a.name == b.name && areAlike(types, a.type, b.type, equal);
                    });
                isChanged |= equal[one][other] && !isEqual;
                equal[one][other] = isEqual;
            }
    }
    std::vector<Index> first;
    for (const std::vector<bool>& row : equal)
        first.push_back(static_cast<Index>(std::ranges::find(row, true) - row.begin()));
    return first;
}

TEST(EqualTypes, AreThoseThatNothingTellsApart)
{
    std::mt19937 random(7);
    std::size_t merged = 0;
    for (int round = 0; round < 3'000; ++round) {
        const SourceTypes::Folders folders;
        SourceTypes types("x", &folders);
        addRandomTypes(types, random);
        const EqualTypes found(types);
        ASSERT_EQ(found.records, naiveClasses(types)) << "round " << round;
        for (Index record = 0; record < types.records.size(); ++record)
            merged += found.records[record] != record;
    }
    EXPECT_GT(merged, 1'000u);
}

// Each round separates one record, from the end of the chain. An algorithm that visits all records each round takes
// quadratic time.
TEST(EqualTypes, OfALongChainAreFound)
{
    constexpr Index kLength = 200'000;
    SourceTypes types("x");
    for (Index i = 0; i < kLength; ++i)
        types.addRecord({"a"});
    for (Index i = 0; i + 1 < kLength; ++i) {
        const SourceTypes::Field next{"next", {}, {SourceTypes::kindRecord, i + 1}};
        types.setFields(i, std::span(&next, 1));
    }
    const EqualTypes found(types);
    for (Index i = 0; i < kLength; ++i)
        ASSERT_EQ(found.records[i], i);
}

struct Row
{
    const char* name;
    CString a, b; // the declarations of two namespaces
    const char* types;
    std::vector<CString> roots = {};
};

#define TYPE(name, fields) "<complexType name='" name "'><sequence>" fields "</sequence></complexType>"
#define FIELD(name, type) "<element name='" name "' type='" type "'/>"

const Row kRows[] = {
    {"Equal", TYPE("T", FIELD("x", "int")), TYPE("T", FIELD("x", "int")), R"(\common\T)"},
    {"OtherName", TYPE("T", FIELD("x", "int")), TYPE("U", FIELD("x", "int")), R"(\b\U \a\T)"},
    {"OtherField", TYPE("T", FIELD("x", "int")), TYPE("T", FIELD("y", "int")), R"(\b\T \a\T)"},
    {"OtherDescription", TYPE("T", FIELD("x", "int")),
     TYPE("T", "<element name='x' type='int'><annotation><documentation>of x</documentation></annotation></element>"),
     R"(\b\T \a\T)"},
    {"OtherDeepDown", TYPE("T", FIELD("u", "t:U")) TYPE("U", FIELD("x", "int")),
     TYPE("T", FIELD("u", "t:U")) TYPE("U", FIELD("x", "string")), R"(\b\U \a\U \a\T \b\T)"},
    {"ThatHoldThemselves", TYPE("T", FIELD("u", "t:U")) TYPE("U", FIELD("t", "t:T") FIELD("x", "int")),
     TYPE("T", FIELD("u", "t:U")) TYPE("U", FIELD("t", "t:T") FIELD("x", "int")), R"(\common\U \common\T)"},
    {"Enumerations",
     "<simpleType name='E'><restriction base='string'><enumeration value='c'/></restriction></simpleType>" TYPE(
         "T", "<element name='e' type='t:E' maxOccurs='2'/>"),
     "<simpleType name='E'><restriction base='string'><enumeration value='c'/></restriction></simpleType>" TYPE(
         "T", "<element name='e' type='t:E' maxOccurs='2'/>"),
     R"(\common\E \common\t_e \common\T)"},
    {"Tables", TYPE("T", "<element name='i' type='int' maxOccurs='2'/>"),
     TYPE("U", "<element name='i' type='int' maxOccurs='2'/><element name='j' type='int' maxOccurs='2'/>"),
     R"(\b\t_j \common\t_i \a\T \b\U)"},
    {"TablesWithoutTheTypesOfOthers",
     TYPE("T", "<element name='i' type='int' maxOccurs='2'/>"),
     TYPE("U", "<element name='i' type='int' maxOccurs='2'/>"),
     R"(\common\t_i \a\T)",
     {"T"}},
    {"TwiceInOneNamespace",
     TYPE("T", "<element name='i'><complexType><sequence>" FIELD("x", "int") "</sequence></complexType></element>")
         TYPE("U", "<element name='i'><complexType><sequence>" FIELD("x", "int") "</sequence></complexType></element>"),
     TYPE("V", FIELD("x", "int")), R"(\b\V \a\U_i \a\i \a\T \a\U)"},
};

class MergedTypes : public Importing<SchemaFullMessage>
{};

TEST_F(MergedTypes, LieInOneFolder)
{
    for (const Row& row : kRows) {
        const auto schema = [](const CString& space, const CString& content) {
            return "<schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:" + space +
                   "' targetNamespace='urn:" + space + "'>" + content + "</schema>";
        };
        message.setFurtherFiles({folder.write("b", schema("b", row.b))});
        message.setMergesEqual(true);
        message.setRoots(row.roots);
        EXPECT_EQ(message.parseFile(folder.write("a", schema("a", row.a)), "\\"), 1) << row.name;
        CString names;
        message.beginEnum();
        while (const Element* type = message.enumNext())
            names += (names.empty() ? "" : " ") + type->queryPath() + type->queryName();
        EXPECT_EQ(names, row.types) << row.name;
    }
}

} // namespace
