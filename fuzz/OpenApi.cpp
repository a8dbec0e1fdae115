#include "Import.h"
#include "Import/Json/JsonMessage.h"

void fuzz(std::string_view input)
{
    OpenApiMessage importer;
    importBytes(importer, input);
}
