// A settings file with foreign contents: after saving, all readable values are unchanged.
#include "Files/SettingsStore.h"
#include "Folder.h"
#include "Target.h"

namespace {

constexpr const char* kKey = "SOFTWARE\\ZANTH\\QEL";

std::vector<CString> valuesOf(const SettingsStore& store)
{
    std::vector<CString> values;
    for (const auto& [name, value] : store.queryValues(kKey))
        values.push_back(name + '\0' + value.bytes);
    return values;
}

} // namespace

void fuzz(std::string_view input)
{
    static const Folder home;
    ::setenv("XDG_CONFIG_HOME", home.path.c_str(), 1);
    std::filesystem::create_directory(home.path + "typeforge");
    std::ofstream(home.path + "typeforge/settings.json", std::ios::binary) << input;

    SettingsStore store;
    store.setInteger(kKey, "Width", 640);
    store.setText(kKey, "File", CString(input.substr(0, input.find('\0'))));
    if (!store.save() || valuesOf(store) != valuesOf(SettingsStore()))
        std::abort();
}
