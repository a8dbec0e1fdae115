#include "Import/Full/RootNames.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace {

using Index = SourceTypes::Index;

constexpr std::size_t kShown = 20; // the most candidates that an error lists; a name can have thousands

// Throws the error with `words`: as a sentence for a message box, and as they are for a diagnostic.
[[noreturn]] void refuse(const CString& words)
{
    throw SourceRefusal{CString(1, static_cast<char>(words[0] - 'a' + 'A')) + words.substr(1) + ".", {"", words}};
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

std::vector<CString> rootNamesOf(const SourceTypes& types, const std::vector<Index>& candidates)
{
    std::unordered_map<std::string_view, std::string_view> uris; // the first one by name
    std::unordered_set<std::string_view> ambiguous;
    for (const Index i : candidates)
        if (const auto& [name, uri] = *uris.try_emplace(types.candidates[i].name, types.candidates[i].uri).first;
            uri != types.candidates[i].uri)
            ambiguous.insert(name);
    std::vector<CString> names;
    for (const Index i : candidates) {
        const SourceTypes::Candidate& candidate = types.candidates[i];
        const CString name(candidate.name);
        names.push_back(ambiguous.contains(candidate.name) ? "{" + CString(candidate.uri) + "}" + name : name);
    }
    return names;
}

// The sort is stable, so candidates of one name stay in the order of declaration.
RootNames::RootNames(const SourceTypes& types) : types(types)
{
    for (Index i = 0; i < types.candidates.size(); ++i)
        byName.push_back(i);
    std::ranges::stable_sort(byName, {}, [&](Index i) { return types.candidates[i].name; });
}

std::vector<SourceTypes::Index> RootNames::allCalled(std::string_view name) const
{
    const auto nameAt = [&](Index i) { return types.candidates[i].name; };
    return {std::ranges::lower_bound(byName, name, {}, nameAt), std::ranges::upper_bound(byName, name, {}, nameAt)};
}

// Collects all candidates that `root` may mean, and narrows them down until one is left.
SourceTypes::Index RootNames::find(std::string_view root) const
{
    std::vector<Index> found = allCalled(root);
    const std::string_view local = localNameOf(root);
    // The name itself comes first, because names in a DTD may contain colons, and those in a schema dots.
    if (const std::size_t dot = root.rfind('.'); found.empty() && local == root && dot != root.npos) {
        found = allCalled(root.substr(dot + 1));
        std::erase_if(found, [&](Index i) { return types.candidates[i].uri != root.substr(0, dot); });
    } else if (found.empty() && local != root) {
        std::string_view space = root.substr(0, root.size() - local.size() - 1);
        std::set<std::string_view> uris; // each source may declare the prefix for another namespace
        if (root.starts_with('{'))
            uris.insert(space.substr(1));
        else
            for (const auto& [prefix, uri] : types.prefixes)
                if (prefix == space)
                    uris.insert(uri);
        if (uris.empty())
            refuse("there is no prefix called " + CString(space));
        found = allCalled(local);
        std::erase_if(found, [&](Index i) { return !uris.contains(types.candidates[i].uri); });
    }
    // Elements of the sources come before those of other documents, and elements before types.
    prefer(found, types, [](const auto& candidate) { return candidate.source != SourceTypes::kNone; });
    prefer(found, types, [](const auto& candidate) { return !candidate.isType; });
    prefer(found, types, [](const auto& candidate) { return candidate.message != SourceTypes::kNone; });
    // A type that several sources refer to is a candidate of each.
    std::set<std::tuple<SourceTypes::Kind, Index, std::uint16_t, std::string_view>> met;
    std::erase_if(found, [&](Index i) {
        const SourceTypes::Candidate& candidate = types.candidates[i];
        return !met.emplace(candidate.type.kind, candidate.type.index, candidate.repeats, candidate.uri).second;
    });
    if (found.empty())
        refuse("there is no element called " + CString(root));
    if (found.size() == 1)
        return found.front();
    CString words = CString("there are several ") + (types.candidates[found.front()].isType ? "types" : "elements") +
                    " called " + CString(root);
    for (std::size_t i = 0; i < std::min(found.size(), kShown); ++i) {
        const SourceTypes::Candidate& candidate = types.candidates[found[i]];
        words += (i == 0 ? ": {" : ", {") + CString(candidate.uri) + "}" + CString(candidate.name);
    }
    refuse(words);
}
