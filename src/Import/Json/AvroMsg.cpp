#include "Import/Json/AvroMsg.h"

#include "Import/Json/AvroTypes.h"

void AvroMessage::read(const CString& source, const CString&, SourceTypes& types, SourceReport& report)
{
    JsonDocuments documents(types, report);
    const JsonNode::Index root = documents.load(source);
    JsonTypes names(documents, types, report);
    AvroTypes avro(documents, names, types, report);
    if (documents.tree.find(root, JsonWord::protocol) != 0)
        avro.readProtocol(root);
    else
        avro.addCandidate(root, names.fit(toXmlName(documents.nameOf(root)), root));
    if (!queryRoot().empty())
        avro.addAllCandidates();
    avro.finish();
}
