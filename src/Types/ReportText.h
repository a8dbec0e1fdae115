#pragma once

#include "Base/Text.h"

#include <functional>

class MsgBase;

/// The forms in which a report can be had.
enum class ReportFormat
{
    text, ///< a line a place ("FILE:LINE: CONSTRUCT: NAME"), an empty line, a line a construct with its count, the
          ///< totals
    json  ///< one object with "places", "counts" and "totals"
};

/// Writes what the last import of `message` did not carry over, and what it did: how many types there are, and fields,
/// those of a type of their own and those left text.
void writeReport(MsgBase& message, ReportFormat format, const std::function<void(std::string_view)>& out);
