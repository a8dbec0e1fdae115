#include "Import.h"
#include "Import/Json/JsonMessage.h"

void fuzz(std::string_view input)
{
    JsonSchemaMessage importer;
    importBytes(importer, input);
}
