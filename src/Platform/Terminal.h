#pragma once

#include "Platform/Text.h"

/// Asks on the terminal of the process and reads one line into `secret` without showing what is typed. False when the
/// process has no terminal or the line was given up; a signal that ends the process finds the terminal as it was.
bool askTerminal(const CString& prompt, CString& secret);
