#pragma once

#include "Base/SourceFault.h"

#include <exception>

/// The application object. One exists for the whole process, `theApp`, with or without a window. It has no state.
class CQELApp
{
public:
    /// Runs the wizard from start to end. Always returns 0, so that the process ends. Defined in the wizard: a program
    /// without a window never calls it and links without it.
    BOOL InitInstance();

    /// Shows the text `textId` of the string table under the title `titleId` and returns when the user has closed it.
    /// Ends no work: the caller then returns its failure.
    void Error(UINT textId, UINT titleId);

    /// Shows a finished text under the title `titleId`. `details` is the cause in the words of the system, a driver or
    /// the broker; the message handler may show it below the text.
    void Error(const CString& text, UINT titleId, const CString& details = {});

    /// Shows an error caused by a source, with its parts in `fault`. The details are `advice`, and the fault's reason
    /// and file if the text lacks them.
    void Error(const CString& text, UINT titleId, const SourceFault& fault, const CString& advice = {});

    /// Opens the help topic of the page whose dialog id is in the low 16 bits of `data`, or the default topic if that
    /// dialog has none. Does nothing unless `command` is kContextHelp. Defined in the wizard.
    void WinHelp(DWORD data, UINT command = kContextHelp);
    static constexpr UINT kContextHelp = 1; ///< the context-help command
};

extern CQELApp theApp;

/// Returns the text of an exception for the user. Allocates nothing, so it works when memory has run out.
const char* messageOf(const std::exception& error);
