#include "Import/Json/JsonDataMsg.h"
#include "Import/Json/JsonMessage.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

namespace {

struct Rule
{
    const char* name;
    CString source;
    const char* types;
    const char* losses = "";
    const char* root = "";
};

// Returns a schema whose array contains objects, behind references to references.
CString manyReferences()
{
    CString schema = R"({"title":"T","properties":{"a":{"contains":{"$ref":"#/$defs/0"}}},"$defs":{)";
    for (int i = 0; i < 200; ++i)
        schema += "\"" + std::to_string(i) + R"(":{"$ref":"#/$defs/)" + std::to_string(i + 1) + "\"},";
    return schema + R"("200":{"title":"O","properties":{"x":{}}}}})";
}

const Rule kSchemas[] = {
    {"MisspeltStatements",
     R"({"title":"T","type":"object","properties":{"a":{"type":"strng"},"b":{"$ref":5},"c":{"type":["string",7]},"d":{"properties":["x"]},"e":7,
        "f":{"$ref":"#/title"},"g":["x"],"h":{"items":"x"},"i":{"allOf":{}},"j":{"enum":"x"},"k":{"if":1},"l":{"unknown":1,"items":true}}})",
     "t_l[String] T(a:String b:String c:String d:String e:String f:String g:String h:String i:String j:String "
     "k:String l:t_l)",
     "11 losses: 10 values not understood, 1 reference became text"},
    {"ObjectsAsConstants",
     R"({"title":"T","properties":{"a":{"const":{"x":1}},"b":{"enum":[true,[]]},"c":{"const":true},"d":{"type":"object","const":{}},"e":{"type":"integer","enum":[[1],2]}}})",
     "T(a:String b:String c:String d:String e:Number)", "4 losses: 4 values not understood"},
    {"StatementsOfTheWrongKind",
     R"({"title":"T","$defs":[],"required":"x","properties":{"a":{"title":5,"description":["x"]},"b":{"minLength":"x","pattern":1},"c":{"type":[],"enum":[]},
        "d":{"allOf":[],"oneOf":[],"anyOf":[]},"e":{"nullable":1,"exclusiveMinimum":true,"required":true,"title":null}}})",
     "T(a:String b:String c:String d:String e:String)", "12 losses: 12 values not understood"},
    {"ItemsBesideProperties",
     R"({"title":"T","properties":{"a":{"properties":{"x":{}},"items":{"properties":{"y":{}}}},"b":{"additionalProperties":{"type":"number"},"items":{}}}})",
     "b(key:String value:Number) a(x:String) t_b[b] T(a:a b:t_b)", "2 losses: 2 values of several kinds"},
    {"PropertiesThatAreOnlyRequired",
     R"({"title":"T","required":["b","a"],"properties":{"a":{"properties":{"x":{}},"required":["y"],"additionalProperties":false},
        "c":{"properties":{"x":{},"y":false},"required":["y"],"anyOf":[{"required":["x"]},{"required":["z"]}]}},"allOf":[{"required":["b","d"]}]})",
     "c(x:String) a(x:String) T(a:a c:c b:String d:String)"},
    {"ReferencesToNoSchema",
     R"({"title":"T","properties":{"a":{"$ref":"#/properties"},"b":{"$ref":"#/$defs/properties"},"c":{"$ref":"#/$defs/definitions"}},
        "$defs":{"properties":{"type":"number"},"definitions":{"definitions":{"$ref":"#/$defs"}}}})",
     "T(a:String b:Number c:String)", "1 loss: 1 reference became text"},
    {"IdentifiersGivenTwice",
     R"({"title":"T","properties":{"a":{"$ref":"http://x/a"},"b":{"$ref":"#n"}},"$defs":{"A":{"$id":"http://x/a","type":"number"},
        "B":{"$id":"http://x/a"},"C":{"$anchor":"n","type":"number"},"D":{"$anchor":"n"}}})",
     "T(a:Number b:Number)", "2 losses: 2 second declarations"},
    {"LongIdentifiers",
     R"({"title":"T","$id":"http://x/)" + times(2000, "a") + R"(/","properties":{"a":{"$ref":"http://x/)" +
         times(2000, "a") + R"(/b"},"c":{"$ref":"d"}},"$defs":{"B":{"$id":"b"},"D":{"$id":"d","type":"number"}}})",
     "T(a:String c:Number)", "2 losses: 1 document not local, 1 value not understood"},
    {"Draft3", R"({"$schema":"http://json-schema.org/draft-03/schema#","title":"T","properties":{"a":{"type":"any"}}})",
     "T(a:String)", "2 losses: 2 values not understood"},
    {"YamlMergesOfNoMapping",
     "# YAML\ntitle: T\nproperties:\n  a: {<<: 5, type: integer}\n  b: {<<: [{type: integer}, x]}\n",
     "T(a:Number b:Number)", "2 losses: 2 values not understood"},
    {"YamlMergesGivenTwice",
     "# YAML\ntitle: T\ndefinitions: {x: &x {type: integer}, y: &y {title: y}}\nproperties:\n  a: {<<: *x, <<: *y, <<: "
     "*x}\n",
     "T(a:Number)", "2 losses: 2 keys given twice"},
    {"ConditionsNarrowNothing",
     R"({"title":"T","properties":{"k":{"type":"string"},"l":{"type":"string","anyOf":[{"const":"A"},{"pattern":"x"}]}},"allOf":[
        {"if":{"properties":{"k":{"const":"A"}}},"then":{"properties":{"v":{"type":"number"}}}},
        {"dependentSchemas":{"k":{"properties":{"k":{"const":"B"}}}}},{"anyOf":[{"properties":{"k":{"const":"C"}}},{"properties":{"z":{}}}]},
        {"anyOf":[{"properties":{"k":{"const":"D"}}},{"not":{"required":["k"]}}]}]})",
     "T(k:String l:String v:Number z:String)"},
    {"AnAlternativeOfNullNarrowsAll",
     R"({"title":"T","properties":{"k":{"type":"string"}},"allOf":[{"anyOf":[{"properties":{"k":{"const":"A"}}},{"type":"null"}]}]})",
     "k{A} T(k:k)"},
    {"ConditionsBeforeTheProperties",
     R"({"title":"T","allOf":[{"if":{"properties":{"k":{"const":"A"},"n":{"properties":{"y":{}}}}}},
        {"properties":{"k":{"enum":["A","B"]},"n":{"properties":{"x":{}}}}}]})",
     "k{A|B} n(x:String y:String) T(k:k n:n)"},
    {"AlternativesThatAllNarrow",
     R"({"title":"T","properties":{"k":{"type":"string"}},"oneOf":[{"properties":{"k":{"const":"A"}}},{"properties":{"k":{"const":"B"}}}]})",
     "k{A|B} T(k:k)"},
    {"ConditionsAreAlternatives",
     R"({"title":"T","if":{"required":["k"]},"then":{"properties":{"v":{"enum":["a"]},"w":{"type":"string"}}},
        "else":{"properties":{"v":{"enum":["b"]},"w":{"properties":{"z":{}}}}},
        "dependentSchemas":{"v":{"properties":{"n":{"type":"number"}}},"w":{"properties":{"n":{"type":"string"}}}}})",
     "v{a|b} w(z:String) T(v:v w:w n:String)", "2 losses: 2 values of several kinds"},
    {"ItemsAloneExcludeNoOtherKind",
     R"({"title":"T","properties":{"a":{"items":{"type":"number"},"oneOf":[{"type":"array"},{"type":"string"}]},
        "b":{"items":{"type":"number"},"type":"array","oneOf":[{"type":"array"},{"type":"string"}]},"c":{"items":{},"allOf":[{"type":"number"}]}}})",
     "t_b[Number] T(a:String b:t_b c:Number)", "1 loss: 1 value of several kinds"},
    {"ReferencesToReferences", manyReferences(), "200(x:String) t_a[200] T(a:t_a)"},
    {"FurtherPropertiesOfAnyValue",
     R"({"title":"T","properties":{"a":{"properties":{"x":{}},"additionalProperties":{}},"b":{"type":"object","unevaluatedProperties":{"title":"t"},
        "allOf":[{"properties":{"x":{}}}]},"c":{"oneOf":[{"properties":{"x":{}}},{"additionalProperties":{}}]},"d":{"properties":{"x":{}},
        "patternProperties":{"^y":true,"^z":false}},"e":{"properties":{"x":{}},"patternProperties":{"^y":{},"^z":{"type":"string"}}}}})",
     "e(x:String) d(x:String) c(x:String) b(x:String) a(x:String) T(a:a b:b c:c d:d e:e)",
     "1 loss: 1 further properties left out"},
};

