#include "Import.h"
#include "Import/Dtd/DTDFullMsg.h"

void fuzz(std::string_view input)
{
    static Folder folder;
    folder.writeDocuments(".dtd", input);
    DTDFullMessage importer;
    importFile(importer, folder.path + "a.dtd");
}
