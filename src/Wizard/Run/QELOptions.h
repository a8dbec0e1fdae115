#pragma once

#include "Base/ServerAddress.h"
#include "Broker/ResultKind.h"
#include "Import/Full/FullMessage.h"

#include <QComboBox>
#include <QListWidget>

#include <optional>
#include <vector>

class Registry;

// The platform's controls that signatures use.
using CComboBox = QComboBox;
using CListBox = QListWidget;

/// Puts `text` at the head (`atHead` nonzero) or the tail of `list` and removes its first equal entry. Cuts the list to
/// 15 entries.
void AddUnique(const CString& text, CStringList& list, int atHead);

/// Inserts the entries before those of the combo box, selects the head entry and returns it; empty for an empty list,
/// and then selects nothing.
CString FillCombo(CComboBox& combo, CStringList& list);

/// Returns the head entry; empty for an empty list.
CString QueryTop(CStringList& list);

/// Appends the values of a settings key. Stops at a name of more than 9 bytes, a text of more than 259, or 1,000
/// entries. The bytes of a value are the entry, also if it is not a text.
void FillFromReg(CStringList& list, const char* key);

/// Stores the entries as the values "a", "b", "c", … of a settings key. Its other values stay. A failure is not
/// reported.
void FlushToReg(Registry& reg, CStringList& list, const char* key);

/// The user's choices that the pages share. getValues() loads the lasting ones, flushValues() stores them. Used in the
/// window's thread, except that a creation run adds its result lines in its own thread while the window waits.
class QELOptions
{
public:
    /// Stores the current folder. Reads no settings.
    QELOptions();
    ~QELOptions();

    /// Loads every setting. A missing one gets its default. Call it once, on a new object: recent entries are appended.
    void getValues();

    /// Stores all settings in one transaction. A failure is not reported. Called when the user finishes the wizard,
    /// never on Cancel.
    void flushValues();

    // The recent entries, newest first. Adding puts a text at the head. Filling fills a combo box and returns the entry
    // that it shows.
    void addInputFile(const CString& file) { AddUnique(file, inputFiles, 1); }
    void addOutputFile(const CString& file) { AddUnique(file, outputFiles, 1); }
    void addUser(const CString& user) { AddUnique(user, users, 1); }
    void addBrokerIP(const CString& address) { AddUnique(address, brokerAddresses, 1); }
    CString fillInputFile(CComboBox& combo);
    CString fillOutputFile(CComboBox& combo) { return FillCombo(combo, outputFiles); }
    CString fillUser(CComboBox& combo) { return FillCombo(combo, users); }
    CString fillBrokerIP(CComboBox& combo) { return FillCombo(combo, brokerAddresses); }
    CString queryInputFile() { return QueryTop(inputFiles); }

    // The result lines of the last creation run, and their kinds.
    void clearResultList();
    void addResult(const CString& line, ResultKind kind = ResultKind::unknown);
    void fillResultList(CListBox& box) const;
    const std::vector<ResultKind>& queryResultKinds() const { return resultKinds; }
    QString resultTotals() const; ///< in words: "1,200 types: 1,198 created, 2 failed"

    /// Returns the folder in which the program was started. The file pages return to it. Empty if its name has more
    /// than 259 bytes.
    const CString& queryCWD() const { return cwd; }

    // A flag is 0 or another number. A row is that of the table of importers, a mode one of OutputPage::OutputMode.
    // Folders may be empty, which means the start folder.
    int queryHideWelcome() const { return hideWelcome; }
    void setHideWelcome(int hide) { hideWelcome = hide; }
    const CString& queryInputFolder() const { return inputFolder; }
    void setInputFolder(const CString& folder) { inputFolder = folder; }
    const CString& queryOutputFolder() const { return outputFolder; }
    void setOutputFolder(const CString& folder) { outputFolder = folder; }
    DWORD queryBrokerPort() const { return brokerPort; }
    void setBrokerPort(DWORD port) { brokerPort = port; }
    int queryLastImporterSel() const { return lastImporterSel; }
    void setLastImporterSel(int row) { lastImporterSel = row; }
    int queryLastOutputSel() const { return lastOutputSel; }
    void setLastOutputSel(int mode) { lastOutputSel = mode; }
    int queryFullReading() const { return fullReading; }
    void setFullReading(int full) { fullReading = full; }
    FullMessage::Layout queryLayout() const { return static_cast<FullMessage::Layout>(layout); }
    void setLayout(FullMessage::Layout wanted) { layout = static_cast<int>(wanted); }

    /// Sets the text of the file field for the last source of several files, or of a folder, and whether the last
    /// source was one of this sort. It is stored apart from the recent files, whose list ends at an entry of 260 bytes
    /// when it is read. A longer text than kMaxSourceSet is ignored.
    static constexpr int kMaxSourceSet = 100'000; ///< bytes of the text
    void setSourceSet(const CString& text);
    void setSetLast(bool isLast) { setLast = isLast ? 1 : 0; }

    /// Returns the text of the field for XML catalogues, in the form of the file field; "" for none.
    CString queryCatalogs() const { return catalogs.value_or(""); }
    void setCatalogs(const CString& text);

    int queryUseTrustedLogon() const { return useTrustedLogon; }
    void setUseTrustedLogon(int trusted) { useTrustedLogon = trusted; }

    /// Returns the broker password typed in this run. It is never stored.
    const CString& queryPwd() const { return pwd; }
    void setPwd(const CString& password);

    /// Returns the base path of the generated types, as confirmed for this import.
    const CString& queryPath() const { return basePath; }
    void setPath(const CString& path) { basePath = path; }

    /// Returns the dialog id of the page to which Back on the review page leads.
    long queryEditBack() const { return editBack; }
    void setEditBack(long dialogId) { editBack = dialogId; }

private:
    CString cwd;
    int hideWelcome = 0;
    CString inputFolder;
    CString outputFolder;
    CStringList inputFiles; // this and the next three: newest first
    CStringList outputFiles;
    CStringList users;
    CStringList brokerAddresses;
    unsigned int brokerPort = kDefaultPort;
    int lastImporterSel = 0;
    int lastOutputSel = 0;           // of OutputPage::OutputMode
    int fullReading = 0;             // 1: read in full where there are two readings
    int layout = 0;                  // of FullMessage::Layout
    int setLast = 0;                 // 1: the last source was one of several files
    CString sourceSet;               // "" if there never was one
    std::optional<CString> catalogs; // nothing if there never were any
    int useTrustedLogon = 0;
    CString pwd;      // wiped when it changes and at the end
    CString basePath; // ends with a backslash once confirmed
    long editBack = 0;
    CStringList resultList;              // of the last creation run
    std::vector<ResultKind> resultKinds; // of its lines
};
