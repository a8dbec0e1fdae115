#include "Import/Json/JsonMessage.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

#include <tuple>

namespace {

struct Rule
{
    const char* name;
    CString schema; // properties of the record "r", unless it begins with a brace
    const char* types;
    std::vector<std::pair<const char*, CString>> others = {};
    const char* root = "";
};

CString documentOf(const CString& schema)
{
    return schema.starts_with('{') ? schema : "{\"title\":\"r\",\"properties\":{" + schema + "}}";
}

#define A_REF R"("$ref":"#/$defs/A")"
#define A_RECORD R"("A":{"properties":{"x":{"type":"number"}}})"

const Rule kRules[] = {
    {"LeavesAreFieldsOfTheirKind",
     R"("a":{"type":"integer"},"b":{"type":"number"},"c":{"type":"string"},"d":{"type":"boolean"},"e":{"type":"null"},"f":{},
        "g":true,"h":false,"i":{"type":"string","format":"date-time"},"j":{"type":"string","format":"date"},
        "k":{"type":"string","format":"time"},"l":{"type":"string","format":"uri"},"m":{"type":"integer","format":"date"},"n":{"type":"boolean","format":"date"})",
     "r(a:Number b:Number c:String d:String e:String f:String g:String i:Time j:Time k:Time l:String m:Number "
     "n:String)"},
    {"NullIsNoKind",
     R"("a":{"type":["null","integer"]},"b":{"anyOf":[{"type":"null"},{"type":"string","format":"date"}]})",
     "r(a:Number b:Time)"},
    {"TypesThatDiffer",
     R"("a":{"type":["integer","number"]},"b":{"type":["string","integer"]},"c":{"type":["string","object"],"properties":{"x":{}}},
        "d":{"type":["array","string"]})",
     "c(x:String) r(a:Number b:String c:c d:String)"},
    {"ListedValues",
     R"("a":{"enum":["x","y","x"]},"b":{"const":"z","enum":["y","z"]},"c":{"enum":[1,2]},"d":{"enum":["x",1]},"e":{"enum":["x",null]},
        "f":{"type":"integer","enum":["1"]},"g":{"enum":[true]},"h":{"enum":[]})",
     "e{x} b{z} a{x|y} r(a:a b:b c:Number d:String e:e f:Number g:String h:String)"},
    {"Arrays",
     R"("a":{"type":"array","items":{"type":"integer"}},"b":{"items":{"items":{"properties":{"x":{}}}}},"c":{"type":"array"},
        "d":{"type":"array","items":{"enum":["p"]}})",
     "d{p} t_c[String] t_a[Number] b(x:String) t_b[b] t_t_b[t_b] t_d[d] r(a:t_a b:t_t_b c:t_c d:t_d)"},
    {"ArraysOrLeavesInArrays",
     R"("a":{"items":{"anyOf":[{"type":"string"},{"items":{"type":"string"}}]}},"b":{"anyOf":[{"type":"string"},{"items":{"type":"string"}}]},
        "c":{"anyOf":[{"items":{"type":"string"}},{"anyOf":[{"type":"string"},{"items":{"type":"string"}}]}]})",
     "t_a[String] r(a:t_a b:String c:String)"},
    {"ListsOfItems",
     R"("a":{"prefixItems":[{"type":"integer"},{"type":"number"}]},"b":{"items":[{"type":"string"},{"type":"number"}]},
        "c":{"items":[{"properties":{"x":{}}}],"additionalItems":{"properties":{"y":{}}}})",
     "t_b[String] t_a[Number] c(x:String y:String) t_c[c] r(a:t_a b:t_b c:t_c)"},
    {"FurtherItems",
     R"("a":{"type":"array","unevaluatedItems":{"properties":{"x":{}}}},"b":{"items":{"properties":{"k":{"type":"string"}}},"contains":{"properties":{
        "k":{"const":"A"},"y":{}}}},"c":{"contains":{"properties":{"z":{}}}},"d":{"items":{"properties":{"w":{}}},"additionalItems":{"type":"string"}},
        "e":{"type":"array","contains":{"const":"A"}})",
     "t_e[String] d(w:String) c(z:String) b(k:String y:String) a(x:String) t_a[a] t_b[b] t_c[c] t_d[d] r(a:t_a b:t_b "
     "c:t_c d:t_d e:t_e)"},
    {"PropertiesOfAnyName",
     R"("a":{"type":"object","additionalProperties":{"type":"number"}},"b":{"patternProperties":{"^x":{"type":"array"}}},
        "c":{"properties":{"x":{}},"additionalProperties":{"type":"string"}},"d":{"type":"object"},
        "e":{"type":"array","items":{"additionalProperties":{"enum":["k"]}}},"f":{"type":"object","additionalProperties":true})",
     "value{k} c(x:String) t_value[String] a(key:String value:Number) b(key:String value:t_value) e(key:String "
     "value:value) t_a[a] t_b[b] t_e[e] t_t_e[t_e] r(a:t_a b:t_b c:c d:String e:t_t_e f:String)"},
    {"References",
     R"({"title":"r","properties":{"a":{)" A_REF R"(},"b":{)" A_REF R"(},"c":{"type":"array","items":{)" A_REF
     R"(}},"d":{"$ref":"#/$defs/E"},"e":{"$ref":"#/$defs/I"},"f":{"$ref":"#"},
        "g":{"$ref":"#/$defs/None"},"h":{"$ref":"#/properties/i"},"i":{"properties":{"y":{}}}},"$defs":{)" A_RECORD
     R"(,"E":{"enum":["x"]},"I":{"type":"integer"}}})",
     "i(y:String) A(x:Number) E{x} t_c[A] r(a:A b:A c:t_c d:E e:Number f:r g:String h:i i:i)"},
    {"NestedReferencesAndAnchors",
     R"({"$id":"http://x/r.json","title":"r","properties":{"a":{"$ref":"#named"},"b":{"$ref":"http://x/b.json"},
        "c":{"$ref":"b.json#/$defs/C"},"d":{"$dynamicRef":"#d"},"e":{"$ref":"#/$defs/C"}},
        "$defs":{"C":{"type":"string","format":"date"},"A":{"$anchor":"named","type":"number"},"D":{"$dynamicAnchor":"d","type":"number"},
        "B":{"$id":"b.json","properties":{"x":{"$ref":"#/$defs/C"}},"$defs":{"C":{"type":"number"}}}}})",
     "B(x:Number) r(a:Number b:B c:Number d:Number e:Time)"},
    {"PointersFromTheRootInsideASchemaWithAnIdentifier",
     R"({"title":"r","properties":{"b":{"$ref":"b.json"}},"$defs":{"B":{"$id":"b.json","properties":{"x":{"$ref":"#/$defs/C"}}},"C":{"type":"number"}}})",
     "B(x:Number) r(b:B)"},
    {"FilesBesideAnEmbeddedIdentifier",
     R"({"title":"r","properties":{"a":{"$ref":"#/$defs/A"},"b":{"$ref":"#/$defs/B"}},"$defs":{"A":{"$id":"d%20e/../d%20e/a.json","properties":{"x":{
        "$ref":"c.json"},"z":{"$ref":"f.json"}}},"B":{"$id":"http://x/b.json","properties":{"y":{"$ref":"c.json"}}}}})",
     "B(y:Time) A(x:Number z:Time) r(a:A b:B)",
     {{"d e/c.json", R"({"type":"number"})"},
      {"c.json", R"({"type":"string","format":"date"})"},
      {"f.json", R"({"$ref":"c.json"})"}}},
    {"AListWithoutANameOfItsOwnIsCalledLikeItsFields",
     R"("a":{"items":{"enum":["x"]}},"b":{"items":{"$ref":"#/properties/a/items"}})",
     "b{x} a{x} t_a[a] t_b[b] r(a:t_a b:t_b)"},
    {"ARootThatIsTextByItsParts", R"({"title":"r","anyOf":[{"type":"string"},{"type":"number"}],"$defs":{"D":{}}})",
     "r(value:String)"},
    {"IdentifiersOfDraft4",
     R"({"$schema":"http://json-schema.org/draft-04/schema#","id":"http://x/r.json","title":"r","properties":{
        "a":{"$ref":"#named"},"b":{"$ref":"b.json"}},"definitions":{"A":{"id":"#named","type":"number"},
        "B":{"id":"b.json","type":"number"}}})",
     "r(a:Number b:Number)"},
    {"IdentifiersInDataDontCount",
     R"({"$id":"http://x/r","title":"r","properties":{"b":{"const":{"$id":"http://x/R","properties":{"w":{}}}},"a":{"$ref":"http://x/R"},
        "default":{"$id":"http://x/D","type":"number"},"c":{"$ref":"http://x/D"},"d":{"example":{"$id":"http://x/E"}},"e":{"$ref":"http://x/E"}},
        "$defs":{"E":{"$id":"http://x/E","type":"number"},"R":{"$id":"http://x/R","type":"number"}}})",
     "r(b:String a:Number default:Number c:Number d:String e:Number)"},
    {"IdentifiersBesideAReferenceDontCount",
     R"({"$schema":"http://json-schema.org/draft-07/schema#","$id":"http://x/a/","title":"r","properties":{"a":{"$id":"http://y/","$ref":"b.json"}},
        "definitions":{"b":{"$id":"http://x/a/b.json","type":"number"},"c":{"$id":"http://y/b.json","enum":["wrong"]}}})",
     "r(a:Number) c{wrong}"},
    {"Escapes",
     R"({"title":"r","properties":{"a":{"$ref":"#/$defs/a~1b~0%25"},"\u0062\n\ud800\ud83d\ude00":{"type":"number"}},"$defs":{"a/b~%":{"type":"number"}}})",
     "r(a:Number b\n\uFFFD\U0001F600:Number)"},
    {"SiblingsOfAReference",
     R"({"title":"r","properties":{"a":{)" A_REF R"(,"properties":{"y":{}}},"b":{)" A_REF
     R"(,"description":"d"}},"$defs":{)" A_RECORD "}}",
     "A(x:Number) a(x:Number y:String) r(a:a b:A)"},
    {"SiblingsDontCountUpToDraft7",
     R"({"$schema":"http://json-schema.org/draft-07/schema#","title":"r","properties":{"a":{)" A_REF
     R"(,"properties":{"y":{}}}},"$defs":{)" A_RECORD "}}",
     "A(x:Number) r(a:A)"},
    {"SiblingsDontCountInDocumentsThatItRefersTo",
     R"({"$schema":"http://json-schema.org/draft-06/schema#","title":"r","properties":{"a":{"$ref":"b.json"}}})",
     "B(x:Number) r(a:B)",
     {{"b.json",
       R"({"title":"B","properties":{"x":{"$ref":"#/definitions/N","properties":{"no":{}}}},"definitions":{"N":{"type":"number"}}})"}}},
    {"OtherDocuments",
     R"("a":{"$ref":"B.json"},"b":{"$ref":"./none/../b.json#/definitions/C"},"c":{"$ref":"none.json"},"d":{"$ref":"http://x/y"},
        "e":{"$ref":"d.yaml#/D"},"f":{"$ref":"bad.json"})",
     "D(z:Number) B(x:String) r(a:B b:Number c:String d:String e:D f:String)",
     {{"b.json", R"({"title":"B","properties":{"x":{"$ref":"sub/e.json"}},"definitions":{"C":{"type":"number"}}})"},
      {"d.yaml", "D:\n  properties:\n    z: {type: number}\n"},
      {"bad.json", "{"}}},
    {"EnumerationsOfOtherDocuments",
     R"("a":{"$ref":"b.json#/E"},"b":{"$ref":"b.json#/E"})",
     "E{x} r(a:E b:E)",
     {{"b.json", R"({"E":{"enum":["x"]}})"}}},
    {"AllOf",
     R"({"title":"r","allOf":[{)" A_REF
     R"(},{"properties":{"y":{},"x":{"type":"number"}}}],"properties":{"z":{}},"$defs":{)" A_RECORD "}}",
     "r(x:Number y:String z:String) A(x:Number)"},
    {"OneMeaningAlone",
     R"({"title":"r","properties":{"a":{"allOf":[{)" A_REF
     R"(}],"description":"d"},"b":{"oneOf":[{"type":"null"},{)" A_REF R"(}]},"c":{"prefixItems":[{)" A_REF
     R"(},{)" A_REF R"(}]}},"$defs":{)" A_RECORD "}}",
     "A(x:Number) t_c[A] r(a:A b:A c:t_c)"},
    {"TheLaterKindHolds",
     R"("a":{"allOf":[{"type":"string"},{"type":"number"}]},"b":{"allOf":[{"type":"string"},{"enum":["x"]}]})",
     "b{x} r(a:Number b:b)"},
    {"AFormatAloneRestrictsNoOtherKind",
     R"("a":{"type":"array","items":{"type":"number"},"anyOf":[{"format":"x"},{"format":"y"}]},
        "b":{"allOf":[{"format":"date"},{"type":"integer"}]},"c":{"allOf":[{"format":"date"},{"type":"string"}]})",
     "t_a[Number] r(a:t_a b:Number c:Time)"},
    {"AnEnumerationNarrowsAnother",
     R"("a":{"allOf":[{"enum":["x","y"]},{"enum":["y"]}]},"b":{"allOf":[{"enum":["x"]},{"enum":["x","y"]}]})",
     "b{x} a{y} r(a:a b:b)"},
    {"Extends", R"({"title":"r","extends":{"properties":{"a":{}}},"properties":{"b":{"extends":[{"type":"number"}]}}})",
     "r(a:String b:Number)"},
    {"Alternatives",
     R"("a":{"oneOf":[{"properties":{"k":{"const":"p"},"x":{}}},{"properties":{"k":{"const":"q"},"y":{"properties":{"u":{}}}}},
        {"properties":{"y":{"properties":{"v":{}}}}}]},"b":{"anyOf":[{"type":"number"},{"type":"integer"}]},
        "c":{"anyOf":[{"enum":["x"]},{"const":"y"}]},"d":{"anyOf":[{"type":"string"},{"properties":{"x":{}}}]},
        "e":{"anyOf":[{"type":"string"},{"type":"array","items":{"type":"string"}}]},
        "f":{"anyOf":[{"type":"string"},{"type":"array","items":{"properties":{"x":{}}}}]})",
     "c{x|y} f(x:String) d(x:String) k{p|q} y(u:String v:String) a(k:k x:String y:y) t_f[f] r(a:a b:Number c:c d:d "
     "e:String f:t_f)"},
    {"AnAlternativeThatAllowsAnythingMakesText",
     R"({"title":"r","properties":{"a":{"anyOf":[{"enum":["x"]},{"pattern":"^y"}]},"b":{"prefixItems":[{"format":"date","type":"string"},true]},
        "c":{"type":"number","anyOf":[{"type":"integer"},{"minimum":1}]},"d":{"oneOf":[{"enum":["x"]},{"$ref":"#/$defs/N"},{"nullable":true}]},
        "e":{"anyOf":[{},{"properties":{"x":{}}}]}},"$defs":{"N":{"enum":[null]}}})",
     "d{x} t_b[String] e(x:String) r(a:String b:t_b c:Number d:d e:e)"},
    {"Conditions",
     R"({"title":"r","if":{"properties":{"a":{"const":"x"}}},"then":{"properties":{"b":{}}},"else":{"properties":{"c":{}}},
        "properties":{"a":{"enum":["x","y"]},"z":{}},"dependentSchemas":{"a":{"properties":{"d":{}}}},"dependencies":{"a":["b"]}})",
     "a{x|y} r(a:a z:String b:String c:String d:String)"},
    {"ConditionsOnItems",
     R"({"title":"r","properties":{"a":{"items":{"properties":{"x":{}}}},"b":{"type":"array"},"c":{"items":{"type":"string"}},
        "d":{"items":{"$ref":"#/$defs/D"}}},"then":{"properties":{"a":{"items":{"properties":{"y":{}}}},
        "b":{"contains":{"properties":{"z":{}}}},"c":{"items":{"const":"p"}},"d":{"items":{"required":["w"]}}}},
        "$defs":{"D":{"properties":{"w":{}}}}})",
     "t_c[String] D(w:String) b(z:String) a(x:String y:String) t_a[a] t_b[b] t_d[D] r(a:t_a b:t_b c:t_c d:t_d)"},
    {"AConditionGoesBeforeAMap",
     R"({"title":"r","if":{},"then":{"patternProperties":{"x":{"type":"number"}}},"else":{"properties":{"c":{}}}})",
     "r(c:String)"},
    {"RecordsThatHoldEachOther",
     R"({"title":"r","allOf":[{"$ref":"#/$defs/B"},{"properties":{"n":{"$ref":"#"}}}],
        "$defs":{"B":{"properties":{"n":{"$ref":"#/$defs/B"},"l":{"type":"array","items":{"$ref":"#"}}}}}})",
     "t_l[r] n(n:n l:t_l) r(n:n l:t_l) B(n:B l:t_l)"},
    {"PropertiesCalledLikeKeywords",
     R"("schemas":{"items":{"properties":{"x":{}}}},"definitions":{"oneOf":[{"properties":{"y":{}}}]},
        "properties":{"properties":{"properties":{"items":{"properties":{"z":{}}}}}})",
     "properties_properties(z:String) definitions(y:String) schemas(x:String) t_properties[properties_properties] "
     "properties(properties:t_properties) t_schemas[schemas] r(schemas:t_schemas definitions:definitions "
     "properties:properties)"},
    {"PatternsAreNoNames", R"("m":{"patternProperties":{"^x":{"properties":{"y":{}}},"^z":{"properties":{"y":{}}}}})",
     "value(y:String) m(key:String value:value) t_m[m] r(m:t_m)"},
    {"DefinitionsAlone",
     R"({"definitions":{"A":{"properties":{"x":{"$ref":"#/definitions/B"}}},"B":{"properties":{"y":{}}},"E":{"enum":["z"]}}})",
     "B(y:String) E{z} A(x:B)"},
    {"ChosenMainType",
     R"({"title":"r","properties":{"a":{}},"$defs":{"B":{"properties":{"y":{}}},"C":{"properties":{"z":{}}}}})",
     "B(y:String)",
     {},
     "B"},
    {"ADefinitionThatOnlyRefersAsMainType",
     R"({"title":"r","properties":{"a":{"$ref":"#/$defs/A"}},"$defs":{"A":{"$ref":"#/$defs/B"},"B":{"properties":{"x":{},"b":{"$ref":"#/$defs/B"}}}}})",
     "A(x:String b:A)",
     {},
     "A"},
    {"AnArrayIsAValue", R"({"title":"r","type":"array","items":{"properties":{"x":{}}}})",
     "r_2(x:String) t_value[r_2] r(value:t_value)"},
    {"TakenNames",
     R"("a":{"properties":{"k":{"properties":{"x":{}}}}},"k":{"properties":{"y":{}}},"":{},"p\\q":{"properties":{"z":{}}})",
     "p_q(z:String) k(y:String) a_k(x:String) a(k:a_k) r(a:a k:k _:String p_q:p_q)"},
    {"Numbers", R"("a":{"type":"number","maximum":1e99999,"minimum":-123456789012345678901234567890.5E-7})",
     "r(a:Number)"},
    {"Yaml",
     "# YAML\ntitle: r\nproperties:\n  a: &n {type: integer}\n  b: *n\n  c:\n    <<: *n\n    title: C\n  on: {enum: "
     "[yes, 'no']}\n",
     "on{yes|no} r(a:Number b:Number c:Number on:on)"},
    {"AQuotedMergeIsAName", "# YAML\ntitle: r\nproperties:\n  '<<': {type: integer}\n", "r(<<:Number)"},
    {"YamlNumbers",
     "# YAML\ntitle: r\nproperties:\n  a: {enum: [1, -0.5, .5, 1., +1e3, 1E99999, 0x1F, .inf]}\n"
     "  b: {enum: [nan, 1_0, --1, 1e, .]}\n",
     "b{nan|1_0|--1|1e|.} r(a:Number b:b)"},
    {"YamlTags",
     "# YAML\ntitle: r\nproperties:\n  a: {const: !!int '1'}\n  b: {const: !!str 1}\n  c: {const: ! 2}\n  d: {const: "
     "!x '3'}\n  e: {const: !!null ''}\n",
     "d{3} c{2} b{1} r(a:Number b:b c:c d:d e:String)"},
    {"YamlMergesTheFirstOfSeveralBehindOwnKeys",
     "# YAML\ntitle: r\ndefinitions:\n  x: &x {type: integer}\n  y: &y {type: string, format: date}\nproperties:\n"
     "  a: {<<: [*x, *y]}\n  b: {type: string, <<: [*x, *y]}\n  c: {<<: [*y, *x]}\n",
     "r(a:Number b:Time c:Time)"},
};

