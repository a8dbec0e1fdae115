#include "Import/Json/JsonDataMsg.h"

#include "Files/File.h"
#include "Files/FileFinder.h"
#include "Files/FileMessage.h"
#include "Import/Json/JsonShapes.h"

namespace {

void readFileInto(JsonShapes& shapes, const CString& fileName, std::uint32_t number)
{
    InputFile file(fileName);
    if (file.queryError() != 0)
        throw SourceRefusal{cantOpen(fileName, fileCauseOf(file.queryError())), {fileName, inWords(file.queryError())}};
    try {
        JsonScanner scanner(file);
        shapes.read(scanner, number);
    } catch (const JsonFault& fault) {
        throw refusalOf(fileName, fault);
    }
}

} // namespace

void JsonDataMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    JsonShapes shapes(types, report);
    readFileInto(shapes, source, report.addFile(source));
    for (const CString& further : furtherExamples)
        readFileInto(shapes, further, report.addFile(further));
    shapes.declare(types.keep(toXmlName(queryGivenName().empty() ? CString(stemOf(fileName)) : queryGivenName())));
}
