#pragma once

#include "Base/Text.h"

#include <functional>

class MsgBase;

/// The forms in which a report can be had.
enum class ReportFormat
{
    text, ///< losses, then details: a line with their number, a line a place ("FILE:LINE:COL: CONSTRUCT: NAME"), an
          ///< empty line; then a line a construct with its count, losses first, and the totals
    json  ///< one object with "places", "counts", the same by sort as "losses" and "details", "unlisted" and "totals"
};

/// Writes what the last import of `message` did not carry over, and what it did: how many types there are, and fields,
/// those of a type of their own and those left text.
void writeReport(MsgBase& message, ReportFormat format, const std::function<void(std::string_view)>& out);
