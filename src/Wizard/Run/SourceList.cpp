#include "Wizard/Run/SourceList.h"

#include "Import/MsgBase.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

// The field for one file also takes several, in the form that file dialogs use: "a.xsd" "b.xsd". Any other text is one
// name, so that every file name can be given.
namespace {

// Returns the quoted name at `position` and moves `position` past it; "" if there is none.
CString nextName(const CString& text, std::size_t& position)
{
    CString name;
    if (position >= text.size() || text[position] != '"')
        return name;
    while (++position < text.size()) {
        if (text[position] == '"' && (++position == text.size() || text[position] != '"'))
            return name;
        name += text[position];
    }
    return {}; // no closing quote
}

} // namespace

std::vector<CString> sourcesIn(const CString& text)
{
    std::error_code failure;
    if (!text.starts_with('"') || std::filesystem::exists(text, failure))
        return {text};
    std::vector<CString> names;
    for (std::size_t position = 0; position < text.size();) {
        const CString name = nextName(text, position);
        if (name.empty() || (position < text.size() && text[position] != ' '))
            return {text};
        names.push_back(name);
        position = std::min(text.find_first_not_of(' ', position), text.size());
    }
    return names.size() > 1 ? names : std::vector<CString>{text};
}

std::vector<CString> absoluteSourcesIn(const CString& text)
{
    std::vector<CString> names;
    if (!text.empty())
        for (const CString& name : sourcesIn(text))
            names.push_back(absoluteName(name));
    return names;
}

CString textOfSources(const std::vector<CString>& names)
{
    if (names.size() == 1)
        return names.front();
    CString text;
    for (const CString& name : names) {
        text += text.empty() ? "\"" : " \"";
        for (const char c : name)
            text.append(c == '"' ? 2 : 1, c);
        text += '"';
    }
    return text;
}

// setFurtherFiles({}) returns whether the importer takes further files.
bool readsSeveral(const MsgUIDescriptor& importer)
{
    return importer.hasFull() || std::unique_ptr<MsgBase>(importer.create())->setFurtherFiles({});
}

CString absoluteName(const CString& fileName)
{
    std::error_code failure;
    const std::filesystem::path full = std::filesystem::absolute(fileName, failure);
    return failure ? fileName : full.lexically_normal().string();
}

bool isFolder(const CString& name)
{
    std::error_code failure;
    return std::filesystem::is_directory(name, failure);
}
