#include "Formats/BrokerMsg.h"
#include "Import.h"

void fuzz(std::string_view input)
{
    BrokerMessage importer;
    importBytes(importer, input);
}
