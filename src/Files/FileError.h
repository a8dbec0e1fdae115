#pragma once

/// The causes that message 2210 names by number.
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

/// The cause that an errno value stands for; `generic` for one that has no number of its own, `none` for 0.
FileCause fileCauseOf(int error);
