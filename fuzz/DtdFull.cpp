#include "Formats/DTDFullMsg.h"
#include "Import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    DTDFullMessage importer;
    importBytes(importer, {reinterpret_cast<const char*>(data), size});
    return 0;
}
