#pragma once

#include "Import/MsgUIDescriptor.h"

/// The importer for a file, told by the end of its name (.dtd, .mod, .ent, .xsd, .wsdl and others, in any letter case)
/// and else by how it starts: types that were written earlier, a schema, declarations of a DTD, or any other XML. A
/// WSDL is told by its root alone. A pipe is told by how it starts, whatever its name; it must have been kept. Null
/// when the file can't be read or is none of these. Looks at its first 64 kB.
MsgUIDescriptor* importerFor(const CString& fileName);

/// Returns the format of a file without an importer, with advice (see ForeignSource.h); empty if it isn't recognised.
std::string_view foreignAdvice(const CString& fileName);
