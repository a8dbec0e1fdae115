#pragma once

#include "Base/Text.h"

#include <chrono>

/// Returns "UID=…;PWD=…;", quoted so that drivers read it right. It holds the password: wipe() it after use. Not every
/// driver accepts the form that ODBC specifies. This one was tested with each printable character in passwords for
/// PostgreSQL's and MariaDB's drivers (docs/adr/connection-string.md).
CString logonText(const CString& user, const CString& password);

/// Returns the connection string for a data source by name. Throws CDBException for an unknown name, and for one that a
/// driver would take for another. Checked here, because drivers replace an unknown name by defaults of their own and
/// open another database.
CString dataSourceText(const CString& name);

/// Returns the attributes to append to a source's connection string, besides the logon and TLS: time limits, and for
/// SQLite, when reading, that the file is opened but not created. `connection` is only searched for the driver and an
/// SQLite timeout.
CString connectionSuffix(const CString& connection, bool isReadOnly, std::chrono::seconds loginTimeout);

/// Returns a connection string that all drivers read alike: its first data source is named in front, any other is
/// removed. Throws CDBException as dataSourceText() does. Attributes keep their order otherwise.
CString plainConnection(const CString& connection);

/// Returns the name of the data source in a connection string; empty if it names none.
CString dataSourceOf(const CString& connection);

/// Returns the identity of a source, given by its name or a connection string: the driver, data source, server, port
/// and database that it names, as "Driver=…;Database=…". Sources that differ only in their users, passwords and options
/// have the same identity. The repository stores it as the source of a type, so it contains no password.
CString identityOf(const CString& source);
