#include "Wizard/Run/QELOptions.h"

#include "Base/Secret.h"
#include "Files/Registry.h"
#include "Files/UserFolders.h"
#include "Ui/UiText.h"

#include <algorithm>
#include <array>
#include <unistd.h>
#include <utility>

// Settings have the names, types and sizes of registry values. A text that doesn't fit into a buffer of 260 bytes
// counts as missing there, so texts that may be longer are read in another way.
namespace {

constexpr const char* kProgramKey = "SOFTWARE\\ZANTH\\QEL";
constexpr const char* kVendorKey = "SOFTWARE\\ZANTH";
constexpr const char* kInputFilesKey = "SOFTWARE\\ZANTH\\QEL\\InFiles";
constexpr const char* kOutputFilesKey = "SOFTWARE\\ZANTH\\QEL\\OutFiles";
constexpr const char* kUsersKey = "SOFTWARE\\ZANTH\\QEL\\Users";
constexpr const char* kBrokersKey = "SOFTWARE\\ZANTH\\QEL\\Broker";

constexpr std::size_t kMaxEntries = 15;
constexpr std::size_t kMaxRead = 1'000; // entries; other programs may have stored more
constexpr std::size_t kMaxPath = 260;   // bytes, the terminating zero included
constexpr std::size_t kMaxName = 10;    // bytes, the terminating zero included

// Returns the current folder; empty if its name doesn't fit, or if the folder is gone.
CString currentFolder()
{
    std::array<char, kMaxPath> folder = {};
    return ::getcwd(folder.data(), folder.size()) != nullptr ? folder.data() : CString();
}

} // namespace

QELOptions::QELOptions() : cwd(currentFolder()), inputFolder(cwd), outputFolder(cwd) {}

QELOptions::~QELOptions()
{
    wipe(pwd);
}

// Wiped first, because an assignment may leave the old text in its storage.
void QELOptions::setPwd(const CString& password)
{
    wipe(pwd);
    pwd = password;
}

// One transaction, so that the file is read once. Each AddUnique() puts its text in front: the user that runs the
// program before those of earlier logons, and the configured server before recent ones.
void QELOptions::getValues()
{
    const SettingsTransaction together;
    Registry reg;
    if (unsigned int hide; reg.getUInt(HKEY_CURRENT_USER, kProgramKey, "HideWelcomePage", hide))
        hideWelcome = static_cast<int>(hide);
    inputFolder = reg.getText(kProgramKey, "Input folder").value_or(cwd);
    outputFolder = reg.getText(kProgramKey, "Output folder").value_or(cwd);
    FillFromReg(inputFiles, kInputFilesKey);
    FillFromReg(outputFiles, kOutputFilesKey);
    FillFromReg(users, kUsersKey);
    if (const CString name = loginName().substr(0, kMaxPath); !name.empty())
        AddUnique(name, users, 1);
    FillFromReg(brokerAddresses, kBrokersKey);
    if (const auto address = reg.getText(kVendorKey, "ServerAddress"))
        AddUnique(*address, brokerAddresses, 1);
    if (!reg.getUInt(HKEY_CURRENT_USER, kVendorKey, "Port", brokerPort))
        brokerPort = kDefaultPort;
    reg.getInt(HKEY_CURRENT_USER, kProgramKey, "LastImporter", lastImporterSel);
    reg.getInt(HKEY_CURRENT_USER, kProgramKey, "LastOutputMode", lastOutputSel);
    reg.getInt(HKEY_CURRENT_USER, kProgramKey, "UseTrustedLogon", useTrustedLogon);
    reg.getInt(HKEY_CURRENT_USER, kProgramKey, "FullReading", fullReading);
    reg.getInt(HKEY_CURRENT_USER, kProgramKey, "FolderLayout", layout);
    // The file may contain any number, but this one becomes an enumerator and a row of a combo box.
    layout = std::clamp(layout, 0, static_cast<int>(FullMessage::Layout::byNamespace));
    reg.getInt(HKEY_CURRENT_USER, kProgramKey, "SourceSetLast", setLast);
    // Read by queryValues(), because getText() returns at most 259 bytes.
    for (const auto& [name, value] : reg.queryValues(HKEY_CURRENT_USER, kProgramKey))
        if (name == "SourceSet")
            setSourceSet(value.bytes.c_str());
        else if (name == "Catalogs")
            setCatalogs(value.bytes.c_str());
}