// Returns an API whose operation has callbacks nested to this depth, each with a message "oN" and a field.
CString nestedCallbacks(int depth)
{
    CString paths;
    for (int i = depth; i >= 0; --i)
        paths = R"({"x":{"put":{"operationId":"o)" + std::to_string(i) +
                R"(","requestBody":{"content":{"j":{"schema":{"properties":{"f":{}}}}}})" +
                (paths.empty() ? "" : R"(,"callbacks":{"c":)" + paths + "}") + "}}}";
    return R"({"openapi":"3.0.0","paths":)" + paths + "}";
}

// Returns a message of AsyncAPI in XML Schema: an element that holds one of the type "I", which has an attribute, and
// the head "h" of a substitution group, whose member is called like the attribute.
CString messageInXml(const CString& element, const CString& attribute)
{
    return R"({"schemaFormat":"application/xml","payload":"<x:schema xmlns:x='http://www.w3.org/2001/XMLSchema'><x:element name=')" +
           element + "'><x:complexType><x:sequence><x:element name='i' type='I'/><x:element ref='h'/></x:sequence>" +
           "</x:complexType></x:element><x:element name='h'/><x:element substitutionGroup='h' name='" + attribute +
           "'/><x:complexType name='I'><x:attribute name='" + attribute + R"('/></x:complexType></x:schema>"})";
}