class JsonSchema : public Importing<JsonSchemaMessage>
{
protected:
    int importSchema(const CString& schema)
    {
        const bool isYaml = schema.starts_with('#') || schema.starts_with("\xEF\xBB\xBF#");
        return message.parseFile(folder.write(isYaml ? "x.yaml" : "x.json", schema), "\\b\\");
    }
};
class JsonSchemaRule : public JsonSchema, public testing::WithParamInterface<Rule>
{};

TEST_P(JsonSchemaRule, GivesTypes)
{
    for (const auto& [name, content] : GetParam().others)
        folder.write(name, content);
    message.setRoot(GetParam().root);
    const CString& schema = GetParam().schema;
    EXPECT_EQ(importSchema(schema.starts_with('#') ? schema : documentOf(schema)), 1);
    EXPECT_EQ(fullTypesOf(message), GetParam().types);
}

INSTANTIATE_TEST_SUITE_P(Rows, JsonSchemaRule, testing::ValuesIn(kRules),
                         [](const auto& row) { return row.param.name; });

TEST_F(JsonSchema, ReportsWhatIsNotCarriedOver)
{
    folder.write("bad.json", "{\n  \"a\" 1}");
    folder.write("x.xsd", "\xEF\xBB\xBF\n<schema/>");
    folder.write("r.avsc", R"({"type":"record","name":"R","fields":[]})");
    EXPECT_EQ(importSchema(R"({"title":"r","required":["a"],"properties":{
  "a":{"$ref":"#/$defs/None"},"b":{"$ref":"none.json"},"c":{"$ref":"bad.json#/x"},
  "d":{"properties":{"x":{"minLength":1,"default":"x"}},"additionalProperties":{"type":"string"}},
  "e":{"type":["string","integer"]},"f":{"type":"object"},"f":{"oneOf":[{"type":"number"},{"type":"null"}]},
  "g\\h":{"type":"string"},"h":{"allOf":[{"type":"string"},{"type":"integer","maximum":9}]},"i":false,
  "j":{"oneOf":[{"properties":{"~/":{"type":"string"}}},{"properties":{"~/":{"type":"array"}}}]},
  "k":{"allOf":[{"enum":["x","y"]},{"enum":["x"]}]},
  "m":{"allOf":[{"properties":{"w":{"type":"number","minimum":1}}},{"properties":{"w":{"type":"number","maximum":2}}}],"dependentRequired":{},"minContains":1,"maxContains":2},
  "n":{"$ref":"x.xsd"},"o":{"$ref":"r.avsc"},"p":{"anyOf":[{"type":"number"},{}]},
  "q":{"title":" ","description":"One. Two.","format":"uri","contentEncoding":"base64"},"s":{"const":"x\u0001","title":"S","description":"no"},"\ud800t":{}},
  "then":{"additionalProperties":{"type":"string"}}})"),
              1);
    EXPECT_EQ(reportOf(message, folder.path()), R"(14 losses
x.json:4:41: key given twice: f
x.json:11:10: further properties of any name: #/then
x.json:2:15: reference to nothing that was read: #/$defs/None at #/properties/a
x.json:2:43: module or document not there: none.json at #/properties/b
bad.json:2:7: document not well-formed: a colon is expected after the key (named in x.json:2:68)
x.json:2:68: reference to nothing that was read: bad.json#/x at #/properties/c
x.json:3:7: further properties of any name: #/properties/d
x.json:4:7: values of different kinds: #/properties/e
x.json:5:60: values of different kinds: #/properties/h/allOf/1
x.json:9:15: module or document not readable: x.xsd: it is XML, not JSON or YAML
x.json:9:15: reference to nothing that was read: x.xsd at #/properties/n
x.json:9:36: unknown type, imported as text: r.avsc in Avro at #/properties/o
x.json:9:50: values of different kinds: #/properties/p
x.json:6:37: values of different kinds: #/properties/j/oneOf/0/properties/~0~1

41 details
x.json:10:144: name adjusted: �t
x.json:5:97: part that may not occur: i at #/properties/i
x.json:5:10: name adjusted: g\h is g_h
x.json:10:93: name adjusted: x  is x�

4 values of several kinds
4 references became text
2 further properties left out
1 document not found
1 document not readable
1 document not well-formed
1 key given twice
22 optional parts
9 facets
3 names adjusted
3 choices
2 documentations cut short
1 part that may not occur
1 default value
)");
}

