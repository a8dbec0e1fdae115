#include "Broker/CreationRun.h"

#include "Base/Progress.h"
#include "Broker/BrokerSession.h"
#include "Import/MsgBase.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <utility>

namespace {

constexpr unsigned kExists = 2;
constexpr unsigned kRefused = 99;

struct ResultLine
{
    unsigned code;
    UINT textId; // 0: an empty line
    ResultKind kind;
};

constexpr ResultLine kResultLines[] = {
    {0, IDS_CREATED, ResultKind::created},
    {1, IDS_MODIFIED, ResultKind::modified},
    {kExists, IDS_SKIPPED, ResultKind::skipped},
    {kRefused, IDS_CREATION_ERROR, ResultKind::failed},
};

const ResultLine& resultLineOf(unsigned code)
{
    static constexpr ResultLine unknown{0, 0, ResultKind::unknown};
    const auto* line = std::find_if(std::begin(kResultLines), std::end(kResultLines),
                                    [code](const ResultLine& row) { return row.code == code; });
    return line != std::end(kResultLines) ? *line : unknown;
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
    yesToAll = noToAll = isCancelled = false;
    Progress progress{Work::creating, 0, static_cast<std::uint64_t>(message.beginEnum())};
    while (Element* type = message.enumNext()) {
        isCancelled = isCancelled || !tellProgress(progress);
        if (isCancelled) {
            callbacks.addResult(type->queryName() + " not created, since the creation was cancelled", ResultKind::left);
            continue;
        }
        create(*type);
        ++progress.done;
    }
    if (!isCancelled)
        tellProgress(progress);
    finish();
    return errorCount;
}

void CreationRun::finish()
{
    try {
        session.finish();
    } catch (const ClientError& error) {
        callbacks.addResult("The last types that were created may be lost: " + asOneLine(error.what()),
                            ResultKind::reason);
        ++errorCount;
    }
}

void CreationRun::create(Element& type)
{
    type.asXML(document);
    try {
        const unsigned code = createOrAsk(type);
        const ResultLine& line = resultLineOf(code);
        callbacks.addResult(fillText(loadText(line.textId), type.queryName()), line.kind);
        errorCount += code == kRefused;
    } catch (const ClientError& error) {
        callbacks.addResult(fillText(loadText(IDS_CREATION_ERROR), type.queryName()), ResultKind::failed);
        callbacks.addResult(asOneLine(error.what()), ResultKind::reason);
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
