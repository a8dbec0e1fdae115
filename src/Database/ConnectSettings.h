#pragma once

#include "Base/Text.h"

#include <initializer_list>
#include <string_view>
#include <vector>

// Reads the attributes of connection strings ("Server=…;Port=…;") in the same way as drivers.

/// An attribute of a connection string, complete with value and semicolon, and its value alone. Views into the string.
struct ConnectAttribute
{
    std::string_view whole, value;
};

/// Returns the first attribute of a name, in any letter case; empty if there is none. A value in braces may contain
/// semicolons; one whose brace is never closed takes the rest of the string.
ConnectAttribute attributeOf(std::string_view connection, std::string_view name);

/// Returns the values of all attributes of a name, without white space and braces around them, in their order. Empty
/// values are included.
std::vector<CString> valuesOf(std::string_view connection, std::string_view name);

/// Returns a value without white space and braces around it. A doubled closing brace within becomes one.
CString withoutBraces(std::string_view value);

/// Returns an entry of an ODBC file, "odbc.ini" or "odbcinst.ini"; empty if it is missing. Cut at 1,023 bytes. Reads
/// the file of the user and that of the system (SQLSetConfigMode). unixODBC caches entries, so a change of the file may
/// be seen late.
CString profileText(const CString& section, const char* entry, const char* file);

/// Returns a setting of a source: from the connection string, else from the file or data source that it names; empty if
/// none has it. `attribute` is compared in any letter case.
CString settingOf(const CString& connection, const char* attribute);

/// Returns whether the name of a source's driver, or of the driver's library, contains one of `parts`, in lower case.
/// Loads no driver. A driver may be given by its section in odbcinst.ini or by the path of its library.
bool hasDriver(const CString& connection, std::initializer_list<const char*> parts);
