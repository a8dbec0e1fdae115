#pragma once

#include "Base/Text.h"
#include "Database/Odbc.h"

#include <initializer_list>
#include <vector>

/// One statement of SQL with question marks for its values, prepared once and run as often as wanted.
class CStatement
{
public:
    using Rows = std::vector<std::vector<CString>>;

    /// The database must outlive it. Raises CDBException, as execute() does.
    CStatement(CDatabase& database, const CString& sql);

    /// Runs it with texts in place of the question marks, in their order, and returns the rows of its result, each
    /// column as a text, however long; a null is empty.
    Rows execute(std::initializer_list<std::string_view> values = {});

private:
    CDatabase& database;
    const CString sql;
};
