#include "Database/Statement.h"

#include "Database/DriverHost.h"
#include "Database/DriverMessage.h"

SqlRows runSql(CDatabase& database, const CString& sql, std::initializer_list<std::string_view> values)
{
    CString request = startRequest(DriverRequest::run);
    putText(request, sql);
    for (const std::string_view value : values)
        putText(request, value);
    const CString answer = database.call(request);
    MessageReader reader(answer);
    const std::int32_t columns = reader.isAtEnd() ? 0 : reader.number();
    SqlRows rows;
    while (columns > 0 && !reader.isAtEnd()) {
        auto& row = rows.emplace_back();
        for (std::int32_t column = 0; column < columns; ++column)
            row.emplace_back(reader.text());
    }
    return rows;
}
