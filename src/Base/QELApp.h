#pragma once

#include "Base/MessageBox.h"

#include <exception>

/// The application object. One exists for the whole process, `theApp`, with or without a window.
class CQELApp
{
public:
    /// Runs the wizard from start to end; answers 0, so that the process ends. Defined with the wizard: a program
    /// without a window never calls it and links without it.
    BOOL InitInstance();

    /// Shows the text `textId` of the string table under the title `titleId` and returns when the user has closed it.
    void Error(UINT textId, UINT titleId);

    /// Shows a finished text under the title `titleId`. `details` is the reason behind it in the words of the system, a
    /// driver or the broker; who shows the text may show them under it.
    void Error(const CString& text, UINT titleId, const CString& details = {});

    /// The same for what a source is to blame for; `fault` says it in parts, of which the reason and the file are
    /// details if the text lacks them.
    void Error(const CString& text, UINT titleId, const SourceFault& fault);

    /// Opens the help topic of the page whose dialog id is in the low 16 bits of `data`, the default topic for a
    /// dialog without one. Acts only when `command` is the context-help command, 1. Defined with the wizard.
    void WinHelp(DWORD data, UINT command);
};

extern CQELApp theApp;

/// What an exception says to the user. Takes no memory, so that it can say that there is none.
const char* wordsOf(const std::exception& error);
