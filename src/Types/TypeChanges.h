#pragma once

#include "Base/Text.h"

#include <span>
#include <string_view>
#include <vector>

class TypeStructure;

/// One difference between the old and the new types. Its texts are copies, so it stays valid without the types.
struct TypeChange
{
    /// The kinds of changes, in the order of their table. New ones go before idCount.
    enum Id
    {
        typeAdded,
        typeRemoved,
        kindChanged, ///< for example, a record that became a table
        fieldAdded,
        fieldRemoved,
        constantAdded,
        constantRemoved,
        contentChanged,    ///< the type of a field, or the component of a table or an array
        repetitionChanged, ///< for example, a field that became a table
        folderChanged,     ///< of all types; reported once, before the rest
        idCount
    };

    Id id;
    CString what; ///< what was added or removed ("record", "field" ...), or what changed: "kind", "type", "repetition"
    CString type; ///< the full name of the type
    CString part = {}; ///< the name of the field or constant; empty for the type itself and for a component
    CString from = {}; ///< the old value, if removed or changed; empty for types and constants
    CString to = {};   ///< the new value, if added or changed; empty for types and constants
};

/// The programs that a change may break.
enum class Reader
{
    readers, ///< know the old types and read messages of the new ones
    writers, ///< write messages of the old types to programs that know the new ones
    both
};

/// Returns the id of a change as the command line takes it ("field-removed").
const char* idOf(TypeChange::Id id);

/// Returns whether a change breaks those programs; for `both`, whether it breaks any of them. An added field breaks
/// none, because the model doesn't say whether a field is required.
bool breaks(TypeChange::Id id, Reader reader);

/// Returns the change with that id, idCount if there is none. Ids never change, because scripts pass them to the
/// command line.
TypeChange::Id changeNamed(std::string_view text);

/// One folder for each side. Types are compared by their names below it.
struct TypeFolders
{
    CString before;
    CString after;

    /// Returns whether nothing has moved, as with two empty folders.
    bool areEqual() const { return before == after; }
};

/// Returns the deepest folder that contains all types of these full names, with a final backslash; empty if there is
/// none. Linear in the names.
CString commonFolder(std::span<const std::string_view> names);

/// Returns the deepest folders that contain all types of each side, if the sides have no full name in common, but names
/// below these folders: another base path or main element. Returns two empty folders otherwise. Without this, all types
/// of a moved import would count as removed and added.
TypeFolders movedFolders(const TypeStructure& before, const TypeStructure& after);

/// Returns the differences, in the order of `after`, removed types last, in the order of their declaration. Types are
/// matched by full name, with `folders.before` replaced by `folders.after`, and parts by name. Descriptions and the
/// order of parts are ignored. Types of `after` that are known to be equal, by number, are not compared; `before` need
/// not have them, unless they are tables or arrays.
/// `before` and `after` must be different objects, because the parts of both are used at the same time. Of several
/// types of one name, the first is compared. Linear in the parts of both sides, n log n in those of a type that
/// differs.
std::vector<TypeChange> typeChanges(const TypeStructure& before, const TypeStructure& after,
                                    const TypeFolders& folders = {}, const std::vector<bool>& areEqual = {});
