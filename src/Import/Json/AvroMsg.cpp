#include "Import/Json/AvroMsg.h"

#include "Import/Json/AvroTypes.h"

void AvroMessage::readDocuments(std::span<Index> roots, JsonDocuments& documents, JsonTypes& names, SourceTypes& types,
                                SourceReport& report)
{
    AvroTypes avro(documents, names, types, report);
    // All documents are declared before one is read, because they may use each other's types.
    for (const Index root : roots)
        avro.declareAll(root);
    for (Index source = 0; source < roots.size(); ++source) {
        names.setSource(source);
        const Index root = roots[source];
        if (documents.tree.find(root, JsonWord::protocol) != 0)
            avro.readProtocol(root);
        else if (root != 0)
            avro.addCandidate(root, names.toModelName(toXmlName(documents.nameOf(root)), root));
    }
    // The requested root may be any of the types.
    if (!queryRoot().empty())
        avro.addNamedTypes();
    avro.finish();
}
