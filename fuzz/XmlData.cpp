#include "Formats/XMLDataMsg.h"
#include "Import.h"

void fuzz(std::string_view input)
{
    XMLDataMessage importer;
    importBytes(importer, input);
}
