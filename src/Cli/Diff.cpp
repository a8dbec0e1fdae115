#include "Cli/Diff.h"

#include "Base/Json.h"
#include "Cli/Output.h"
#include "Cli/TypeListing.h"
#include "Import/Btd/BrokerMsg.h"
#include "Types/TypeChanges.h"
#include "Types/TypeStructure.h"

namespace {

constexpr const char* kKinds[] = {"added", "removed", "changed"};
constexpr int kSame = 0, kDifferent = 1, kTrouble = 2;

CString lineOf(const TypeChange& change)
{
    if (change.kind == TypeChange::changed)
        return "changed " + change.what + " of " + change.name + ": " + change.from + " to " + change.to + "\n";
    const CString& type = change.from + change.to; // one of them is empty
    return CString(kKinds[change.kind]) + " " + change.what + " " + change.name + (type.empty() ? "" : ": ") + type +
           "\n";
}

CString jsonOf(const TypeChange& change)
{
    const auto member = [](const char* name, const CString& value) {
        return value.empty() ? CString() : CString(",\"") + name + "\":" + jsonText(value);
    };
    return CString("{\"change\":\"") + kKinds[change.kind] + "\"" + member("what", change.what) +
           member("name", change.name) + member("from", change.from) + member("to", change.to) + "}";
}

void writeText(const std::vector<TypeChange>& changes, Output& output)
{
    for (const TypeChange& change : changes)
        output.write(lineOf(change));
    if (!changes.empty())
        output.write(isCompatible(changes) ? "compatible: only additions\n" : "not compatible: it breaks readers\n");
}

void writeJson(const std::vector<TypeChange>& changes, Output& output)
{
    const char* separator = "\n  ";
    output.write(CString("{\"same\":") + (changes.empty() ? "true" : "false") +
                 ",\"compatible\":" + (isCompatible(changes) ? "true" : "false") + ",\"changes\":[");
    for (const TypeChange& change : changes) {
        output.write(separator + jsonOf(change));
        separator = ",\n  ";
    }
    output.write("]}\n");
}

} // namespace

int diffTypes(MsgBase& message, const CString& document, bool asJson, Output& output, Diagnostics& diagnostics)
{
    BrokerMessage earlier;
    earlier.parseFile(document, earlier.getBasePath());
    if (!diagnostics.hasErrors() && !holdsTypes(earlier))
        diagnostics.add({document, "it is no document of types"});
    if (diagnostics.hasErrors())
        return kTrouble;
    const TypeStructure before(earlier), after(message);
    const std::vector<TypeChange> changes = typeChanges(before, after);
    (asJson ? writeJson : writeText)(changes, output);
    if (!output.finish())
        return kTrouble;
    return changes.empty() ? kSame : kDifferent;
}
