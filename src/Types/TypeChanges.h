#pragma once

#include "Base/Text.h"

#include <span>
#include <vector>

class TypeStructure;

/// One difference between the old and the new types.
struct TypeChange
{
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

/// Returns whether a change breaks those programs. An added field breaks none, because the model doesn't say whether a
/// field is required.
bool breaks(TypeChange::Id id, Reader reader);

/// Returns the change with that id, idCount if there is none.
TypeChange::Id changeNamed(std::string_view text);

/// One folder for each side. Types are compared by their names below it.
struct TypeFolders
{
    CString before;
    CString after;

    bool areEqual() const { return before == after; }
};

/// Returns the deepest folders that contain all types of each side, if the sides have no full name in common, but names
/// below these folders: another base path or main element. Returns two empty folders otherwise.
TypeFolders movedFolders(const TypeStructure& before, const TypeStructure& after);

/// Returns the differences, in the order of `after`, removed types last. Types are matched by full name, with
/// `folders.before` replaced by `folders.after`, and parts by name. Descriptions and the order of parts are ignored.
std::vector<TypeChange> typeChanges(const TypeStructure& before, const TypeStructure& after,
                                    const TypeFolders& folders = {});
