#include "Formats/DTDMsg.h"
#include "Import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    DTDMessage importer;
    importBytes(importer, {reinterpret_cast<const char*>(data), size}, true);
    return 0;
}
