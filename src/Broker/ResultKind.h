#pragma once

/// What a line of the list of results says of the creation of a type.
enum class ResultKind
{
    created,
    modified,
    skipped,
    unchanged, ///< it exists with the same document
    failed,
    left,   ///< not begun, since the creation was cancelled
    reason, ///< of the failure that the line before names
    unknown ///< an answer that the program doesn't know
};