TEST_F(JsonSchema, DescribesByTitleOrFirstSentence)
{
    EXPECT_EQ(importSchema(R"({"title":" The\n r ","description":"no","properties":{
        "a":{"description":"It is 1.5 long, e.g. so. No more."},"b":{"$ref":"#/$defs/B"},"c":{"title":"C","description":"no"},
        "d":{"oneOf":[{"const":"x","title":"Of x"},{"const":"y"},{"const":"z","description":"Of z. No."}]},"e":{"title":"E","const":"w"},"f":{"title":"F"}},
        "allOf":[{"properties":{"f":{"title":"no","type":"number"}}}],"$defs":{"B":{"description":"Of B","type":"number"}}})"),
              1);
    CString said;
    message.beginEnum();
    while (const Element* type = message.enumNext())
        for (const Element* child : type->queryChildren())
            said += child->queryDescription() + ";";
    EXPECT_EQ(said, "w (Automatically created);Of x;y (Automatically created);Of z.;It is 1.5 long, e.g. so.;Of B;C;d "
                    "(Automatically created);E;F;");
    EXPECT_EQ(message.queryMainTypeName(), "The_r");
    message.setRoot("A");
    EXPECT_EQ(importSchema(
                  R"({"$defs":{"A":{"$ref":"#/$defs/B","title":"Of A"},"B":{"title":"Of B","properties":{"x":{}}}}})"),
              1);
    message.beginEnum();
    EXPECT_EQ(message.enumNext()->queryDescription(), "Of A");
}

