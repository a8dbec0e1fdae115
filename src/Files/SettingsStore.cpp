#include "Files/SettingsStore.h"

#include "Base/Utf8.h"
#include "Files/AtomicFile.h"
#include "Files/File.h"
#include "Files/UserFolders.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <limits>
#include <system_error>

using Json = nlohmann::ordered_json;

constexpr std::uintmax_t kMaxFile = 4 << 20;
constexpr const char* kLatin1 = "latin-1";

struct SettingsStore::Document
{
    CString fileName; // empty when the user has no folder for settings
    Json root = Json::object();
};

namespace {

// Nothing of ours lies deeper than the parts of a value. What does is dropped while it is read, so that no file can
// nest deeper than the writer's recursion bears.
Json parseSettings(const CString& text)
{
    const auto keep = [](int depth, Json::parse_event_t, Json&) { return depth <= 3; };
    return Json::parse(text, keep, false);
}

// Opening anything but a regular file might wait for ever, and so might reading one that has no end in sight.
bool isFitToRead(const CString& fileName)
{
    std::error_code failure;
    const std::filesystem::file_status status = std::filesystem::status(fileName, failure);
    return !std::filesystem::exists(status) ||
           (std::filesystem::is_regular_file(status) && std::filesystem::file_size(fileName, failure) <= kMaxFile);
}

bool toLatin1(std::string_view text, CString& out)
{
    for (std::size_t at = 0; at < text.size();) {
        const char32_t code = decodeUtf8(text, at);
        if (code > 0xFF)
            return false;
        out += static_cast<char>(code);
    }
    return true;
}

// JSON holds nothing but UTF-8.
Json fromText(const CString& text)
{
    if (isUtf8(text))
        return text;
    CString characters;
    for (const char byte : text)
        appendUtf8(characters, static_cast<unsigned char>(byte));
    return Json{{kLatin1, characters}};
}

bool toText(const Json& stored, CString& out)
{
    if (stored.is_string()) {
        out = stored.get_ref<const CString&>();
        return true;
    }
    const auto latin1 = stored.is_object() ? stored.find(kLatin1) : stored.end();
    return latin1 != stored.end() && latin1->is_string() && toLatin1(latin1->get_ref<const CString&>(), out);
}

bool toValue(const Json& stored, SettingsValue& out)
{
    out = {};
    if (toText(stored, out.bytes)) {
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
    if (isFitToRead(document->fileName)) {
        CString text;
        if (readFile(document->fileName, text) != FileCause::none)
            return;
        document->root = parseSettings(text);
        if (document->root.is_object())
            return;
        document->root = Json::object();
    }
    std::error_code ignored; // set aside for its owner to mend: the next save would write over it
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
    values[name] = fromText(value);
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
