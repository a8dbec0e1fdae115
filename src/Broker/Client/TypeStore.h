#pragma once

#include "Broker/Client/StoredType.h"
#include "Broker/Client/TypeTable.h"
#include "Database/Statement.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

class TypeBatch;

/// The type repository in a database. Where the database was found locked or silent every further call fails at once.
class TypeStore final : public TypeStorage
{
public:
    /// Opens the table of types. Raises CDBException; also where the rights for changing it are missing.
    TypeStore(std::shared_ptr<CDatabase> database, TypeTable::Place place);

    /// Does what finish() does, but tells no failure.
    ~TypeStore() override;
    TypeStore(const TypeStore&) = delete;
    TypeStore& operator=(const TypeStore&) = delete;

    bool keepsSources() const override { return table.keepsSources; }

    /// Stores a type of no known source by one statement, which is a transaction of its own: of two that create the
    /// same type at the same moment, one has it created and the other finds it existing. Raises CDBException, and
    /// nothing is stored then.
    StoredType::Code store(const NamedDocument& type, bool overwrite);

    std::vector<StoredType> store(std::span<const NamedDocument> types, const CString& source,
                                  ExistingRules rules) override;
    void finish() override;

private:
    /// A type as it was found.
    struct Found
    {
        CString name, revision;
        bool operator==(const Found&) const = default;
    };
    using Values = std::initializer_list<std::string_view>;

    CStatement::Rows run(std::unique_ptr<CStatement>& statement, CString (*sql)(const TypeTable&), Values values);
    std::vector<StoredType> storeBatch(std::span<const NamedDocument> types, const SourceMark& mark,
                                       ExistingRules rules);
    StoredType storeOne(const NamedDocument& type, const SourceMark& mark, ExistingRules rules);

    std::shared_ptr<CDatabase> database; // above the statements, which have to go first
    const TypeTable table;
    std::unique_ptr<CStatement> insert, upsert, find, update;
    std::unique_ptr<TypeBatch> batch;
    bool hasBatches;                  // of a server that knows them
    std::optional<CDBException> busy; // as the database was found to be
    Found stoppedAt;                  // the type that the rules stopped at last
    bool isPending = false;           // something was stored that may not be on the server's disk
};
