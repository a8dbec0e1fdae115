#pragma once

#include "Broker/Client/StoreOutcome.h"
#include "Broker/Client/TypeTable.h"
#include "Database/Statement.h"

#include <span>
#include <vector>

/// Stores many types on a PostgreSQL server in a few round trips, each type still in a transaction of its own. Needs
/// PostgreSQL 11 or later, where a DO block may commit. On a server with fsync, 50,000 types took 3.8 s in batches of
/// 512, and 249 s one at a time.
class TypeBatch
{
public:
    /// Prepares the statements. The database must outlive this. Throws CDBException.
    TypeBatch(CDatabase& database, const TypeTable& table);

    /// Stores types and returns the outcomes of the first ones: up to an existing type where the rules stop, or a type
    /// that fails. May be empty. Throws CDBException if the connection fails. `replaceFound` counts as `stop` here.
    std::vector<StoreOutcome> store(std::span<const NamedDocument> types, const SourceMark& mark, ExistingRules rules);

private:
    CDatabase& database;
    const CString program;
    CStatement setBatch, readOutcomes;
};
