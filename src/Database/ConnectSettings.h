#pragma once

#include "Base/Text.h"

#include <initializer_list>
#include <string_view>
#include <vector>

// Reads the words of connection strings, as "Server=…;Port=…;", as drivers do.

/// A word as it stands in a connection string, with its value and semicolon; and the value alone. Views into the
/// string.
struct ConnectWord
{
    std::string_view whole, value;
};

/// The first word of that name, in any letter case; an empty one if there is none.
ConnectWord wordOf(std::string_view connection, std::string_view name);

/// The values of all words of that name, without white space and braces around them.
std::vector<CString> valuesOf(std::string_view connection, std::string_view name);

/// A value without the white space and the braces around it.
CString withoutBraces(std::string_view value);

/// What an entry of the files of data sources and drivers says; "" if it says nothing.
CString profileText(const CString& section, const char* entry, const char* file);

/// What a source says of itself: in the connection string, or in the data source or file that it names; "" for nothing.
CString settingOf(const CString& connection, const char* word);

/// Whether the driver of a source, or the library of that driver, has one of these in its name.
bool hasDriver(const CString& connection, std::initializer_list<const char*> parts);
