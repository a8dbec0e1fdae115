#include "Import.h"
#include "Import/Btd/BrokerMsg.h"

void fuzz(std::string_view input)
{
    BrokerMessage importer;
    importBytes(importer, input, false);
}
