#pragma once

/// The kinds of lines in the list of results. Both programs count and mark the lines by it.
enum class ResultKind
{
    created,
    modified,
    skipped,
    unchanged, ///< it exists with the same document
    failed,
    cancelled, ///< not created, because the run was cancelled
    reason,    ///< of the failure in the line before
    unknown    ///< the client returned an unknown code
};
