#pragma once

#include "Platform/Progress.h"
#include "Platform/Text.h"

/// A progress in words, as "Reading: 120.5 MB of 1,000.0 MB".
CString progressText(const Progress& progress);