const Rule kApis[] = {
    {"BodiesAreMessages",
     R"({"openapi":"3.0.1","paths":{"/a":{"post":{"operationId":"make","requestBody":{"content":{"application/json":{"schema":{
        "type":"object","properties":{"x":{"$ref":"#/components/schemas/P","nullable":true}}}}}},"responses":{"200":{"$ref":"#/components/responses/R"}}}},
        "/b/{id}":{"get":{"responses":{"200":{"content":{"a/b":{"schema":{"type":"array","items":{"$ref":"#/components/schemas/P"}}}}}}}}},
        "components":{"schemas":{"P":{"properties":{"n":{"type":"integer"}}},"Unused":{"enum":["u"]}},
        "responses":{"R":{"content":{"application/json":{"schema":{"properties":{"y":{"type":"string"}}}}}}}}})",
     "makeResponse(y:String) P(n:Number) Unused{u} makeRequest(x:P)"},
    {"ComponentCalledLikeABody",
     R"({"openapi":"3.0.1","paths":{"/a":{"post":{"operationId":"make","requestBody":{"content":{"a/b":{"schema":{"properties":{"x":{}}}}}},
        "responses":{"200":{"content":{"a/b":{"schema":{"properties":{"y":{"$ref":"#/components/schemas/makeRequest"}}}}}}}}}},
        "components":{"schemas":{"makeRequest":{"properties":{"z":{}}}}}})",
     "makeRequest_2(x:String) makeRequest(z:String) makeResponse(y:makeRequest)"},
    {"SchemasAlone",
     "openapi: 3.1.0\ninfo: {title: t}\ncomponents:\n  schemas:\n    A:\n      properties:\n        b: {$ref: "
     "'#/components/schemas/B', properties: {d: {}}}\n    B: {type: object, properties: {c: {type: [integer, "
     "'null']}}}\n",
     "B(c:Number) b(c:Number d:String) A(b:b)"},
    {"DiscriminatorsAreEnumerations",
     R"({"openapi":"3.0.0","paths":{},"components":{"schemas":{"Pet":{"type":"object","properties":{"kind":{"type":"string"}},
        "discriminator":{"propertyName":"kind","mapping":{"c":"#/components/schemas/Cat","d":"Cat"}}},
        "Cat":{"allOf":[{"$ref":"#/components/schemas/Pet"},{"properties":{"m":{"type":"number"}}}]}}}})",
     "kind{c|d} Pet(kind:kind) Cat(kind:kind m:Number)"},
    {"DiscriminatorsThatLeadNowhere",
     R"({"openapi":"3.0.0","components":{"schemas":{"P":{"properties":{"k":{}},"discriminator":{"mapping":{"c":"P"}}},
        "Q":{"properties":{"k":{}},"discriminator":{"propertyName":"k","mapping":{"p":"P","q":"#/components/schemas/Q","r":"#/R","s":"S","t":5}}}}}})",
     "k{p|q|r|s|t} P(k:String) Q(k:k)", "4 losses: 2 references became text, 2 values not understood"},
    {"ReferencesInACircle",
     R"({"openapi":"3.0.0","paths":{"/a":{"put":{"requestBody":{"$ref":"#/components/requestBodies/A"}}}},"components":{
        "requestBodies":{"A":{"$ref":"#/components/requestBodies/B"},"B":{"$ref":"#/components/requestBodies/A"}},"schemas":{"S":{"properties":{"s":{}}}}}})",
     "S(s:String)", "1 loss: 1 text cut short"},
    {"PartsThatAreNoObjects",
     R"({"openapi":"3.1.0","webhooks":"x","paths":{"x-a":5,"/a":null,"/b":5,"/c":{"get":7,"post":{"requestBody":"x","responses":[1]},
        "put":{"callbacks":5,"responses":{"x-b":5,"200":5,"201":{"content":5},"202":{"content":{"a/b":5,"c/d":{"schema":{"properties":{"a":{}}}}}}}}}}})",
     "put_cResponse(a:String)", "9 losses: 9 values not understood"},
    {"APathThatRefersToOneBesideItsOwnOperations",
     R"({"openapi":"3.1.0","paths":{"/a":{"$ref":"#/components/pathItems/I","get":{"responses":{"200":{"content":{"j":{"schema":{"properties":{"x":{}}}}}}}}}},
        "components":{"pathItems":{"I":{"put":{"requestBody":{"content":{"j":{"schema":{"properties":{"y":{}}}}}}}}}}})",
     "put_aRequest(y:String) get_aResponse(x:String)"},
    {"ExtensionsAreNoPaths",
     R"({"openapi":"3.1.0","paths":{"x-a":{"get":{"responses":{"200":{"content":{"j":{"schema":{"properties":{"no":{}}}}}}}}}},"webhooks":{"x-b":{
        "put":{"responses":{"200":{"content":{"j":{"schema":{"properties":{"x":{}}}}}},"x-c":{"content":{"j":{"schema":{"properties":{"no":{}}}}}}}}}}})",
     "put_x_bResponse(x:String)"},
    {"PartsOfVersion32",
     R"({"openapi":"3.2.0","paths":{"/a":{"additionalOperations":{"COPY":{"requestBody":{"content":{"j":{"$ref":"#/components/mediaTypes/M"}}}}},
        "query":{"responses":{"200":{"content":{"l":{"itemSchema":{"properties":{"y":{}}}}}}}}}},"components":{"mediaTypes":{"M":{"schema":{"properties":{"x":{}}}}}}})",
     "COPY_aRequest(x:String) query_aResponse(y:String)"},
    {"StatementsOfVersion2",
     R"({"openapi":"3.1.0","paths":{"/a":{"summary":"s","x-a":{},"GET":{"responses":{}},"put":{"requestBody":{"schema":{"properties":{"x":{}}}},
        "responses":{"200":{"content":{"j":{"schema":{"properties":{"y":{}}}}}}}}}}})",
     "put_aResponse(y:String)", "2 losses: 1 statement not understood, 1 statement without effect"},
    {"ADocumentWithAnIdentifier",
     R"({"openapi":"3.2.0","$self":"http://x/api","components":{"schemas":{"A":{"properties":{"b":{"$ref":"/api#/components/schemas/B"}}},"B":{"properties":{"y":{}}}}}})",
     "B(y:String) A(b:B)"},
    {"UnknownVersion", R"({"openapi":"4.0.0","components":{"schemas":{"A":{"properties":{"x":{}}}}}})", "A(x:String)",
     "1 loss: 1 value not understood"},
    {"UnknownVersionOfAsyncApi", R"({"asyncapi":"4.0.0","components":{"schemas":{"A":{"properties":{"x":{}}}}}})",
     "A(x:String)", "1 loss: 1 value not understood"},
    {"ChannelsThatAreNoObjects",
     R"({"asyncapi":"2.0.0","components":{"messages":5,"schemas":[1]},"channels":{"a":5,"b":{"publish":5,"subscribe":{"message":5}},
        "c":{"publish":{"message":{"oneOf":[5,{"payload":{"properties":{"a":{}}}}]}}}}})",
     "c(a:String)", "6 losses: 6 values not understood"},
    {"CallbacksInCallbacks", nestedCallbacks(11),
     "o10Request(f:String) o9Request(f:String) o8Request(f:String) o7Request(f:String) o6Request(f:String) "
     "o5Request(f:String) o4Request(f:String) o3Request(f:String) o2Request(f:String) o1Request(f:String) "
     "o0Request(f:String)",
     "1 loss: 1 text cut short"},
    {"ChannelsOfVersion2",
     R"({"asyncapi":"2.6.0","channels":{"a/b":{"publish":{"message":{"oneOf":[{"$ref":"#/components/messages/M"},{"name":"N",
        "payload":{"type":"object","properties":{"n":{"$ref":"#/components/schemas/S","properties":{"no":{}}}}}}]}}},
        "c":{"publish":{"message":{"$ref":"#/x/K"}}}},"x":{"K":{"payload":{"properties":{"k":{}}}}},"components":{"messages":{"M":{"headers":{"properties":{"h":{"type":"integer"}}},
        "payload":{"$ref":"#/components/schemas/S"}}},"schemas":{"S":{"properties":{"s":{}}}}}})",
     "K(k:String) MHeaders(h:Number) S(s:String) N(n:S)"},
    {"ComponentOfVersion2InAnotherLanguage",
     R"({"asyncapi":"2.6.0","channels":{"c":{"publish":{"message":{"schemaFormat":"application/vnd.apache.avro;version=1.9.0",
        "payload":{"$ref":"#/components/schemas/R"}}}}},"components":{"schemas":{"R":{"type":"record","name":"Rec",
        "fields":[{"name":"x","type":"int"}]},"S":{"properties":{"s":{}}}}}})",
     "S(s:String) Rec(x:Number)"},
    {"ChannelsOfVersion3",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"M":{"payload":{"schemaFormat":"application/vnd.apache.avro;version=1.9.0",
        "schema":{"type":"record","name":"Rec","fields":[{"name":"x","type":"int"}]}}}}}},"components":{"channels":{"d":{"messages":{"K":{
        "payload":{"properties":{"k":{}}}}}}}}})",
     "K(k:String) Rec(x:Number)"},
    {"HeadersOfTraits",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"M":{"traits":[{"headers":{"properties":{"t":{"type":"integer"}}}},{"$ref":"#/components/messageTraits/T"}],
        "headers":{"schemaFormat":"application/schema+json","schema":{"properties":{"h":{}}}}},"N":{"traits":[{"$ref":"#/components/messageTraits/T"}]}}}},
        "components":{"messageTraits":{"T":{"headers":{"properties":{"u":{}}}}}}})",
     "NHeaders(u:String) MHeaders(t:Number u:String h:String)"},
    {"HeadersOfTraitsInAnotherLanguage",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"M":{"traits":[{"headers":{"schemaFormat":"application/vnd.google.protobuf",
        "schema":{"properties":{"no":{}}}}}],"headers":{"properties":{"h":{}}}}}}}})",
     "MHeaders(h:String)", "1 loss: 1 document not readable"},
    {"AReferenceToASchemaWithItsFormat",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"M":{"payload":{"properties":{"a":{"$ref":"#/components/schemas/J"}}}}}}},
        "components":{"schemas":{"J":{"schemaFormat":"application/schema+json","schema":{"properties":{"j":{"type":"number"}}}}}}})",
     "J(j:Number) M(a:J)"},
    {"SchemasWithTheirFormat",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"M":{"payload":{"$ref":"#/components/schemas/A"},
        "headers":{"schemaFormat":"application/schema+json;version=draft-07","schema":{"properties":{"h":{}}}}},
        "N":{"payload":{"$ref":"#/components/schemas/P"}}}}},"components":{"schemas":{
        "A":{"schemaFormat":"application/vnd.apache.avro","schema":{"type":"record","name":"Rec","fields":[{"name":"x","type":"int"}]}},
        "P":{"schemaFormat":"application/vnd.google.protobuf","schema":"message P {}"},"X":{"schemaFormat":"application/xml","schema":"<a/>"},
        "J":{"schemaFormat":"application/schema+json","schema":{"properties":{"j":{}}}}}}})",
     "MHeaders(h:String) J(j:String) Rec(x:Number)", "2 losses: 2 documents not readable"},
    {"AReferenceToASchemaInAnotherLanguage",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"M":{"payload":{"properties":{"a":{"$ref":"#/components/schemas/A"},"p":{"$ref":"#/components/schemas/P"}}}}}}},
        "components":{"schemas":{"A":{"schemaFormat":"application/vnd.apache.Avro","schema":{"type":"record","name":"Rec","fields":[{"name":"x","type":"int"}]}},
        "P":{"schemaFormat":"application/vnd.google.protobuf","schema":"message P {}"}}}})",
     "Rec(x:Number) M(a:String p:String)", "3 losses: 2 references became text, 1 document not readable"},
    {"ASchemaAsRoot",
     R"({"openapi":"3.0.0","paths":{"/a":{"get":{"operationId":"o","responses":{"200":{"content":{"a/b":{"schema":{"properties":{"x":{}}}}}}}}}},
        "components":{"schemas":{"A":{"properties":{"b":{"$ref":"#/components/schemas/B"}}},"B":{"properties":{"c":{}}}}}})",
     "B(c:String) A(b:B)", "", "A"},
    {"PayloadsThatAreNoObjects",
     R"({"asyncapi":"2.0.0","channels":{"a":{"publish":{"message":{"messageId":"I","name":"M","payload":{"type":"number"}}}},
        "b":{"publish":{"message":{"name":"N","headers":{"type":"string"},"payload":{"items":{"enum":["x"]}}}}}}})",
     "N_N{x} M(value:Number) t_value[N_N] N(value:t_value)"},
    {"AvroPayloadsThatAreNoRecords",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"ReadingsOfTheLastMonth":{"payload":{"schemaFormat":"application/vnd.apache.avro;version=1.9.0",
        "schema":{"type":"array","items":"string"}}},"N":{"payload":{"schemaFormat":"application/vnd.apache.avro","schema":"int"}}}}}})",
     "N(value:Number) t_value[String] ReadingsOfTheLastMonth(value:t_value)"},
    {"PayloadsInXmlSchema",
     R"({"asyncapi":"3.0.0","channels":{"c":{"messages":{"M":{"payload":{"$ref":"#/components/schemas/A"}},"B":{"payload":{"$ref":"#/components/schemas/A"}},
        "N":{"payload":{"schemaFormat":"application/xml","schema":{"x":1}}},"O":{"payload":{"schemaFormat":"application/xml","schema":{"$ref":""}}}}}},"components":{"schemas":{"J":{"properties":{"j":{}}},
        "A":{"schemaFormat":"application/xml","schema":"<schema xmlns='http://www.w3.org/2001/XMLSchema'><element name='b' type='date'/><element name='c'><complexType><attribute name='d'/></complexType></element></schema>"}}}})",
     "c(d:String) J(j:String) b(value:Time)", "2 losses: 2 documents not readable"},
    {"AFormatInATrait",
     R"({"asyncapi":"2.6.0","channels":{"c":{"publish":{"message":{"name":"M","traits":[{},{"$ref":"#/components/messageTraits/T"}],"payload":"int"}}}},
        "components":{"messageTraits":{"T":{"schemaFormat":"application/vnd.apache.avro"}}}})",
     "M(value:Number)"},
    {"SchemasInXmlHaveTheirOwnTypes",
     R"({"asyncapi":"2.0.0","channels":{"c":{"publish":{"message":{"oneOf":[)" + messageInXml("a", "x") + "," +
         messageInXml("b", "y") + "," + messageInXml("c", "x") + "," + messageInXml("b", "z") + "]}}}}}",
     "I_3(z:String) I_2(y:String) I(x:String) a(i:I h:String x:String) b(i:I_2 h:String y:String) c(i:I h:String "
     "x:String) b_2(i:I_3 h:String z:String)"},
    {"LossesOfTheRootAlone",
     R"({"openapi":"3.0.0","paths":{"/a":{"get":{"operationId":"o","responses":{"200":{"content":{"a/b":{"schema":{"properties":{"x":{"$ref":"#/no"}}}}}}}}}},
        "components":{"schemas":{"A":{"properties":{"b":{"$ref":"#/components/schemas/B"}}},"B":{"properties":{"c":{"$ref":"#/no"}}},
        "C":{"properties":{"d":{"$ref":"none.json"},"e":{"$ref":"#/no"}}}}}})",
     "B(c:String) A(b:B)", "1 loss: 1 reference became text", "A"},
};

