#pragma once

#include "Base/Text.h"

enum class Asked
{
    answered,
    givenUp, ///< by the end of the input
    noTerminal
};

/// Asks on the terminal of the process and reads one line into `secret` without showing what is typed. A signal that
/// ends or stops the process finds the terminal as it was; once it goes on it asks anew.
Asked askTerminal(const CString& prompt, CString& secret);

/// Opens nothing in place of standard input, output and error where the process was started without them. Else the next
/// file or connection that is opened would be one of them, and be sent what they are sent.
void takeClosedStreams();