// Returns a mapping of YAML with many keys, and a list of mappings that it is merged into.
CString manyMerges()
{
    CString text = "#\nb: &b {";
    for (int i = 0; i < 1000; ++i)
        text += "k" + std::to_string(i) + ": 1, ";
    return text + "}\na: [" + times(500, "{<<: *b}, ") + "]";
}

// Returns schemas whose fields combine one another in ever more ways.
CString manyCombinations()
{
    constexpr int count = 200;
    const auto reference = [](int i) { return "{\"$ref\":\"#/$defs/d" + std::to_string(i % count) + "\"}"; };
    CString text = "{\"$defs\":{";
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "\"d" : ",\"d") + std::to_string(i) + "\":{\"allOf\":[" +
                (i % 2 == 0 ? reference(i + 1) : "") + "],\"properties\":{\"x\":" + reference(i * 7 + 3) + ",\"y" +
                std::to_string(i % 5) + "\":" + reference(i * 11 + 5) + "}}";
    return text + "}}";
}

// Returns a schema whose fields are limited by two long lists of values.
CString manyLists()
{
    constexpr int count = 4000;
    CString values, fields;
    for (int i = 0; i < count; ++i) {
        values += ",\"v" + std::to_string(i) + "\"";
        fields += ",\"f" + std::to_string(i) + R"(":{"allOf":[{"$ref":"#/$defs/a"},{"$ref":"#/$defs/b"}]})";
    }
    return R"({"title":"T","properties":{"f":{})" + fields + R"(},"$defs":{"a":{"enum":["a")" + values +
           R"(]},"b":{"enum":["a")" + values + "]}}}";
}

