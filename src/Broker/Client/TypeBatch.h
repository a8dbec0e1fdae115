#pragma once

#include "Broker/Client/StoredType.h"
#include "Broker/Client/TypeTable.h"
#include "Database/Statement.h"

#include <memory>
#include <span>
#include <vector>

/// Stores many types on a PostgreSQL server in a few round trips, each type still by a transaction of its own.
class TypeBatch
{
public:
    /// The database must outlive it. Raises CDBException.
    TypeBatch(CDatabase& database, const TypeTable& table);

    /// Returns what became of the first types: up to one that exists and that the rules stop at, or that fails. Raises
    /// CDBException if the server can't be asked.
    std::vector<StoredType> store(std::span<const NamedDocument> types, const SourceMark& mark, ExistingRules rules);

private:
    CDatabase& database;
    const CString program;
    CStatement give, take;
};
