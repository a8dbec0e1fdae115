#pragma once

#include "Broker/Client/StoreOutcome.h"
#include "Broker/Client/TypeTable.h"
#include "Database/Statement.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The type repository in a database. If the database is locked or silent once, every later call fails at once instead
/// of waiting again. On a server, commits don't wait for the disk: each type keeps a transaction of its own, and
/// finish() makes all of them durable at once. 5,000 types took 22.8 s with synchronous commits and 1.9 s without.
class TypeStore final : public TypeStorage
{
public:
    /// Opens the table of types. Throws CDBException, also if the user lacks the rights to change it.
    TypeStore(std::shared_ptr<CDatabase> database, TypeTable::Place place);

    /// Calls finish() and ignores a failure.
    ~TypeStore() override;
    TypeStore(const TypeStore&) = delete;
    TypeStore& operator=(const TypeStore&) = delete;

    bool keepsSources() const override { return table.keepsSources; }

    /// Stores a type without a source in one statement, which is a transaction of its own: if two programs create the
    /// same type at once, one creates it and the other finds it. Throws CDBException if nothing was stored.
    StoreOutcome::Code store(const NamedDocument& type, bool overwrite);

    std::vector<StoreOutcome> store(std::span<const NamedDocument> types, const CString& source,
                                    ExistingRules rules) override;
    void finish() override;

private:
    /// A type at the revision that was found.
    struct Found
    {
        CString name, revision;
        bool operator==(const Found&) const = default;
    };
    using Values = std::initializer_list<std::string_view>;

    // Runs a statement and remembers the error of a busy database.
    SqlRows run(const CString& sql, Values values);
    std::vector<StoreOutcome> storeBatch(std::span<const NamedDocument> types, const SourceMark& mark,
                                         ExistingRules rules);
    StoreOutcome storeOne(const NamedDocument& type, const SourceMark& mark, ExistingRules rules);

    std::shared_ptr<CDatabase> database;
    const TypeTable table;
    bool hasBatches;                  // the server supports runBatch()
    std::optional<CDBException> busy; // the error that later calls repeat
    Found lastStopped;                // the type at which the rules stopped last
    bool isPending = false;           // types may not be on the server's disk yet
};
