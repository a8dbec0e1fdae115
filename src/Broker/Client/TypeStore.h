#pragma once

#include "Database/Statement.h"

#include <memory>
#include <optional>

/// The type repository in a database: one table, a row for each type.
class TypeStore
{
public:
    /// Finds the table, or makes it where the database has none yet. Raises CDBException; also where the rights for
    /// changing it are missing.
    explicit TypeStore(std::shared_ptr<CDatabase> database);

    enum Outcome : unsigned
    {
        created = 0,
        replaced = 1,
        exists = 2
    };

    /// Stores a type by one statement, which is a transaction of its own: of two that create the same type at the same
    /// moment, one has it created and the other finds it existing. Raises CDBException, and nothing is stored then;
    /// where the database was locked or silent, the same for any further type, at once.
    Outcome store(const CString& name, const char* document, bool overwrite);

private:
    std::shared_ptr<CDatabase> database; // above the statements, which have to go first
    std::unique_ptr<CStatement> insert;
    std::unique_ptr<CStatement> upsert;
    std::optional<CDBException> busy; // as the database was found to be
};
