#pragma once

#include "Base/MessageBox.h"
#include "Folder.h"
#include "Target.h"
#include "support/Documents.h"

#include <cstdio>
#include <cstdlib>

/// Ends the program when something is wrong with the document of an import, see documentFault().
inline void checkDocument(MsgBase& importer, bool hasAllTypes = true)
{
    if (const CString fault = documentFault(importer, hasAllTypes); !fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
}

/// Imports a file and checks the document.
inline void importFile(MsgBase& importer, const CString& fileName, bool hasAllTypes = true)
{
    setMessageBoxHandler([](const CString&, const CString&) {});
    if (importer.parseFile(fileName, importer.getBasePath()))
        checkDocument(importer, hasAllTypes);
}

/// The same with bytes as the file.
inline void importBytes(MsgBase& importer, std::string_view bytes, bool hasAllTypes = true)
{
    static Folder folder;
    folder.write("source", bytes);
    importFile(importer, folder.path + "source", hasAllTypes);
}
