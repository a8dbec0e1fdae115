#include "Base/ProgressText.h"

namespace {

// "1,234,567"
CString grouped(std::uint64_t number)
{
    CString text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, ",");
    return text;
}

CString amount(std::uint64_t bytes)
{
    if (bytes < 100'000)
        return std::to_string((bytes + 999) / 1000) + " kB";
    const std::uint64_t tenths = bytes / 100'000;
    return grouped(tenths / 10) + "." + std::to_string(tenths % 10) + " MB";
}

} // namespace

CString progressText(const Progress& progress)
{
    static constexpr const char* words[] = {"Waiting for an answer", "Reading",       "Arranging the types",
                                            "Reading tables",        "Writing types", "Creating types"};
    const auto show = progress.work == Work::reading ? amount : grouped;
    CString text = words[static_cast<std::size_t>(progress.work)];
    if (progress.done != 0 || progress.total != 0)
        text += ": " + show(progress.done);
    if (progress.total != 0)
        text += " of " + show(progress.total);
    return text;
}
