#include "Import/Json/JsonDataMsg.h"

#include "Files/File.h"
#include "Files/FileFinder.h"
#include "Files/FileMessage.h"
#include "Import/Json/JsonShapes.h"

void JsonDataMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    std::vector<CString> files{source};
    files.insert(files.end(), furtherExamples.begin(), furtherExamples.end());
    JsonShapes shapes(types, report);
    for (const CString& name : files) {
        const std::uint32_t number = report.addFile(name);
        InputFile file(name);
        if (file.queryError() != 0)
            throw SourceRefusal{cantOpen(name, fileCauseOf(file.queryError())), {name, inWords(file.queryError())}};
        try {
            JsonScanner scanner(file);
            shapes.read(scanner, number);
        } catch (const JsonFault& fault) {
            throw refusalOf(name, fault);
        }
    }
    shapes.declare(types.keep(toXmlName(givenName.empty() ? CString(stemOf(fileName)) : givenName)));
}
