#include "Import.h"
#include "Import/Dtd/DTDMsg.h"

void fuzz(std::string_view input)
{
    setMessageBoxHandler([](const CString&, const CString&) {});
    DTDMessage importer;
    if (importer.parseData(CString(input), "\\Auftr\xE4ge\\"))
        checkDocument(importer);
}
