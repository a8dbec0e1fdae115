#include "Platform/Files/SettingsStore.h"

#include "Platform/Files/File.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <pwd.h>
#include <system_error>
#include <unistd.h>

using Json = nlohmann::ordered_json;

struct SettingsStore::Document
{
    CString fileName; // empty when the user has no folder for settings
    Json root = Json::object();
};

namespace {

// https://specifications.freedesktop.org/basedir/latest: a relative path counts as unset.
CString settingsFolder()
{
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    if (configured != nullptr && configured[0] == '/')
        return configured + CString("/typeforge");
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') {
        const passwd* user = ::getpwuid(::geteuid());
        home = user != nullptr ? user->pw_dir : nullptr;
    }
    return home != nullptr ? home + CString("/.config/typeforge") : CString();
}

// Nothing of ours lies deeper than the values of a key. What does is dropped while it is read, so that no file can nest
// deeper than the writer's recursion bears.
Json parseSettings(const CString& text)
{
    const auto keep = [](int depth, Json::parse_event_t, Json&) { return depth <= 2; };
    return Json::parse(text, keep, false);
}

bool toValue(const Json& stored, SettingsValue& out)
{
    if (stored.is_string()) {
        out = {SettingsValue::Type::text, stored.get_ref<const CString&>()};
        out.bytes += '\0';
        return true;
    }
    const bool fits = stored.is_boolean() || stored.is_number_unsigned() || stored.is_number_integer();
    if (!fits)
        return false;
    const auto wide = stored.is_boolean() ? std::int64_t(stored.get<bool>()) : stored.get<std::int64_t>();
    if (wide < std::numeric_limits<std::int32_t>::min() || wide > std::numeric_limits<std::uint32_t>::max())
        return false;
    out = {SettingsValue::Type::integer, {}};
    for (int shift = 0; shift < 32; shift += 8)
        out.bytes += static_cast<char>(static_cast<std::uint32_t>(wide) >> shift);
    return true;
}

} // namespace

SettingsStore::SettingsStore() : document(std::make_unique<Document>())
{
    const CString folder = settingsFolder();
    if (folder.empty())
        return;
    document->fileName = folder + "/settings.json";
    CString text;
    if (readFile(document->fileName, text) != FileCause::none)
        return;
    Json parsed = parseSettings(text);
    if (parsed.is_object()) {
        document->root = std::move(parsed);
        return;
    }
    std::error_code ignored;
    std::filesystem::rename(document->fileName, document->fileName + ".bad", ignored);
}

SettingsStore::~SettingsStore() = default;

bool SettingsStore::hasKey(const CString& key) const
{
    const auto found = document->root.find(key);
    return found != document->root.end() && found->is_object();
}

bool SettingsStore::getValue(const CString& key, const CString& name, SettingsValue& out) const
{
    if (!hasKey(key))
        return false;
    const Json& values = document->root[key];
    const auto found = values.find(name);
    return found != values.end() && toValue(*found, out);
}

std::vector<std::pair<CString, SettingsValue>> SettingsStore::queryValues(const CString& key) const
{
    std::vector<std::pair<CString, SettingsValue>> values;
    if (!hasKey(key))
        return values;
    for (const auto& [name, stored] : document->root[key].items())
        if (SettingsValue value; toValue(stored, value))
            values.emplace_back(name, std::move(value));
    return values;
}

void SettingsStore::setText(const CString& key, const CString& name, const CString& value)
{
    Json& values = document->root[key];
    if (!values.is_object())
        values = Json::object();
    values[name] = value;
}

void SettingsStore::setInteger(const CString& key, const CString& name, std::int32_t value)
{
    Json& values = document->root[key];
    if (!values.is_object())
        values = Json::object();
    values[name] = value;
}

bool SettingsStore::save() const
{
    if (document->fileName.empty())
        return false;
    std::error_code failed;
    std::filesystem::create_directories(std::filesystem::path(document->fileName).parent_path(), failed);
    if (failed)
        return false;
    AtomicFile file(document->fileName);
    file.write(document->root.dump(2, ' ', false, Json::error_handler_t::replace));
    file.write("\n");
    return file.commit() == FileCause::none;
}
