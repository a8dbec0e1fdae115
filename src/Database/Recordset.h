#pragma once

#include "Base/Text.h"
#include "Database/Odbc.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

/// The list of a recordset's members, in the order of the result's columns. Texts are cut at 255 bytes, between
/// characters. Holds pointers to the members, so it is valid as long as the recordset. A derived recordset calls text()
/// or number() once for each column.
class CFieldExchange
{
public:
    /// Add the member of the next column, a text or a number.
    void text(CString& member) { fields.push_back({&member, nullptr}); }
    void number(LONG& member) { fields.push_back({nullptr, &member}); }

    /// Returns the member of a column of text, counted from 0.
    const CString& textAt(std::size_t column) const { return *fields[column].text; }

    /// Returns a letter for each column: t for a text, n for a number.
    CString shape() const;

    /// Loads the first row of `rows` into the members and returns its length in bytes. Throws CDBException if the row
    /// is incomplete.
    std::size_t load(std::string_view rows) const;

private:
    // One of the two is null.
    struct Field
    {
        CString* text;
        LONG* number;
    };

    std::vector<Field> fields;
};

/// The rows of a result, read at once when it is opened: a static, read-only snapshot. Errors of the database throw
/// CDBException. A derived class adds the members of a row. It can't be copied, because the list of members has their
/// addresses. Once open, it doesn't need the connection.
class CRecordset
{
public:
    /// The only type of recordset; others are stored but have no effect.
    static constexpr UINT snapshot = 1;

    virtual ~CRecordset() = default;
    CRecordset(const CRecordset&) = delete;
    CRecordset& operator=(const CRecordset&) = delete;

    /// Drops the rows; the members keep their last values.
    void Close();

    bool IsOpen() const { return rows.has_value(); }
    bool IsBOF() const { return beginOfFile; } ///< true if not open or without any row
    bool IsEOF() const { return endOfFile; }   ///< also true if not open
    UINT queryOpenType() const { return openType; }

    /// Go to the first or next row and load it into the members. Do nothing without a row.
    void MoveFirst();
    void MoveNext();

protected:
    /// `openOn` is the connection; with null, opening always fails.
    explicit CRecordset(CDatabase* openOn) : database(openOn) {}

    /// Lists the members in the order of the result's columns.
    virtual void DoFieldExchange(CFieldExchange& exchange) = 0;

    using Argument = std::optional<CString>;
    using Arguments = std::array<Argument, 4>;

    // Null means that an argument is not given, which differs from an empty text.
    static Argument argument(const char* text) { return text ? Argument(text) : Argument(); }

    /// Runs a catalogue function, given by its SQL_API number, once for each of `calls`, with four texts or nulls.
    /// Reads all rows and goes to the first. If a table's name with backslashes gives no row, tries again with "_" for
    /// each of them and keeps the rows of exactly that name, because drivers differ in whether a backslash is an
    /// escape. Returns 1, or 0 if the driver lacks the function, can't allocate a statement or the connection isn't
    /// open. `calls` must not be empty, and all must have the same table's name.
    int openCatalogue(unsigned short function, std::vector<Arguments> calls, UINT type);

    /// Returns the connection given to the constructor, or null.
    CDatabase* queryDatabase() const { return database; }

private:
    // Runs the calls once, as they are.
    int run(unsigned short function, const std::vector<Arguments>& calls);
    void keepRowsOf(const CString& table);
    void moveTo(std::size_t row);

    CDatabase* database;
    CFieldExchange fields;
    std::optional<CString> rows; // packed, one after the other; empty if not open
    std::size_t next = 0;        // the offset of the next row
    UINT openType = snapshot;
    bool beginOfFile = true;
    bool endOfFile = true;
};