void QELOptions::flushValues()
{
    const SettingsTransaction together;
    Registry reg;
    reg.setInt(HKEY_CURRENT_USER, kProgramKey, "HideWelcomePage", hideWelcome);
    reg.setText(kProgramKey, "Input folder", inputFolder);
    reg.setText(kProgramKey, "Output folder", outputFolder);
    FlushToReg(reg, inputFiles, kInputFilesKey);
    FlushToReg(reg, outputFiles, kOutputFilesKey);
    FlushToReg(reg, users, kUsersKey);
    FlushToReg(reg, brokerAddresses, kBrokersKey);
    reg.setInt(HKEY_CURRENT_USER, kVendorKey, "Port", static_cast<int>(brokerPort));
    reg.setInt(HKEY_CURRENT_USER, kProgramKey, "LastImporter", lastImporterSel);
    reg.setInt(HKEY_CURRENT_USER, kProgramKey, "LastOutputMode", lastOutputSel);
    reg.setInt(HKEY_CURRENT_USER, kProgramKey, "UseTrustedLogon", useTrustedLogon);
    reg.setInt(HKEY_CURRENT_USER, kProgramKey, "FullReading", fullReading);
    reg.setInt(HKEY_CURRENT_USER, kProgramKey, "FolderLayout", layout);
    reg.setInt(HKEY_CURRENT_USER, kProgramKey, "SourceSetLast", setLast);
    if (!sourceSet.empty())
        reg.setText(kProgramKey, "SourceSet", sourceSet);
    if (catalogs)
        reg.setText(kProgramKey, "Catalogs", *catalogs);
}

// A text that is too long is dropped, rather than cut in the middle of a name.
void QELOptions::setSourceSet(const CString& text)
{
    if (text.size() <= kMaxSourceSet)
        sourceSet = text;
}

// The setting is only made once there are catalogues; then an empty text is stored, too, so that none are used.
void QELOptions::setCatalogs(const CString& text)
{
    if (text.size() <= kMaxSourceSet && (catalogs || !text.empty()))
        catalogs = text;
}

// The text of several sources is shown first if they were the last source, else second, where one key reaches it.
CString QELOptions::fillInputFile(CComboBox& combo)
{
    const CString newest = FillCombo(combo, inputFiles);
    if (sourceSet.empty())
        return newest;
    const bool isFirst = setLast != 0 || inputFiles.empty();
    combo.insertItem(isFirst ? 0 : 1, toUi(sourceSet));
    combo.setCurrentIndex(0);
    return isFirst ? sourceSet : newest;
}

void QELOptions::clearResultList()
{
    resultList.clear();
    resultKinds.clear();
}

void QELOptions::addResult(const CString& line, ResultKind kind)
{
    resultList.push_back(line);
    resultKinds.push_back(kind);
}

// A line feed in a type's name would hide the outcome after it.
void QELOptions::fillResultList(CListBox& box) const
{
    QStringList lines; // added at once, because each insertion updates the view
    for (const CString& line : resultList)
        lines.append(toUi(shownText(line)));
    box.clear();
    box.addItems(lines);
}

// A line with a reason belongs to the failure before it, and is no type. Totals of 0 are left out.
QString QELOptions::resultTotals() const
{
    static constexpr std::pair<ResultKind, const char*> words[] = {
        {ResultKind::created, "created"}, {ResultKind::modified, "replaced"},
        {ResultKind::skipped, "skipped"}, {ResultKind::unchanged, "unchanged"},
        {ResultKind::failed, "failed"},   {ResultKind::cancelled, "not created"},
        {ResultKind::unknown, "unknown"}};
    QStringList parts;
    for (const auto& [kind, word] : words)
        if (const auto count = std::ranges::count(resultKinds, kind); count != 0)
            parts.append(shownCount(count, word, word));
    const auto types = std::ssize(resultKinds) - std::ranges::count(resultKinds, ResultKind::reason);
    return shownCount(types, "type", "types") + (parts.isEmpty() ? "" : ": ") + parts.join(", ");
}

// The search comes before the insertion, or it would find the new entry.
void AddUnique(const CString& text, CStringList& list, int atHead)
{
    const auto found = std::find(list.begin(), list.end(), text);
    list.insert(atHead != 0 ? list.begin() : list.end(), text);
    if (found != list.end())
        list.erase(found); // last, because `text` may be that entry
    while (list.size() > kMaxEntries)
        list.pop_back();
}

// Inserted at once, because each insertion updates the box.
CString FillCombo(CComboBox& combo, CStringList& list)
{
    QStringList entries;
    for (const CString& entry : list)
        entries.append(toUi(entry));
    combo.insertItems(0, entries);
    if (list.empty())
        return {};
    combo.setCurrentIndex(0);
    return list.front();
}

CString QueryTop(CStringList& list)
{
    return list.empty() ? CString() : list.front();
}

void FillFromReg(CStringList& list, const char* key)
{
    // Ends at the first value that a registry would not return into buffers of these sizes.
    for (const auto& [name, value] : Registry().queryValues(HKEY_CURRENT_USER, key)) {
        if (name.size() >= kMaxName || value.bytes.size() > kMaxPath || list.size() >= kMaxRead)
            return;
        list.push_back(value.bytes.c_str());
    }
}

void FlushToReg(Registry& reg, CStringList& list, const char* key)
{
    char name[] = "a";
    for (const CString& entry : list) {
        if (name[0] > 'z')
            return; // only a file that was edited has more
        reg.setText(key, name, entry);
        ++name[0];
    }
}
