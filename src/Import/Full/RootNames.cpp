#include "Import/Full/RootNames.h"

#include <algorithm>

namespace {

using Index = SourceTypes::Index;

constexpr std::size_t kShown = 20; // how many candidates a refusal names

[[noreturn]] void refuse(const CString& words)
{
    throw SourceRefusal{CString(1, static_cast<char>(words[0] - 'a' + 'A')) + words.substr(1) + ".", {"", words}};
}

std::vector<Index> candidatesCalled(std::string_view name, const std::string_view* uri, const SourceTypes& types)
{
    std::vector<Index> found;
    for (Index i = 0; i < types.candidates.size(); ++i)
        if (types.candidates[i].name == name && (!uri || types.candidates[i].uri == *uri))
            found.push_back(i);
    return found;
}

// Keeps those that a test holds for, if it does for any.
template <class Test>
void prefer(std::vector<Index>& found, const SourceTypes& types, Test test)
{
    if (std::ranges::any_of(found, [&](Index i) { return test(types.candidates[i]); }))
        std::erase_if(found, [&](Index i) { return !test(types.candidates[i]); });
}

} // namespace

std::string_view localNameOf(std::string_view root)
{
    if (root.starts_with('{') && root.find('}') != std::string_view::npos)
        return root.substr(root.rfind('}') + 1);
    return root.substr(root.rfind(':') + 1);
}

SourceTypes::Index candidateCalled(std::string_view root, const SourceTypes& types)
{
    std::vector<Index> found = candidatesCalled(root, nullptr, types);
    const std::string_view local = localNameOf(root);
    if (found.empty() && local != root) {
        std::string_view space = root.substr(0, root.size() - local.size() - 1);
        const auto prefix =
            std::ranges::find(types.prefixes, space, &std::pair<std::string_view, std::string_view>::first);
        if (root.starts_with('{'))
            space.remove_prefix(1);
        else if (prefix != types.prefixes.end())
            space = prefix->second;
        else
            refuse("there is no prefix called " + CString(space));
        found = candidatesCalled(local, &space, types);
    }
    prefer(found, types, [](const auto& candidate) { return candidate.source != SourceTypes::kNone; });
    prefer(found, types, [](const auto& candidate) { return !candidate.isType; });
    if (found.empty())
        refuse("there is no element called " + CString(root));
    if (found.size() == 1)
        return found.front();
    CString words = "there are several elements called " + CString(root);
    for (std::size_t i = 0; i < std::min(found.size(), kShown); ++i) {
        const SourceTypes::Candidate& candidate = types.candidates[found[i]];
        words += (i == 0 ? ": {" : ", {") + CString(candidate.uri) + "}" + CString(candidate.name);
    }
    refuse(words);
}
