#pragma once

#include "Database/Odbc.h"

/// The table of a repository, a row for each type. A table of an earlier version has no columns for the sources.
struct TypeTable
{
    enum class Place
    {
        file,  ///< SQLite
        server ///< PostgreSQL
    };

    /// Finds the table, or makes it where the database has none yet, and adds the columns for the sources where it
    /// lacks them. Raises CDBException; also where the rights for changing types are missing.
    TypeTable(CDatabase& database, Place place);

    /// A table of that form, for reading alone: nothing is made and no right is asked for.
    TypeTable(Place place, bool keepsSources) : place(place), keepsSources(keepsSources) {}

    const Place place;
    bool keepsSources = false; ///< false where the columns are missing and can't be added

    /// `text` if the table keeps sources, else "": for statements that differ in that.
    const char* ifSources(const char* text) const { return keepsSources ? text : ""; }
};

/// A database that another program has locked, or that is silent: no use in asking it anything else.
bool isBusy(const CDatabase& database, const CDBException& error);
