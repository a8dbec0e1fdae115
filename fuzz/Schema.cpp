#include "Import.h"
#include "Import/Schema/Literal/SchemaMsg.h"

void fuzz(std::string_view input)
{
    static Folder folder;
    folder.writeDocuments(".xsd", input);
    SchemaMessage importer;
    importFile(importer, folder.path + "a.xsd");
    importFile(importer, folder.path + "b.xsd"); // state left by the first import is part of the second
}
