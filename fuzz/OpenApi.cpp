#include "Import.h"
#include "Import/Json/OpenApiMsg.h"

void fuzz(std::string_view input)
{
    OpenApiMessage importer;
    importBytes(importer, input);
}
