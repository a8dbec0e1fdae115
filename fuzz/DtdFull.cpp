#include "Formats/DTDFullMsg.h"
#include "Import.h"

void fuzz(std::string_view input)
{
    static Folder folder;
    folder.writeDocuments(".dtd", input);
    DTDFullMessage importer;
    importFile(importer, folder.path + "a.dtd");
}