TEST_F(JsonSchema, MergesTheItemsOfManyConditionsOnce)
{
    CString schema = R"({"title":"r","properties":{"l":{"items":{"type":"object"}}},"allOf":[{})";
    for (int i = 0; i < 1000; ++i)
        schema += R"(,{"then":{"properties":{"l":{"items":{"properties":{"x)" + std::to_string(i) + R"(":{}}}}}}})";
    EXPECT_EQ(importSchema(schema + "]}"), 1);
    EXPECT_EQ(message.queryReport().queryTotal(SourceReport::loss), 0u);
    EXPECT_NE(fullTypesOf(message).find(" x999:String)"), CString::npos);
}

struct Refusal
{
    const char* name;
    CString schema;
    const char* says;
    const char* root = "";
};

const Refusal kRefusals[] = {
    {"NoJson", "{\"a\":\n  tru}", "Error on line 2, column 6.\nError text is 'a value is expected'."},
    {"Empty", " ", "Error on line 1, column 2.\nError text is 'the text ends too early'."},
    {"ValueBehindTheEnd", "{}\n{}",
     "Error on line 2, column 1.\nError text is 'a second value follows; only the importer json reads several'."},
    {"TextBehindTheEnd", "{} x", "Error on line 1, column 4.\nError text is 'text follows the end of the document'."},
    {"CommaTooMany", "[1,]", "Error on line 1, column 4.\nError text is 'a value is expected'."},
    {"Comment", "// {\n{}", "Error on line 1, column 1.\nError text is 'a value is expected'."},
    {"NoUtf8", "{\"\xff\":1}", "Error on line 1, column 3.\nError text is 'the bytes are not UTF-8'."},
    {"Utf16", CString("\xff\xfe{\0}\0", 6),
     "Error on line 1, column 1.\nError text is 'a value is expected, in UTF-8'."},
    {"TooDeep", times(1001, "[") + times(1001, "]"),
     "Error on line 1, column 1001.\nError text is 'more than 1000 levels of nesting, which is the limit'."},
    {"NoYaml", "#\na: [", "Error on line 3, column 1.\nError text is 'did not find expected node content'."},
    {"YamlOfOtherBytes", "\xEF\xBB\xBF# YAML\na: b\n# caf\xe9\n",
     "Error on line 3, column 6.\nError text is 'incomplete UTF-8 octet sequence'."},
    {"YamlControlCharacter", "# YAML\na: \x01",
     "Error on line 2, column 4.\nError text is 'control characters are not allowed'."},
    {"YamlColumnsInBytes", "# YAML\n\u00e9: {\u00e9\u00e9: 1, <<: *x}",
     "Error on line 2, column 19.\nError text is 'the alias has no anchor before it'."},
    {"YamlInsideItself", "# \na: &a [*a]",
     "Error on line 2, column 8.\nError text is 'the alias has no anchor before it'."},
    {"SecondYaml", "# \na: 1\n---\nb: 1",
     "Error on line 3, column 1.\nError text is 'a second document begins; only the first is supported'."},
    {"NoSchema", "[{}]", "$ declares no element, type or enumeration."},
    {"MadeOfItself", R"({"allOf":[{"$ref":"#/$defs/A"}],"$defs":{"A":{"anyOf":[{"type":"null"},{"$ref":"#"}]}}})",
     "# refers to itself without an object in between."},
    {"ManyMerges", manyMerges(),
     "$: more than 100000 merged members and 20 more for each value of the document, which is the limit."},
    {"ManyMergesInAnotherDocument", R"({"$ref":"merges.yaml"})",
     "$: more than 100000 merged members and 20 more for each value of the document, which is the limit."},
    {"ManyCombinations", manyCombinations(),
     "$: more than 50000 combinations of schemas and 2 more for each value of the source, which is the limit."},
    {"LongListsComparedOften", manyLists(), "$: more than 20000000 parts of schemas, which is the limit."},
    {"IdentifiersInALongOne",
     R"({"$id":"http://x/)" + times(1900, "a") + R"(/","allOf":[)" + times(80'000, R"({"$id":"x"},)") + "{}]}",
     "$: more than 256 MB of names, which is the limit."},
    {"NoSuchMainType", R"({"properties":{"a":{}}})", "There is no element called B.", "B"},
};

