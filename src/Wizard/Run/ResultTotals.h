#pragma once

#include "Broker/ResultKind.h"

#include <QString>

#include <vector>

/// Returns the totals of a creation, from the kinds of its lines: "1,200 types: 1,198 created, 2 failed".
QString totalsInWords(const std::vector<ResultKind>& kinds);
