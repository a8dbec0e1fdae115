#pragma once

#include "Base/Text.h"

#include <chrono>

/// "UID=…;PWD=…;" as drivers want it. It holds the password: wipe() it after use.
CString logonText(const CString& user, const CString& password);

/// The connection string for a data source by its name. Raises CDBException for a name that there is not, or that a
/// driver would take for another one.
CString dataSourceText(const CString& name);

/// What has to stand in the connection string of a source beside its own words, the logon and those for TLS: time
/// limits, and that reading makes no file.
CString connectionWords(const CString& connection, bool onlyReading, std::chrono::seconds loginPatience);

/// A connection string as all drivers read it the same: its first data source is named in front, as dataSourceText()
/// does it, which may raise CDBException; any other is left out.
CString plainConnection(const CString& connection);

/// The name of the data source in a connection string; "" if it names none.
CString dataSourceOf(const CString& connection);
