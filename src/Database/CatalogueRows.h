#pragma once

#include "Base/Text.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

/// Reads the rows of ODBC's catalogue functions, in the process of the driver.
class CatalogueRows
{
public:
    using Arguments = std::array<std::optional<CString>, 4>;

    /// `shape` is that of a row, as CFieldExchange::shape() returns it.
    explicit CatalogueRows(std::string_view shape);

    /// Runs the function of ODBC's number on a statement and appends all rows to `out`, as CFieldExchange::load() takes
    /// them. Raises CDBException.
    void append(void* statement, unsigned short function, Arguments arguments, CString& out);

private:
    static constexpr std::size_t kTextWidth = 255; // bytes; longer texts are cut between two characters

    struct Column
    {
        bool isText;
        long indicator;                          // the value's length, or that it is null; set by each fetch
        std::array<char, kTextWidth + 1> buffer; // for either kind
    };

    void bind(void* statement);
    bool fetch(void* statement);
    void store(CString& out) const;

    std::vector<Column> columns;
};