const Rule kAvro[] = {
    {"UnionOfAFile",
     R"(["null","b.Gone",{"type":"record","name":"R","fields":[{"name":"x","type":"E"}]},{"type":"enum","name":"E","symbols":["A"]}])",
     "E{A} R(x:E)", "1 loss: 1 reference became text"},
    {"AUnionOfPlainTypes", R"(["null","int"])", "x(value:Number)"},
    {"Comments",
     "/* License **/\n// {\n{\"type\":\"record\", // a\n\"name\" /*/ {\n*/ : "
     "/**/\"R\",\"fields\":[{\"name\":\"a//\",\"type\":\"in\"}]} //",
     "R(a//:String)", "1 loss: 1 reference became text"},
    {"NamesInNoNamespace",
     R"({"type":"record","name":"R","namespace":"n","fields":[{"name":"a","type":".E"},{"name":"b","type":"E"},{"name":"c","type":
        {"type":"enum","name":".E","symbols":["X"]}},{"name":"d","type":["E",{"type":"enum","name":"m.E","symbols":["Y"]}]}]})",
     "d{X|Y} E_2{Y} E{X} R(a:E b:E c:E d:d)"},
    {"NamesGivenTwice",
     R"({"type":"record","name":"R","fields":[{"name":"a","type":"int"},{"name":"a","type":"long"},
        {"name":"e","type":{"type":"enum","name":"E","symbols":["X","Y","X"]}}]})",
     "E{X|Y} R(a:Number e:E)", "2 losses: 2 second declarations"},
    {"Records",
     R"({"type":"record","name":"r","namespace":"n","fields":[{"name":"a","type":"long"},{"name":"b","type":["null","string"],"default":null},
        {"name":"c","type":{"type":"enum","name":"E","symbols":["X","Y"]}},{"name":"d","type":{"type":"array","items":{"type":"array","items":"n.r"}}},
        {"name":"e","type":{"type":"map","values":"E"}},{"name":"f","type":"boolean"},{"name":"g","type":{"type":"fixed","name":"F","size":2}},
        {"name":"h","type":"F"}]})",
     "t_d[r] E{X|Y} e(key:String value:E) t_t_d[t_d] t_e[e] r(a:Number b:String c:E d:t_t_d e:t_e f:String g:String "
     "h:String)"},
    {"LogicalTypes",
     R"({"type":"record","name":"r","fields":[{"name":"a","type":{"type":"int","logicalType":"date"}},{"name":"b","type":{"type":"long","logicalType":"local-timestamp-micros"}},
        {"name":"c","type":{"type":"bytes","logicalType":"decimal","precision":4}},{"name":"d","type":{"type":"string","logicalType":"uuid"}},
        {"name":"e","type":{"type":"fixed","name":"D","size":12,"logicalType":"duration"}},{"name":"f","type":"bytes"},{"name":"g","type":{"type":"int","logicalType":"time-millis"}}]})",
     "r(a:Time b:Time c:Number d:String e:String g:Time)", "1 loss: 1 field of bytes left out"},
    {"LogicalTypesOfOtherTypes",
     R"({"type":"record","name":"r","fields":[{"name":"a","type":{"type":"long","logicalType":"date"}},{"name":"b","type":{"type":"string","logicalType":"timestamp-millis"}},
        {"name":"c","type":{"type":"string","logicalType":"decimal"}},{"name":"d","type":{"type":"int","logicalType":"timestamp-millis"}}]})",
     "r(a:Number b:String c:String d:Number)"},
    {"TypesThatAreWrong",
     R"({"type":"record","name":"r","fields":[{"name":"a","type":[]},{"name":"b","type":["int","int"]},{"name":"c","type":{"type":"fixed","name":"C"}},
        {"name":"d","type":{"type":"fixed","name":"D","size":-1}},{"name":"e","type":{"type":"enum","name":"E","symbols":[]}}]})",
     "r(a:String b:Number c:String d:String e:String)",
     "5 losses: 3 declarations not understood, 1 value not understood, 1 second declaration"},
    {"Unions",
     R"({"type":"record","name":"r","fields":[{"name":"a","type":["null",{"type":"record","name":"A","fields":[{"name":"x","type":"int"},{"name":"y","type":"string"}]},
        {"type":"record","name":"B","fields":[{"name":"y","type":"string"},{"name":"z","type":"int"}]}]},{"name":"b","type":["int","double"]},
        {"name":"c","type":["int","string"]},{"name":"d","type":["A","null"]},{"name":"e","type":[{"type":"array","items":"int"},"null"]},
        {"name":"f","type":{"type":"array","items":["int",{"type":"array","items":"int"}]}},{"name":"g","type":["string",{"type":"enum","name":"G",
        "symbols":["X"]}]}]})",
     "t_f[String] t_e[Number] A(x:Number y:String) a(x:Number y:String z:Number) G{X} r(a:a b:Number c:String d:A "
     "e:t_e f:t_f g:String) B(y:String z:Number)",
     "2 losses: 2 values of several kinds"},
    {"MisspeltStatements",
     R"({"type":"record","name":"r","fields":[{"name":"a","type":{"type":"Nope"}},{"name":"b"},{"name":"c","type":{"type":"record","name":"C","feilds":[]}},
        {"name":"d","type":{"type":"map"}},{"name":"e","type":{"type":"array"}},{"name":"f","type":{"type":"enum","name":"E"}},{"type":"int"},
        {"name":"g","type":null},{"name":"h","type":{"type":"enum","symbols":["X",1]}}]})",
     "h{X} t_e[String] d(key:String value:String) C() t_d[d] r(a:String b:String c:C d:t_d e:t_e f:String _:Number "
     "g:String h:h)",
     "10 losses: 7 declarations not understood, 2 references became text, 1 value not understood"},
    {"EqualDeclarationsAreOneType",
     R"([{"type":"record","name":"A","namespace":"n","fields":[{"name":"x","type":{"type":"record","name":"S","namespace":"q","doc":"d","fields":[
        {"name":"s","type":{"type":"enum","name":"E","symbols":["Y"]}},{"name":"t","type":"E"}]}}]},{"type":"record","name":"n.B","fields":[
        {"name":"y","type":{"type":"record","name":"q.S","fields":[{"name":"s","type":"E"},{"name":"t","type":"q.E"}]}},
        {"name":"z","type":{"type":"enum","name":"q.E","symbols":["Y"]}}]}])",
     "E{Y} S(s:E t:E) A(x:S) B(y:S z:E)"},
    {"OtherDeclarationsOfOneName",
     R"([{"type":"record","name":"A","fields":[{"name":"x","type":{"type":"fixed","name":"S","size":1}}]},{"type":"record","name":"B","fields":[
        {"name":"y","type":{"type":"record","name":"S","fields":[{"name":"s","type":"int"}]}}]}])",
     "A(x:String) S(s:Number) B(y:S)", "1 loss: 1 second declaration"},
    {"ADeclarationWithOneMoreField",
     R"([{"type":"record","name":"A","fields":[{"name":"x","type":{"type":"record","name":"S","fields":[{"name":"s","type":"int"}]}}]},
        {"type":"record","name":"B","fields":[{"name":"y","type":{"type":"record","name":"S","fields":[{"name":"s","type":"int"},{"name":"t","type":"int"}]}}]}])",
     "S_2(s:Number t:Number) S(s:Number) A(x:S) B(y:S_2)", "1 loss: 1 second declaration"},
    {"AnEmptyNamespaceIsNone",
     R"({"type":"record","name":"A","namespace":"n","fields":[{"name":"a","type":{"type":"record","name":"B","namespace":"","fields":[
        {"name":"x","type":"int"}]}},{"name":"b","type":"B"},{"name":"c","type":"n.B"}]})",
     "B(x:Number) A(a:B b:B c:String)", "1 loss: 1 reference became text"},
    {"SeveralAtTheTop",
     R"([{"type":"record","name":"a","fields":[{"name":"x","type":"b"}]},{"type":"record","name":"b","fields":[{"name":"y","type":"int"}]}])",
     "b(y:Number) a(x:b)"},
    {"Protocols",
     R"({"protocol":"P","namespace":"n","types":[{"type":"record","name":"A","fields":[{"name":"x","type":"int"}]},{"type":"enum","name":"E","symbols":["Z"]}],
        "messages":{"send":{"request":[{"name":"a","type":"A"},{"name":"k","type":"string"}],"response":"A"}}})",
     "A(x:Number) E{Z} sendRequest(a:A k:String)"},
    {"MessagesOfAProtocolThatDeclareTypes",
     R"({"protocol":"P","namespace":"n","messages":{"send":{"request":[{"name":"a","type":{"type":"record","name":"A","fields":[{"name":"x",
        "type":["null","A"]}]}}],"response":{"type":"record","name":"B","fields":[{"name":"y","type":"n.A"}]}},"get":{"request":[],"response":"C"}}})",
     "A(x:A) sendRequest(a:A) B(y:A)", "1 loss: 1 reference became text"},
    {"ErrorsOfMessages",
     R"({"protocol":"P","messages":{"m":{"request":[{"name":"a","type":"E"}],"response":"null","errors":[{"type":"error","name":"E","fields":[]},"No"]}}})",
     "E() mRequest(a:E)", "1 loss: 1 reference became text"},
    {"MisspeltProtocols",
     R"({"protocol":"P","types":{},"messages":{"a":{"request":{}},"b":{"response":"int"},"c":"x","d":{"request":[{"name":"x","type":"int"}],"errors":{}}}})",
     "dRequest(x:Number)", "8 losses: 6 declarations not understood, 2 values not understood"},
    {"ANestedRecordAsRoot",
     R"({"type":"record","name":"r","fields":[{"name":"a","type":{"type":"record","name":"A","fields":[{"name":"x","type":"int"}]}}]})",
     "A(x:Number)", "", "A"},
    {"AFullNameAsRoot",
     R"({"type":"record","name":"A","namespace":"n","fields":[{"name":"a","type":{"type":"record","name":"m.A","fields":[{"name":"x","type":"int"}]}}]})",
     "A(x:Number)", "", "m.A"},
    {"LossesOfTheRootAlone",
     R"({"type":"record","name":"r","fields":[{"name":"a","type":{"type":"record","name":"A","fields":[{"name":"x","type":"int"},{"name":"y","type":"bytes"}]}},
        {"name":"b","type":"bytes"},{"name":"c","type":"No"}]})",
     "A(x:Number)", "1 loss: 1 field of bytes left out", "A"},
    {"AnEnumerationAsRoot",
     R"({"type":"record","name":"r","namespace":"n","fields":[{"name":"a","type":{"type":"enum","name":"E","symbols":["X"]}}]})",
     "E_E{X} E(value:E_E)", "", "{n}E"},
};

