#include "Import.h"
#include "Import/XmlData/XMLDataMsg.h"

void fuzz(std::string_view input)
{
    XMLDataMessage importer;
    importBytes(importer, input);
}
