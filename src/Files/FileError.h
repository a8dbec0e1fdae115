#pragma once

/// The numbers of the causes in message 2210.
enum class FileCause : unsigned
{
    none = 0,
    generic = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentFolder = 7,
    folderFull = 8,
    badSeek = 9,
    hardInputOutput = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14
};

/// Returns the cause of an errno value: `none` for 0, `generic` for a value without a number of its own.
FileCause fileCauseOf(int error);