const Rule kExamples[] = {
    {"Kinds",
     R"({"a":1,"b":"x","c":true,"d":null,"e":"2024-01-31","f":"2024-01-31T10:00:00.5+02:00","g":"10:30","h":"2024-13-01"})",
     "x(a:Number b:String c:String d:String e:Time f:Time g:Time h:String)"},
    {"AllExamplesTogether", "{\"a\":1}\n{\"b\":{\"c\":[1]}}\n{\"b\":{\"c\":[\"x\"],\"d\":[[{\"e\":1}]]}}",
     "t_c[String] d(e:Number) t_d[d] t_t_d[t_d] b(c:t_c d:t_t_d) x(a:Number b:b)", "1 loss: 1 value of several kinds"},
    {"DatesThatAreNone",
     R"({"a":"2024-02-30","b":"2023-02-29","c":"24:30","d":"10:00+","e":"2024-02-29T24:00:00Z","f":"2024-01-31 10:00:00.5+02"})",
     "x(a:String b:String c:String d:String e:Time f:Time)"},
    {"TimesOnlyWhereAllAre", "{\"a\":\"2024-01-31\"} {\"a\":\"soon\"}", "x(a:String)"},
    {"KindsThatDiffer", R"([{"a":1,"b":{"c":1},"d":1},{"a":"x","b":2,"d":[1]}])",
     "b(c:Number) x_2(a:String b:b d:String) t_value[x_2] x(value:t_value)", "3 losses: 3 values of several kinds"},
    {"AValueBesideEmptyArrays", R"({"a":[[],1],"b":[]} {"b":1})", "t_a[String] x(a:t_a b:String)",
     "2 losses: 2 values of several kinds"},
    {"TextCalledLikeTheObjectAroundIt",
     R"({"c":{"id":1,"c":"text"},"t":{"t":["a"]},"l":[{"l":{"x":1}}],"s":{"s":1}} {"s":{"s":{"s":2}}})",
     "s(s:s) l_l(x:Number) t_t[String] c(id:Number c:String) t(t:t_t) l(l:l_l) t_l[l] x(c:c t:t l:t_l s:s)",
     "1 loss: 1 value of several kinds"},
    {"KeysGivenTwice", R"({"a":{"x":1},"a":{"y":2},"b":1,"b":2} {"a":{},"b":1})",
     "a(x:Number y:Number) x(a:a b:Number)", "2 losses: 2 keys given twice"},
    {"NodesOfNodes", R"({"n":{"v":1,"n":{"v":2,"n":{"w":1}}},"l":[{"l":[{"l":[],"k":"x"}]}]})",
     "t_l[l] n(v:Number n:n w:Number) l(l:t_l k:String) x(n:n l:t_l)"},
    {"KeysAcrossTheEndOfTheBuffer",
     times((1 << 18) - 3, " ") + R"({"key":1} )" + times((1 << 18) - 12, " ") + R"({"b":)" + times(1 << 18, " ") + "1}",
     "x(key:Number b:Number)"},
    {"AMessageUnlikeTheOnesBefore", times(3, R"({"a":1,"b":["x","y"],"c":{}} )") + R"({"a":"z","b":[2],"c":{}})",
     "t_b[String] x(a:String b:t_b c:String)", "2 losses: 2 values of several kinds"},
    {"AKeyGivenTwiceByKnownSteps", R"({"a":1,"b":2} {"a":1,"c":3,"b":2} {"a":1,"b":2,"c":3} {"a":1,"b":2,"c":3,"b":2})",
     "x(a:Number b:Number c:Number)", "1 loss: 1 key given twice"},
    {"EscapesInATime", times(3, R"({"a":"10:00"} )") + R"({"a":"1\u0030:00"})", "x(a:Time)"},
    {"ItemsOfOneArray", "[" + times(3, R"({"a":1},)") + R"({"a":1,"a":"x"}])",
     "x_2(a:String) t_value[x_2] x(value:t_value)", "2 losses: 1 value of several kinds, 1 key given twice"},
    {"Empty", R"({"a":{},"b":[],"c":[[]]})", "t_c[String] t_b[String] t_t_c[t_c] x(a:String b:t_b c:t_t_c)"},
};

