#include "Import.h"
#include "Import/Json/AvroMsg.h"

void fuzz(std::string_view input)
{
    AvroMessage importer;
    importBytes(importer, input);
}
