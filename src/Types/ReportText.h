#pragma once

#include "Base/Text.h"

#include <functional>

class MsgBase;

/// The output formats of a report.
enum class ReportFormat
{
    text, ///< losses, then details: a line with their number, a line for each place ("FILE:LINE:COL: CONSTRUCT: NAME"),
          ///< an empty line; then a line for each construct with its count, losses first, and the totals
    json  ///< one object with "places", "counts", the counts again as "losses" and "details", "unlisted", "totals"
};

/// Writes the report of the last import of `message`: what it did not carry over, and totals of types and fields.
/// Fields count as typed or left as text. The report is passed to `out` in pieces, so it is never whole in memory.
/// Moves the importer's cursor.
void writeReport(MsgBase& message, ReportFormat format, const std::function<void(std::string_view)>& out);
