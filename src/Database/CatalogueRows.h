#pragma once

#include "Base/Text.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

/// Reads the rows of ODBC's catalogue functions. Runs in the driver's process.
class CatalogueRows
{
public:
    using Arguments = std::array<std::optional<CString>, 4>;

    /// `shape` is the shape of a row, as CFieldExchange::shape() returns it.
    explicit CatalogueRows(std::string_view shape);

    /// Runs SQLTables or SQLColumns, given by its SQL_API number, on a statement and appends all rows to `out`, packed
    /// as CFieldExchange::load() reads them. Throws CDBException.
    void append(void* statement, unsigned short function, Arguments arguments, CString& out);

private:
    static constexpr std::size_t kTextWidth = 255; // bytes; longer texts are cut between characters

    struct Column
    {
        bool isText;
        long indicator;                          // the value's length or SQL_NULL_DATA, set by each fetch
        std::array<char, kTextWidth + 1> buffer; // of a text or a number
    };

    void bind(void* statement);
    bool fetch(void* statement);
    void store(CString& out) const;

    std::vector<Column> columns;
};
