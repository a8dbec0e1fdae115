#include "Formats/DTDMsg.h"
#include "Import.h"

void fuzz(std::string_view input)
{
    setMessageBoxHandler([](const CString&, const CString&) {});
    DTDMessage importer;
    if (importer.parseData(CString(input), importer.getBasePath()))
        checkDocument(importer);
}
