#include "Database/DataSources.h"

#include "Database/DBException.h"
#include "Database/Handles.h"

#include <sql.h>
#include <sqlext.h>

#include <array>

bool listDataSources(std::vector<DataSource>& out)
{
    const EnvironmentHandle environment = allocateEnvironment();
    if (!environment)
        return false;
    // Names of more than 32 characters can be listed but not opened (IM012).
    std::array<SQLCHAR, 50> name;
    std::array<SQLCHAR, 300> description;
    const auto text = [](auto& buffer) {
        return CString(driverText(reinterpret_cast<const char*>(buffer.data()), buffer.size()));
    };
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
        name[0] = description[0] = 0; // a manager may leave an empty text unset
        if (!SQL_SUCCEEDED(SQLDataSources(environment.get(), direction, name.data(), SQLSMALLINT(name.size()), nullptr,
                                          description.data(), SQLSMALLINT(description.size()), nullptr)))
            return true;
        out.push_back({text(name), text(description)});
    }
}
