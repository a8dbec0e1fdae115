#include "Import.h"
#include "Import/Json/JsonDataMsg.h"

void fuzz(std::string_view input)
{
    JsonDataMessage importer;
    importBytes(importer, input);
}
