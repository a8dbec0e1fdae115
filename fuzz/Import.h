#pragma once

#include "Base/MessageBox.h"
#include "Folder.h"
#include "Target.h"
#include "support/Documents.h"

#include <cstdio>
#include <cstdlib>

/// Aborts if the document of an import is faulty, see documentFault().
inline void checkDocument(MsgBase& importer, bool hasAllTypes = true)
{
    if (const CString fault = documentFault(importer, hasAllTypes); !fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
}

/// Imports a file and checks its document. An import may fail, but whatever it writes must be well-formed. Message
/// boxes are dropped.
inline void importFile(MsgBase& importer, const CString& fileName, bool hasAllTypes = true)
{
    setMessageBoxHandler([](const CString&, const CString&) {});
    if (importer.parseFile(fileName, importer.getBasePath()))
        checkDocument(importer, hasAllTypes);
}

/// The same for a file with these bytes. All calls share one file.
inline void importBytes(MsgBase& importer, std::string_view bytes, bool hasAllTypes = true)
{
    static Folder folder;
    folder.write("source", bytes);
    importFile(importer, folder.path + "source", hasAllTypes);
}
