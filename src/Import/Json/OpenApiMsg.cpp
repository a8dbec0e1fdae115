#include "Import/Json/OpenApiMsg.h"

#include "Import/Json/ApiMessages.h"

void OpenApiMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    JsonDocuments documents(types, report);
    const JsonNode::Index root = documents.load(source);
    const JsonTree& tree = documents.tree;
    const auto refuse = [&fileName](const CString& reason) {
        throw SourceRefusal{fileName + ": " + reason + ".", {"", reason}};
    };
    const std::string_view version = tree.text(tree.find(root, JsonWord::openapi));
    if (tree.find(root, JsonWord::swagger) != 0)
        refuse("it is Swagger 2.0; convert it to OpenAPI 3 first");
    if (version.empty() && tree.find(root, JsonWord::asyncapi) == 0)
        refuse("it is no OpenAPI and no AsyncAPI document");
    documents.setIgnoresSiblings(version.starts_with("3.0"));
    JsonTypes schemas(documents, types, report);
    AvroTypes avro(documents, schemas, types, report);
    ApiMessages messages(documents, schemas, avro);
    if (version.empty())
        messages.readAsyncApi(root);
    else
        messages.readOpenApi(root);
    const bool hasMessages = !types.candidates.empty();
    schemas.declareMembers(tree.find(tree.find(root, JsonWord::components), JsonWord::schemas),
                           !hasMessages || !queryRoot().empty());
    schemas.finish();
    avro.finish();
}
