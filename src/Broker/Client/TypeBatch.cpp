#include "Broker/Client/TypeBatch.h"

#include "Broker/Client/TypeStatements.h"
#include "Database/Statement.h"

#include <algorithm>
#include <string_view>

namespace {

// Session settings carry the types to the program on the server and the outcomes back, because a DO block takes no
// parameters. XML doesn't allow these separators, so they are in no type and no source.
constexpr char kEnd = '\x01';
constexpr char kPartEnd = '\x02';
constexpr char kSetBatch[] = "SELECT length(set_config('typeforge.batch', ?, false)), "
                             "set_config('typeforge.outcomes', '', false)";
constexpr char kReadOutcomes[] = "SELECT current_setting('typeforge.outcomes')";

// replaceFound needs the revision that was found, which only TypeStore knows, so the program stops there.
const char* ruleName(VornExisting rule)
{
    return rule == VornExisting::replace ? "replace" : rule == VornExisting::keep ? "keep" : "stop";
}

// Packs the parts in the order in which batchProgram() reads them: two rules, source, time, then a name and a document
// for each type.
CString packed(std::span<const NamedDocument> types, const SourceMark& mark, ExistingRules rules)
{
    CString text;
    const auto add = [&text](std::string_view part) { text.append(part) += kEnd; };
    add(ruleName(rules.changed));
    add(ruleName(rules.unchanged));
    add(mark.source);
    add(mark.time);
    for (const NamedDocument& type : types) {
        add(type.name);
        add(type.document);
    }
    text.pop_back();
    return text;
}

// Returns the text up to `end` and removes both from the front.
std::string_view takePart(std::string_view& text, char end)
{
    const std::size_t length = std::min(text.find(end), text.size());
    const std::string_view part = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return part;
}

// Reads the outcomes that batchProgram() has written: for each type its code, the old source, kPartEnd, the old time,
// and kEnd.
std::vector<StoreOutcome> unpacked(std::string_view outcomes)
{
    std::vector<StoreOutcome> types;
    while (!outcomes.empty()) {
        std::string_view type = takePart(outcomes, kEnd);
        const auto code = static_cast<StoreOutcome::Code>(type.front() - '0');
        type.remove_prefix(1);
        const std::string_view source = takePart(type, kPartEnd);
        types.push_back({code, {CString(source), CString(type)}});
    }
    return types;
}

} // namespace

std::vector<StoreOutcome> runBatch(CDatabase& database, const TypeTable& table, std::span<const NamedDocument> types,
                                   const SourceMark& mark, ExistingRules rules)
{
    // This statement also clears the outcomes of an earlier batch.
    runSql(database, kSetBatch, {packed(types, mark, rules)});
    try {
        database.ExecuteSQL(batchProgram(table));
    } catch (const CDBException&) { // types before the failed one are stored
        if (!database.IsOpen())
            throw;
    }
    return unpacked(runSql(database, kReadOutcomes)[0][0]);
}
