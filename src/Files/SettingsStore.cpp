#include "Files/SettingsStore.h"

#include "Base/MessageBox.h"
#include "Base/Utf8.h"
#include "Files/AtomicFile.h"
#include "Files/File.h"
#include "Files/UserFolders.h"
#include "Resources/StringIds.h"
#include "Resources/StringTable.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <system_error>
#include <unordered_map>

// The file is read whole into a tree that keeps the order of its values, and written whole, so that unknown keys and
// values of other versions survive.
using Json = nlohmann::ordered_json;

// Bytes; the program's own settings take some kB. The file is read at start, before there is a window that could show
// progress.
constexpr std::uintmax_t kMaxFile = 4 << 20;
constexpr const char* kLatin1 = "latin-1";

struct SettingsStore::Document
{
    CString fileName; // empty if the user has no settings folder
    Json root = Json::object();
    bool isChanged = false;

    // Returns the values of a key; an empty object if there is none.
    const Json& valuesOf(const CString& key) const
    {
        static const Json none = Json::object();
        const auto found = root.find(key);
        return found != root.end() && found->is_object() ? *found : none;
    }
};

namespace {

// Builds the tree in linear time. ordered_json itself scans all keys of an object for each new one, which took 6 s for
// 60,000 keys. Containers deeper than the settings' own format are dropped, so that no file can exceed the writer's
// recursion.
class Builder : public nlohmann::json_sax<Json>
{
public:
    Json take() { return std::move(root); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    bool number_float(number_float_t value, const string_t&) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    // Not in JSON; only the library's other formats have it.
    bool binary(binary_t&) override { return false; }
    bool key(string_t& name) override
    {
        if (dropped == 0)
            open.back().key = std::move(name);
        return true;
    }
    bool start_object(std::size_t) override { return begin(Json::object()); }
    bool start_array(std::size_t) override { return begin(Json::array()); }
    bool end_object() override { return end(); }
    bool end_array() override { return end(); }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

private:
    // An object or array that is not closed yet. `json` lies in the container around it, which can't grow and move it
    // before this one is closed.
    struct Container
    {
        Json* json;
        CString key = {};                                   // the key of the next value
        std::unordered_map<CString, std::size_t> keys = {}; // the index of each key
    };

    bool begin(Json container)
    {
        // The format needs three: the document, a key, and a text that is not UTF-8.
        constexpr std::size_t deepest = 4;
        if (dropped > 0 || open.size() == deepest)
            ++dropped;
        else
            open.push_back({place(std::move(container))});
        return true;
    }

    bool end()
    {
        if (dropped > 0)
            --dropped;
        else
            open.pop_back();
        return true;
    }

    bool add(Json value)
    {
        if (dropped == 0)
            place(std::move(value));
        return true;
    }

    // Adds a value to the innermost open container. If a key repeats, the last value replaces the first, in its place.
    Json* place(Json value)
    {
        if (open.empty())
            return &(root = std::move(value));
        Container& parent = open.back();
        if (parent.json->is_array())
            return &parent.json->emplace_back(std::move(value));
        auto& values = parent.json->get_ref<Json::object_t&>();
        const auto [known, isNew] = parent.keys.try_emplace(parent.key, values.size());
        if (isNew)
            values.emplace_back(std::move(parent.key), nullptr);
        return &((values.begin() + static_cast<std::ptrdiff_t>(known->second))->second = std::move(value));
    }

    Json root;
    std::vector<Container> open;
    std::size_t dropped = 0; // open containers that are being dropped
};

// Returns the parsed text, a discarded value if it is not JSON. After a syntax error no part is used, because the next
// save would drop the rest.
Json parseSettings(const CString& text)
{
    Builder builder;
    return Json::sax_parse(text, &builder) ? builder.take() : Json(Json::value_t::discarded);
}

// Returns why a file must not be read; empty if it is small and regular, or missing. Opening another kind could block
// for ever, and reading it could never end.
CString unreadableReason(const CString& fileName)
{
    std::error_code failure;
    const std::filesystem::file_status status = std::filesystem::status(fileName, failure);
    if (!std::filesystem::exists(status))
        return {};
    if (!std::filesystem::is_regular_file(status))
        return "it is not a regular file";
    return std::filesystem::file_size(fileName, failure) > kMaxFile ? "it is larger than 4 MB" : "";
}

// Keeps an unusable file for its owner to repair, since the next save would overwrite it, and tells the user.
void setAside(const CString& fileName, const CString& reason)
{
    static std::atomic_flag isStuck; // the message comes once if the file can't be renamed
    std::error_code failure;
    std::filesystem::rename(fileName, fileName + ".bad", failure);
    if (failure && isStuck.test_and_set())
        return;
    const CString fate = failure ? "and can't be renamed (" + failure.message() + ")" : "and is now settings.json.bad";
    showMessageBox("The settings are the defaults, because " + fileName + " can't be used: " + reason + ", " + fate +
                       ".",
                   loadText(IDS_ERROR_TITLE));
}

// Reverses the conversion below. Returns false if a character is above U+00FF.
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

// Returns a text as JSON, which holds only UTF-8: other bytes are stored as characters U+0000 to U+00FF.
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

// Returns false for a value of a type that the program never writes, such as a fraction, and for a number that 32 bits
// don't hold. A Boolean is accepted as 0 or 1, because people edit the file.
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
    // A double is exact within the limits, and unlike a signed integer stays large beyond them.
    const double number = stored.is_boolean() ? stored.get<bool>() : stored.get<double>();
    if (number < std::numeric_limits<std::int32_t>::min() || number > std::numeric_limits<std::uint32_t>::max())
        return false;
    const auto wide = static_cast<std::int64_t>(number);
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
    CString reason = unreadableReason(document->fileName);
    if (reason.empty()) {
        CString text;
        // A file that can't be read stays, because it may be readable the next time.
        if (readFile(document->fileName, text) != FileCause::none)
            return;
        document->root = parseSettings(text);
        if (document->root.is_object())
            return;
        document->root = Json::object();
        reason = "it is not well-formed";
    }
    setAside(document->fileName, reason);
}

SettingsStore::~SettingsStore() = default;

bool SettingsStore::getValue(const CString& key, const CString& name, SettingsValue& out) const
{
    const Json& values = document->valuesOf(key);
    const auto found = values.find(name);
    return found != values.end() && toValue(*found, out);
}

std::vector<std::pair<CString, SettingsValue>> SettingsStore::queryValues(const CString& key) const
{
    std::vector<std::pair<CString, SettingsValue>> values;
    for (const auto& [name, stored] : document->valuesOf(key).items())
        if (SettingsValue value; toValue(stored, value))
            values.emplace_back(name, std::move(value));
    return values;
}

void SettingsStore::setText(const CString& key, const CString& name, const CString& value)
{
    set(key, name, fromText(value));
}

void SettingsStore::setInteger(const CString& key, const CString& name, std::int32_t value)
{
    set(key, name, value);
}

template <class Value>
void SettingsStore::set(const CString& key, const CString& name, Value&& value)
{
    Json& values = document->root[key];
    if (!values.is_object())
        values = Json::object();
    values[name] = std::forward<Value>(value);
    document->isChanged = true;
}

bool SettingsStore::isChanged() const
{
    return document->isChanged;
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
    // A name may hold bytes that are not UTF-8; dump() would throw for them. Indented, because people edit the file.
    file.write(document->root.dump(2, ' ', false, Json::error_handler_t::replace));
    file.write("\n");
    return file.commit() == 0;
}
