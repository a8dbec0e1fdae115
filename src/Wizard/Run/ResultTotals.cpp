#include "Wizard/Run/ResultTotals.h"

#include "Ui/UiText.h"

#include <QStringList>

#include <algorithm>
#include <utility>

QString totalsInWords(const std::vector<ResultKind>& kinds)
{
    static constexpr std::pair<ResultKind, const char*> words[] = {
        {ResultKind::created, "created"}, {ResultKind::modified, "replaced"},
        {ResultKind::skipped, "skipped"}, {ResultKind::unchanged, "unchanged"},
        {ResultKind::failed, "failed"},   {ResultKind::cancelled, "not created"},
        {ResultKind::unknown, "unknown"}};
    QStringList parts;
    for (const auto& [kind, word] : words)
        if (const auto count = std::ranges::count(kinds, kind); count != 0)
            parts.append(shownCount(count, word, word));
    const auto types = std::ssize(kinds) - std::ranges::count(kinds, ResultKind::reason);
    return shownCount(types, "type", "types") + (parts.isEmpty() ? "" : ": ") + parts.join(", ");
}
