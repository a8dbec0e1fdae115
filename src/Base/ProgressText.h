#pragma once

#include "Base/Progress.h"
#include "Base/Text.h"

/// Returns a progress in words, for example "Reading: 120.5 MB of 1,000.0 MB".
CString progressText(const Progress& progress);