template <class Message>
class Rows : public Importing<Message>, public testing::WithParamInterface<Rule>
{
protected:
    void check()
    {
        this->message.setRoot(this->GetParam().root);
        EXPECT_EQ(this->import(this->GetParam().source), 1);
        EXPECT_EQ(fullTypesOf(this->message), this->GetParam().types);
        EXPECT_EQ(this->message.queryReport().lossesInWords(), this->GetParam().losses);
    }
};
using SchemaLoss = Rows<JsonSchemaMessage>;
using OpenApiRule = Rows<OpenApiMessage>;
using AvroRule = Rows<AvroMessage>;
using JsonDataRule = Rows<JsonDataMessage>;

TEST_P(SchemaLoss, GivesTypes)
{
    check();
}
TEST_P(OpenApiRule, GivesTypes)
{
    check();
}
TEST_P(AvroRule, GivesTypes)
{
    check();
}
TEST_P(JsonDataRule, GivesTypes)
{
    check();
}

using Avro = Importing<AvroMessage>;
using OpenApi = Importing<OpenApiMessage>;
using JsonData = Importing<JsonDataMessage>;

TEST_F(Avro, CountsDetails)
{
    EXPECT_EQ(
        import(
            R"({"type":"record","name":"R","aliases":["O"],"fields":[{"name":"a","type":["null","int","R"],"order":"ignore"},{"name":"b","type":
        {"type":"enum","name":"E","symbols":["X"],"default":"X","aliases":["F"]}},{"name":"c","type":[{"type":"record","name":"S","fields":[]},{"type":"record","name":"U","fields":[]},"null"]}]})"),
        1);
    EXPECT_EQ(countsOf(message),
              "1 loss: 1 value of several kinds; 3 facets; 2 nillable elements; 1 choice; 1 default value");
}

