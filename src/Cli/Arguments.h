#pragma once

#include "Cli/CreateTypes.h"
#include "Cli/FullReading.h"
#include "Platform/Text.h"

#include <vector>

class MsgUIDescriptor;

/// What the command line asks for.
struct Arguments
{
    CString importer; ///< a word that importerNamed() knows
    CString source;   ///< a file, or for `odbc` a data source name or a connection string
    CString basePath; ///< as given; only when hasBasePath
    bool hasBasePath = false;
    std::vector<CString> tables; ///< `odbc`: the tables to import; empty: all
    CString output;              ///< empty: standard output
    bool list = false;
    CString type; ///< the one type to write; only when hasType
    bool hasType = false;
    FullOptions full;
    LogonOptions logon;
    CreateOptions create;
};

/// Reads the command line. When there is nothing to import (help, version, a mistake) everything that there is to say
/// has been said and `exitStatus` is set: 0, or 2 for a mistake; the answer is then false.
bool parseArguments(int argc, char** argv, Arguments& arguments, int& exitStatus);

/// The importer that a word of the command line names.
MsgUIDescriptor& importerNamed(const CString& word);
