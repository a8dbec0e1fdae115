#pragma once

#include "Base/Text.h"

/// The outcome of promptTerminal().
enum class PromptResult
{
    answered,    ///< a line was read, which may be empty
    interrupted, ///< the input ended, or a signal came
    noTerminal   ///< the process has no terminal
};

/// Writes `prompt` to the terminal of the process and reads one line into `secret` without echo. `secret` is empty
/// unless the result is `answered`. A signal that ends or stops the process finds the echo restored; a stopped process
/// asks again when it continues. The terminal is /dev/tty, so that standard input is free for a source. Wipe `secret`
/// after use.
PromptResult promptTerminal(const CString& prompt, CString& secret);
