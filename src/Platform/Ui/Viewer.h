#pragma once

#include "Platform/Text.h"

/// Opens a file in what the user views its kind with, through `xdg-open`, or through the program that the environment
/// variable TYPEFORGE_VIEWER names. Doesn't wait; a viewer that can't be started is not reported.
void showInViewer(const CString& fileName);