class JsonSchemaRefusal : public JsonSchema, public testing::WithParamInterface<Refusal>
{};

TEST_P(JsonSchemaRefusal, NamesTheFault)
{
    folder.write("merges.yaml", manyMerges());
    message.setRoot(GetParam().root);
    EXPECT_EQ(importSchema(GetParam().schema), 0);
    CString says = GetParam().says;
    if (says.starts_with('$'))
        says = folder.path() + (GetParam().schema.starts_with('#') ? "x.yaml" : "x.json") + says.substr(1);
    EXPECT_THAT(boxes.take(), testing::ElementsAre(says));
}

INSTANTIATE_TEST_SUITE_P(Rows, JsonSchemaRefusal, testing::ValuesIn(kRefusals),
                         [](const auto& row) { return row.param.name; });

TEST_F(JsonSchema, FindsMainTypesInDocumentsThatItRefersTo)
{
    folder.write("o.json", R"({"$defs":{"B":{"properties":{"x":{}}},"C":{"properties":{"y":{"$ref":"p.json"}}},
        "D":{"type":"number"}}})");
    folder.write("p.json", R"({"title":"D","properties":{"z":{}}})");
    folder.write("q.json", R"({"Q":{"properties":{"x":{"type":"array","minItems":1}}}})");
    const CString schema = R"({"title":"r","properties":{"b":{"$ref":"o.json#/$defs/B"},"p":{"$ref":"p.json"},
        "q":{"$ref":"q.json#/Q"},"e":{"$ref":"#/$defs/None"}},"$defs":{"B":{"properties":{"own":{}}}}})";
    const std::tuple<CString, const char*, std::size_t> rows[] = {
        {"B", "B(own:String)", 1},
        {"{" + folder.path("o.json") + "}B", "B(x:String)", 1},
        {"C", "D(z:String) C(y:D)", 2},
        {"{" + folder.path("p.json") + "}D", "D(z:String)", 1},
        {"Q", "t_x[String] Q(x:t_x)", 2},
        {"r", "t_x[String] D(z:String) B(x:String) Q(x:t_x) r(b:B p:D q:Q e:String)", 8},
    };
    for (const auto& [root, types, details] : rows) {
        message.setRoot(root);
        EXPECT_EQ(importSchema(schema), 1) << root;
        EXPECT_EQ(fullTypesOf(message), types) << root;
        EXPECT_EQ(message.queryReport().queryTotal(SourceReport::detail), details) << root;
        EXPECT_EQ(message.queryReport().queryTotal(SourceReport::loss), root == "r") << root;
    }
    message.setRoot("D");
    EXPECT_EQ(importSchema(schema), 0);
    EXPECT_THAT(boxes.take(), testing::ElementsAre("There are several elements called D: {" + folder.path("o.json") +
                                                   "}D, {" + folder.path("p.json") + "}D."));
}

} // namespace
