#include "Import.h"
#include "Import/Schema/Literal/SchemaMsg.h"

namespace {

// Imports a schema. A field whose type is declared only as an element refers to a type that doesn't exist, which is a
// loss.
void importSchema(SchemaMessage& importer, const CString& fileName)
{
    setMessageBoxHandler([](const CString&, const CString&) {});
    importer.wantReport();
    if (importer.parseFile(fileName, importer.getBasePath()))
        checkDocument(importer, importer.queryReport().queryTotal(SourceReport::loss) == 0);
}

} // namespace

void fuzz(std::string_view input)
{
    static Folder folder;
    folder.writeDocuments(".xsd", input);
    SchemaMessage importer;
    importSchema(importer, folder.path + "a.xsd");
    importSchema(importer, folder.path + "b.xsd"); // state left by the first import is part of the second
}
