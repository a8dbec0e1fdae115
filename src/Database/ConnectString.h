#pragma once

#include "Base/Text.h"

#include <chrono>

/// Returns "UID=…;PWD=…;", quoted so that drivers read it right. It holds the password: wipe() it after use.
CString logonText(const CString& user, const CString& password);

/// Returns the connection string for a data source by name. Throws CDBException for an unknown name, and for one that a
/// driver would take for another.
CString dataSourceText(const CString& name);

/// Returns the attributes to append to a source's connection string, besides the logon and TLS: time limits, and for
/// SQLite, when reading, that the file is opened but not created.
CString connectionSuffix(const CString& connection, bool isReadOnly, std::chrono::seconds loginTimeout);

/// Returns a connection string that all drivers read alike: its first data source is named in front, any other is
/// removed. Throws CDBException as dataSourceText() does.
CString plainConnection(const CString& connection);

/// Returns the name of the data source in a connection string; empty if it names none.
CString dataSourceOf(const CString& connection);

/// Returns the identity of a source, given by its name or a connection string: the driver, data source, server, port
/// and database that it names, as "Driver=…;Database=…". Sources that differ only in their users, passwords and options
/// have the same identity.
CString identityOf(const CString& source);
