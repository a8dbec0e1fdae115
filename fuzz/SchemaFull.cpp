#include "Documents.h"
#include "Formats/SchemaFullMsg.h"
#include "Import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Folder folder;
    writeDocuments(folder.path, {reinterpret_cast<const char*>(data), size});
    SchemaFullMessage importer;
    importFile(importer, folder.path + "a.xsd", true);
    return 0;
}
