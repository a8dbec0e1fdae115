#include "Formats/DTDMsg.h"
#include "Import.h"

#include <cctype>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    DTDMessage importer;
    importBytes(importer, {reinterpret_cast<const char*>(data), size}, [&importer] {
        const CString name = importer.queryMainTypeName();
        const auto isNameCharacter = [](unsigned char c) {
            return std::isalnum(c) || c == '_' || c == '-' || c == '.';
        };
        return !name.empty() && std::isalpha(static_cast<unsigned char>(name[0])) &&
               std::all_of(name.begin(), name.end(), isNameCharacter);
    });
    return 0;
}
