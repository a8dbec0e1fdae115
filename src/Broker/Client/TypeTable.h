#pragma once

#include "Database/Odbc.h"

/// The table of a repository, with a row for each type. Tables of an earlier version have no source columns. The name
/// is the key, so if two programs create a type at once, one of them finds it.
struct TypeTable
{
    enum class Place
    {
        file,  ///< SQLite
        server ///< PostgreSQL
    };

    /// Finds the table or creates it, and adds missing source columns. Throws CDBException, also if the user lacks the
    /// rights to change types. Runs a single statement if the table is complete.
    TypeTable(CDatabase& database, Place place);

    /// Describes an existing table for reading; accesses nothing.
    TypeTable(Place place, bool keepsSources) : place(place), keepsSources(keepsSources) {}

    const Place place;
    bool keepsSources = false; ///< false if the source columns are missing and can't be added

    /// Returns `text` if the table stores sources, else an empty text: for parts of statements.
    const char* ifSources(const char* text) const { return keepsSources ? text : ""; }
};

/// Returns whether another program has locked the database, or its connection was closed after a time limit or a
/// failure. Further statements would only wait again.
bool isBusy(const CDatabase& database, const CDBException& error);
