#pragma once

#include "Base/Text.h"

/// "UID=…;PWD=…;" as drivers want it. It holds the password: wipe() it after use.
CString logonText(const CString& user, const CString& password);

/// The connection string for a data source by its name. Raises CDBException for a name that there is not, or that a
/// driver would take for another one.
CString dataSourceText(const CString& name);

/// What has to stand in the connection string of a source beside its own words and the logon: time limits, TLS where
/// the server has it (libpq's variable PGSSLMODE may say otherwise; CDBException is raised for what it doesn't know),
/// and that no file is made by only reading.
CString connectionWords(const CString& connection, bool onlyReading);

/// A connection string as all drivers read it the same: its first data source is named in front, as dataSourceText()
/// does it, which may raise CDBException; any other is left out.
CString plainConnection(const CString& connection);
