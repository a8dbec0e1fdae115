#pragma once

#include "Base/Text.h"
#include "Database/Odbc.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

/// Where a recordset names its members, in the order of the result's columns. Texts are cut at 255 bytes, between two
/// characters.
class CFieldExchange
{
public:
    static constexpr std::size_t kTextWidth = 255;

    void text(CString& member) { add(&member, nullptr); }
    void number(LONG& member) { add(nullptr, &member); }

private:
    friend class CRecordset;

    struct Field
    {
        CString* text;
        LONG* number;
        long indicator;                          // the value's length, or that it is null; set by each fetch
        std::array<char, kTextWidth + 1> buffer; // of the column, for either kind
    };

    void add(CString* text, LONG* number) { fields.push_back({text, number, 0, {}}); }
    void bind(void* statement);
    void clear();
    void store(CString& packed) const;
    void load(std::string_view packed) const;

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

    /// Forgets the rows and frees the statement; the members keep their last values.
    void Close();

    bool IsOpen() const { return result != nullptr; }
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

    /// A catalogue function of ODBC with the number by which a driver is asked whether it has it.
    struct Catalogue
    {
        unsigned short function;
        const char* name;
        short (*call)(void*, unsigned char*, short, unsigned char*, short, unsigned char*, short, unsigned char*,
                      short);
    };
    using Argument = std::optional<CString>;
    using Arguments = std::array<Argument, 4>;

    static Argument argument(const char* text) { return text ? Argument(text) : Argument(); }

    /// Runs it once for each of `calls`, with four texts or nulls, reads all rows and goes to the first. 0 when the
    /// driver lacks the function or has no statement to give.
    int openCatalogue(const Catalogue& catalogue, std::vector<Arguments> calls, UINT type);

    CDatabase* queryDatabase() const { return database; }

private:
    struct Result;

    bool isSupported(const Catalogue& catalogue) const;
    void moveTo(std::size_t row);

    CDatabase* database;
    std::shared_ptr<Result> result; // null when not open
    std::size_t position = 0;
    UINT openType = snapshot;
    bool beginOfFile = true;
    bool endOfFile = true;
};
