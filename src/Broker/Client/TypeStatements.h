#pragma once

#include "Broker/Client/TypeTable.h"

// The statements on a repository's table. Both databases take the same SQL. Parameters in brackets.

/// Stores a type that isn't there [name, document, source, time]; no row if it exists.
CString insertStatement(const TypeTable& table);

/// The same, and replaces one that exists; returns its revision, 0 for one that was created.
CString upsertStatement(const TypeTable& table);

/// Returns what is known of a type [document, name]: revision, whether its document is the same (1 or 0), source, time.
CString findStatement(const TypeTable& table);

/// Replaces a type [name, document, source, time, revision] if it has that revision yet; no row if it hasn't.
CString updateStatement(const TypeTable& table);

/// PostgreSQL's program that stores the types of the session's setting typeforge.batch, each by a transaction of its
/// own, and puts what became of each into typeforge.told; see TypeBatch. It ends at the first type that fails.
CString batchProgram(const TypeTable& table);
