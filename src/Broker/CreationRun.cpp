#include "Broker/CreationRun.h"

#include "Broker/BrokerSession.h"
#include "Formats/MsgBase.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <utility>

namespace {

constexpr unsigned kExists = 2;
constexpr unsigned kRefused = 99;

struct ResultLine
{
    unsigned code;
    UINT textId;
};

constexpr ResultLine kResultLines[] = {
    {0, IDS_CREATED},
    {1, IDS_MODIFIED},
    {kExists, IDS_SKIPPED},
    {kRefused, IDS_CREATION_ERROR},
};

// Empty for a code that the program doesn't know.
CString resultLine(unsigned code, const CString& name)
{
    for (const ResultLine& line : kResultLines)
        if (line.code == code)
            return fillText(loadText(line.textId), name);
    return {};
}

// A driver's words may take several lines.
CString asOneLine(CString text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\t'; }, ' ');
    return text;
}

CString overwriteQuestion(const Element& type)
{
    return formatText(loadText(IDS_OVERWRITE), type.queryPath().c_str(), type.queryName().c_str());
}

} // namespace

CreationRun::CreationRun(BrokerSession& openSession, Callbacks surroundings) :
    session(openSession), callbacks(std::move(surroundings))
{}

int CreationRun::run(MsgBase& message)
{
    errorCount = 0;
    yesToAll = noToAll = false;
    int done = 0;
    message.beginEnum();
    while (Element* type = message.enumNext()) {
        create(*type);
        callbacks.setDone(++done);
    }
    return errorCount;
}

void CreationRun::create(Element& type)
{
    type.asXML(document);
    try {
        const unsigned code = createOrAsk(type);
        callbacks.addResult(resultLine(code, type.queryName()));
        errorCount += code == kRefused;
    } catch (const ClientError& error) {
        callbacks.addResult(fillText(loadText(IDS_CREATION_ERROR), type.queryName()));
        callbacks.addResult(asOneLine(error.what()));
        ++errorCount;
    }
}

unsigned CreationRun::createOrAsk(const Element& type)
{
    const unsigned code = session.createType(document, yesToAll && !noToAll);
    if (code != kExists || noToAll)
        return code;
    const OverwriteChoice choice = callbacks.ask(overwriteQuestion(type));
    yesToAll |= choice == OverwriteChoice::yesToAll;
    noToAll |= choice == OverwriteChoice::noToAll;
    const bool replace = choice == OverwriteChoice::yes || choice == OverwriteChoice::yesToAll;
    return replace ? session.createType(document, true) : code;
}
