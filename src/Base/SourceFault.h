#pragma once

#include "Base/Text.h"

/// An error or warning about a source. Its parts are separate, because the command line writes them as
/// FILE:LINE:COLUMN, while a box shows them in a text.
struct SourceFault
{
    CString file;           ///< as the user gave it; empty if unknown
    CString reason;         ///< without file and place
    long line = 0;          ///< from 1; 0 if unknown
    long column = 0;        ///< from 1, in bytes; 0 if unknown
    bool isWarning = false; ///< true if the import continues
};
