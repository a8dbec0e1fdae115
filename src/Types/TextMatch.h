#pragma once

#include "Base/Text.h"
#include "Types/TypeChanges.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

class MsgBase;

/// The types of an import that a document has word for word, and what remains to be compared.
struct TextMatch
{
    std::vector<bool> isEqual; ///< by the types of the import: whether the document has the type
    CString rest; ///< a document of its other types and all its tables and arrays; empty if it has no other types
    TypeFolders folders; ///< if all types are in another folder and equal otherwise; `isEqual` is then empty

    /// Returns whether import and document have the same types.
    bool areAllEqual() const { return rest.empty() && std::ranges::count(isEqual, false) == 0; }
};

/// Compares the types of an import with those of a document as texts, without parsing it. Returns nothing if the rest
/// would not give the same changes as the whole document: it is not in the form that this program writes, it has no
/// type of the import, or a name occurs twice in it. Moves the importer's cursor. Linear.
std::optional<TextMatch> matchTexts(MsgBase& message, std::string_view document);

/// Returns whether a document is in the form that this program writes.
bool isOfThisProgram(std::string_view document);