TEST_F(Avro, ReadsNamesAndSymbolsOnceForAllFields)
{
    constexpr int count = 20'000;
    CString fields, symbols;
    for (int i = 0; i < count; ++i) {
        const CString number = std::to_string(i);
        symbols += ",\"s" + number + "\"";
        fields += R"(,{"name":"e)" + number + R"(","type":"E"},{"name":"r)" + number +
                  R"(","type":{"type":"record","name":"T)" + number + R"(","fields":[]}})";
    }
    // Symbols that are read for each field exceed the bound of steps.
    EXPECT_EQ(import(R"({"type":"record","name":"R","namespace":")" + times(100'000, "n") +
                     R"(","fields":[{"name":"e","type":{"type":"enum","name":"E","symbols":["s")" + symbols + "]}}" +
                     fields + "]}"),
              1);
}

TEST_F(OpenApi, RefusesManyCallbacksOfALongName)
{
    CString callbacks;
    for (int i = 0; i < 1'000; ++i)
        callbacks += ",\"c" + std::to_string(i) + R"(":{"x":{"get":{}}})";
    EXPECT_EQ(import(R"({"openapi":"3.0.0","paths":{"/a":{"put":{"operationId":")" + times(300'000, "o") +
                     R"(","callbacks":{"c":{})" + callbacks + "}}}}}"),
              0);
    EXPECT_THAT(boxes.take(),
                testing::ElementsAre(folder.path("x") + ": more than 256 MB of names, which is the limit."));
}

