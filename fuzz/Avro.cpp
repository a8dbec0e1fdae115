#include "Import.h"
#include "Import/Json/JsonMessage.h"

void fuzz(std::string_view input)
{
    AvroMessage importer;
    importBytes(importer, input);
}
