#pragma once

#include "Base/MessageBox.h"

#include <cstdint>
#include <string_view>
#include <unordered_set>

/// What the end of the program tells.
enum ExitStatus : int
{
    kDone = 0,
    kFailed = 1, ///< the source was refused, the import failed, or no type came of it
    kUsage = 2,  ///< invalid command line
    kNotWritten = 3,
    kNotCreated = 4 ///< some of the types
};

/// The status of what could not be done: kFailed, or with --diff, where 1 is no failure, kUsage. The command line sets
/// it.
extern ExitStatus failedStatus;

/// How much is said on standard error.
enum class Verbosity
{
    quiet, ///< errors alone
    normal,
    verbose
};

/// A source as it may be shown: a connection string ends where its password stands.
CString shownSource(const CString& source);

/// Writes one line to standard error, under the program's name: for what no source is to blame for. Takes no memory.
void report(std::string_view text);

/// Says on standard error what is wrong with the sources of an import, a line each: "FILE:LINE:COL: error: REASON", as
/// compilers do, "warning" where the import goes on. While it lives the message boxes of the import come here.
class Diagnostics
{
public:
    /// `source` is to blame where a message names no file.
    Diagnostics(const CString& source, Verbosity verbosity);
    ~Diagnostics();
    Diagnostics(const Diagnostics&) = delete;
    Diagnostics& operator=(const Diagnostics&) = delete;

    /// Says one thing, the same warning once. Without Verbosity::verbose that is 20 warnings at most; finish() tells
    /// how many more there were.
    void add(const SourceFault& fault);
    void error(const CString& reason) { add({source, reason}); }

    /// A warning beyond the bound, of `file` or, if that is empty, the source.
    void warning(const CString& reason, const CString& file = {});

    /// Says what is of use to who asked for all, Verbosity::verbose.
    void note(const CString& reason) const;

    void finish();

    bool isVerbose() const { return verbosity == Verbosity::verbose; }

    bool hasErrors() const { return errors > 0; }

    /// An error that the full reading may not have run into has come by.
    bool hasLiteralError() const { return isLiteralError; }

private:
    CString source;
    Verbosity verbosity;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::unordered_set<std::uint64_t> told; // hashes of the warnings
    bool isLiteralError = false;
    MessageBoxHandler before;
};
