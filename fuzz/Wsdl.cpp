// A WSDL file, and the files that it refers to.
#include "Import.h"
#include "Import/Schema/Full/WsdlMsg.h"

void fuzz(std::string_view input)
{
    static Folder folder;
    folder.writeDocuments(".xsd", input);
    WsdlMessage importer;
    importFile(importer, folder.path + "a.xsd");
}
