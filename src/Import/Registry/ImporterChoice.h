#pragma once

#include "Import/MsgUIDescriptor.h"

/// Returns the importer for a file. The root of a WSDL decides first, then the suffix of the name (.dtd, .mod, .ent,
/// .xsd and others, in any letter case), then the start of the content: types written earlier, a schema, declarations
/// of a DTD, JSON or YAML, any other XML. For a pipe, which must have been kept, the content decides before the name.
/// Null if the file can't be read, is not recognised, or has a format without an importer, see foreignAdvice(). Reads
/// the first 64 kB.
MsgUIDescriptor* importerFor(const CString& fileName);

/// Returns the format of a file without an importer, with advice (see ForeignSource.h); empty if it isn't recognised.
std::string_view foreignAdvice(const CString& fileName);
