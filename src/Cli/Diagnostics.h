#pragma once

#include "Base/SourceFault.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <unordered_set>

class MsgBase;

/// The exit statuses, except those of --diff.
enum ExitStatus : int
{
    kDone = 0,
    kFailed = 1, ///< the source was rejected, the import failed, or no types resulted
    kUsage = 2,  ///< invalid command line
    kNotWritten = 3,
    kNotCreated = 4 ///< some of the types could not be created
};

/// The amount of output on standard error.
enum class Verbosity
{
    quiet, ///< errors only
    normal,
    verbose
};

/// Returns a source as it may be shown: a connection string is cut before its password. Other sources are returned
/// unchanged.
CString shownSource(const CString& source);

/// Writes one line to standard error, after the program's name, for errors not caused by a source. Control characters
/// become blanks, and a line is cut at 999 bytes. Allocates no memory, so it works when memory has run out.
void report(std::string_view text);

/// Reports problems with the sources of an import to standard error, one a line: "FILE:LINE:COL: error: REASON", as
/// compilers do, or "warning" if the import continues. It counts errors, so that a command can check after each step
/// whether to continue.
class Diagnostics
{
public:
    /// `source` stands in for the file name if a fault has none.
    Diagnostics(const CString& source, Verbosity verbosity) : source(source), verbosity(verbosity) {}
    Diagnostics(const Diagnostics&) = delete;
    Diagnostics& operator=(const Diagnostics&) = delete;

    /// Returns advice on a file, to be appended to an error; empty if there is none.
    using Advice = std::function<CString(const CString& file)>;

    /// Receives the errors and warnings of an importer from now on. This object must outlive its imports. `advice` is
    /// called after an error without a place, or at the first character, because the file may be of another kind.
    void receiveFrom(MsgBase& importer, const Advice& advice = {});

    /// Reports one fault; a repeated warning is skipped. Without Verbosity::verbose at most 20 warnings are shown;
    /// finish() reports how many were not.
    void add(const SourceFault& fault);
    /// Reports an error about the source as a whole.
    void error(const CString& reason) { add({source, reason}); }

    /// Reports a warning that doesn't count towards the 20. It is about `file` or, if that is empty, the source.
    void warning(const CString& reason, const CString& file = {});

    /// Reports a note about `file`; only shown with Verbosity::verbose.
    void note(const CString& reason, const CString& file) const;

    /// Reports how many warnings were not shown, if any.
    void finish();

    /// Returns whether notes and all warnings are shown.
    bool isVerbose() const { return verbosity == Verbosity::verbose; }

    /// Returns whether an error was reported.
    bool hasErrors() const { return errors > 0; }

    /// Returns whether an error occurred that may not occur in the full reading.
    bool hasLiteralError() const { return isLiteralError; }

private:
    CString source; // shown if a fault has no file
    Verbosity verbosity;
    std::size_t errors = 0;                          // shown
    std::size_t warnings = 0;                        // those of add(), shown or not
    std::unordered_set<std::uint64_t> shownWarnings; // hashes of the warnings shown
    bool isLiteralError = false;
};
