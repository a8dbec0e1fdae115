#include "Documents.h"
#include "Formats/SchemaMsg.h"
#include "Import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Folder folder;
    writeDocuments(folder.path, {reinterpret_cast<const char*>(data), size});
    SchemaMessage importer;
    importFile(importer, folder.path + "a.xsd", true);
    importFile(importer, folder.path + "b.xsd", true); // what the first import leaves behind is part of the second
    return 0;
}
