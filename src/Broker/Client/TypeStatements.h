#pragma once

#include "Broker/Client/TypeTable.h"

// The statements on a repository's table. Both databases use the same SQL. Parameters are listed in brackets.

/// Inserts a type [name, document, source, time]. Returns no row if the type exists.
CString insertStatement(const TypeTable& table);

/// Inserts or replaces a type, with the same parameters. Returns the revision, 0 if created.
CString upsertStatement(const TypeTable& table);

/// Finds a type [document, name]. Returns the revision, whether the document is the same (1 or 0), source and time.
CString findStatement(const TypeTable& table);

/// Replaces a type [name, document, source, time, revision] if it still has that revision. Returns no row otherwise.
CString updateStatement(const TypeTable& table);

/// Returns the PostgreSQL program that stores the types in the session setting typeforge.batch, each in a transaction
/// of its own, and writes the outcomes to typeforge.outcomes; see runBatch(). It ends at the first type that fails.
CString batchProgram(const TypeTable& table);
