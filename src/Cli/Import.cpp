#include "Cli/Import.h"

#include "Cli/Output.h"
#include "Cli/Report.h"
#include "Cli/TableSource.h"
#include "Formats/FullMessage.h"
#include "Formats/SourceUses.h"
#include "Platform/MessageBox.h"
#include "Utils/FileMessage.h"

namespace {

CString basePathOf(const Arguments& arguments, MsgBase& importer)
{
    CString path = arguments.hasBasePath ? arguments.basePath : importer.getBasePath();
    if (!path.ends_with('\\'))
        path += '\\';
    return path;
}

// The type of that short name, else the one of that full name, else null.
Element* findType(MsgBase& message, const CString& name)
{
    Element* byFullName = nullptr;
    message.beginEnum();
    while (Element* type = message.enumNext()) {
        if (type->queryName() == name)
            return type;
        if (!byFullName && type->queryPath() + type->queryName() == name)
            byFullName = type;
    }
    return byFullName;
}

void writeList(MsgBase& message, Output& output)
{
    message.beginEnum();
    while (const Element* type = message.enumNext())
        output.write(type->queryPath() + type->queryName() + "\t" + type->queryDescription() + "\n");
}

bool writeType(MsgBase& message, const CString& name, Output& output)
{
    Element* type = findType(message, name);
    if (!type) {
        report("there is no type called " + name);
        return false;
    }
    CString document;
    type->asXML(document);
    output.write(document);
    return true;
}

bool writeResult(MsgBase& message, const Arguments& arguments)
{
    Output output(arguments.output);
    if (arguments.list)
        writeList(message, output);
    else if (!arguments.hasType)
        message.writeXML([&output](std::string_view piece) { output.write(piece); });
    else if (!writeType(message, arguments.type, output))
        return false;
    const FileCause cause = output.commit();
    if (cause == FileCause::none)
        return true;
    const CString target = arguments.output.empty() ? "standard output" : arguments.output;
    report(cantOpen(target, cause));
    return false;
}

} // namespace

int runImport(const Arguments& arguments)
{
    int boxes = 0;
    bool isLiteralError = false;
    const MessageBoxHandler before = setMessageBoxHandler([&](const CString& text, const CString&) {
        ++boxes;
        isLiteralError |= isErrorOfLiteralReading(text);
        report(text);
    });
    TableSource tables;
    const MsgUIDescriptor& importer = importerNamed(arguments.importer);
    const bool readsTables = importer.querySource().readsTables;
    FullMessage* const full = arguments.full.isWanted ? createFull(arguments.full, importer) : nullptr;
    const std::unique_ptr<MsgBase> message(full ? full : importer.create());
    const CString basePath = basePathOf(arguments, *message);
    const bool imported = readsTables ? tables.import(*message, arguments, basePath)
                                      : message->parseFile(arguments.source, basePath) != 0;
    setMessageBoxHandler(before);
    if (!imported && boxes == 0)
        report("nothing was imported from " + (readsTables ? shownSource(arguments.source) : arguments.source));
    if (!full && (isLiteralError || message->beginEnum() == 0))
        nameWayOut(importer, arguments.source);
    if (full && !writeReport(*full, arguments.full))
        return 1;
    if (imported && !arguments.create.address.empty())
        return createTypes(*message, arguments.create, arguments.logon);
    return imported && writeResult(*message, arguments) ? 0 : 1;
}
