#pragma once

#include "Database/Statement.h"

#include <memory>
#include <optional>

/// The type repository in a database: one table, a row for each type.
class TypeStore
{
public:
    enum class Place
    {
        file,  ///< SQLite
        server ///< PostgreSQL
    };

    /// Finds the table, or makes it where the database has none yet. Raises CDBException; also where the rights for
    /// changing it are missing.
    TypeStore(std::shared_ptr<CDatabase> database, Place place);

    /// Does what finish() does, but tells no failure.
    ~TypeStore();
    TypeStore(const TypeStore&) = delete;
    TypeStore& operator=(const TypeStore&) = delete;

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

    /// Returns when all that was stored is on the server's disk: a crash of the server until then may lose the types
    /// that were stored last. Raises CDBException.
    void finish();

private:
    std::shared_ptr<CDatabase> database; // above the statements, which have to go first
    const Place place;
    bool isPending = false; // something was stored that may not be on the server's disk
    std::unique_ptr<CStatement> insert;
    std::unique_ptr<CStatement> upsert;
    std::optional<CDBException> busy; // as the database was found to be
};