TEST_F(JsonData, TellsOfALoneSurrogateInAKeyOnce)
{
    EXPECT_EQ(import(times(3, R"({"\ud800":"\ud800"})")), 1);
    EXPECT_EQ(countsOf(message), "; 1 name adjusted");
}

TEST_F(JsonData, FindsFaultsBehindMessagesThatItSkips)
{
    const std::pair<CString, CString> rows[] = {
        {times(9, "{\"a\":\n 1} ") + "x", "10, column 5.\nError text is 'a value is expected'."},
        {R"([{"a":1},{"a":1}] [{"a":1}[{"a":1}])", "1, column 27.\nError text is 'a comma or \"]\" is expected'."},
    };
    for (const auto& [examples, fault] : rows) {
        EXPECT_EQ(import(examples), 0);
        EXPECT_THAT(boxes.take(), testing::ElementsAre("Error on line " + fault));
    }
}

const auto kNameOf = [](const auto& row) { return row.param.name; };
INSTANTIATE_TEST_SUITE_P(Rows, SchemaLoss, testing::ValuesIn(kSchemas), kNameOf);
INSTANTIATE_TEST_SUITE_P(Rows, OpenApiRule, testing::ValuesIn(kApis), kNameOf);
INSTANTIATE_TEST_SUITE_P(Rows, AvroRule, testing::ValuesIn(kAvro), kNameOf);
INSTANTIATE_TEST_SUITE_P(Rows, JsonDataRule, testing::ValuesIn(kExamples), kNameOf);

} // namespace
