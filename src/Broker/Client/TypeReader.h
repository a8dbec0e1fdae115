#pragma once

#include "Broker/Client/StoredType.h"
#include "Broker/Client/TypeTable.h"

#include <memory>
#include <vector>

/// Reads the type repository in a database, and changes nothing there: neither the table nor a type.
class TypeReader final : public TypeStorage
{
public:
    /// A null database, and one without the table of types, hold no types. Raises CDBException.
    TypeReader(std::shared_ptr<CDatabase> database, TypeTable::Place place);

    bool keepsSources() const override { return table.keepsSources; }

    /// Returns what TypeStore::store() would, and stores nothing.
    std::vector<StoredType> store(std::span<const NamedDocument> types, const CString& source,
                                  ExistingRules rules) override;

    /// The documents of the types right in a folder, in the order of their names. Raises CDBException.
    std::vector<CString> readFolder(const CString& folder) const;

private:
    StoredType find(const NamedDocument& type, ExistingRules rules) const;

    std::shared_ptr<CDatabase> database; // null if there is no table
    TypeTable table;
};
