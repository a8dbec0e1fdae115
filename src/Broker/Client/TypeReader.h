#pragma once

#include "Broker/Client/StoreOutcome.h"
#include "Broker/Client/TypeTable.h"

#include <memory>
#include <vector>

/// Reads the type repository in a database. Never changes it, neither the table nor a type. A comparison and a dry run
/// use it.
class TypeReader final : public TypeStorage
{
public:
    /// A null database, or one without the table, counts as an empty repository. Throws CDBException.
    TypeReader(std::shared_ptr<CDatabase> database, TypeTable::Place place);

    bool keepsSources() const override { return table.keepsSources; }

    /// Returns what TypeStore::store() would, without storing anything.
    std::vector<StoreOutcome> store(std::span<const NamedDocument> types, const CString& source,
                                    ExistingRules rules) override;

    /// Returns the documents of the types directly in a folder, ordered by name. Throws CDBException.
    std::vector<CString> readFolder(const CString& folder) const;

private:
    // Returns what a creation would do with one type.
    StoreOutcome find(const NamedDocument& type, ExistingRules rules) const;

    std::shared_ptr<CDatabase> database; // null if there is no table
    TypeTable table;
};
