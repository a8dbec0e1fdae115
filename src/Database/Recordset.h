#pragma once

#include "Base/Text.h"
#include "Database/Odbc.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

/// Where a recordset names its members, in the order of the result's columns. Texts are cut at 255 bytes, between two
/// characters.
class CFieldExchange
{
public:
    void text(CString& member) { fields.push_back({&member, nullptr}); }
    void number(LONG& member) { fields.push_back({nullptr, &member}); }

    /// A letter for each column: t for a text, n for a number.
    CString shape() const;

    /// Puts the first of these rows into the members and returns how many bytes it takes.
    std::size_t load(std::string_view rows) const;

private:
    struct Field
    {
        CString* text;
        LONG* number;
    };

    std::vector<Field> fields;
};

/// The rows of a result, all read when it is opened, so that what was read stays as it was: a static snapshot. Every
/// recordset is read-only. Errors of the database are raised as CDBException.
class CRecordset
{
public:
    static constexpr UINT snapshot = 1;

    virtual ~CRecordset() = default;
    CRecordset(const CRecordset&) = delete;
    CRecordset& operator=(const CRecordset&) = delete;

    /// Forgets the rows; the members keep their last values.
    void Close();

    bool IsOpen() const { return rows.has_value(); }
    bool IsBOF() const { return beginOfFile; }
    bool IsEOF() const { return endOfFile; } ///< also true for a recordset that is not open
    UINT queryOpenType() const { return openType; }

    /// Go to the first row or one further, and put its values into the members. Without a row nothing happens.
    void MoveFirst();
    void MoveNext();

protected:
    /// `openOn` is the open connection, or null, on which nothing opens.
    explicit CRecordset(CDatabase* openOn) : database(openOn) {}

    /// Names the members, in the order of the result's columns.
    virtual void DoFieldExchange(CFieldExchange& exchange) = 0;

    using Argument = std::optional<CString>;
    using Arguments = std::array<Argument, 4>;

    static Argument argument(const char* text) { return text ? Argument(text) : Argument(); }

    /// Runs the catalogue function of ODBC's number once for each of `calls`, with four texts or nulls, reads all rows
    /// and goes to the first. 0 when the driver lacks the function or has no statement to give.
    int openCatalogue(unsigned short function, const std::vector<Arguments>& calls, UINT type);

    CDatabase* queryDatabase() const { return database; }

private:
    void moveTo(std::size_t row);

    CDatabase* database;
    CFieldExchange fields;
    std::optional<CString> rows; // packed one behind the other; none when not open
    std::size_t next = 0;        // where the row behind the current one starts
    UINT openType = snapshot;
    bool beginOfFile = true;
    bool endOfFile = true;
};
