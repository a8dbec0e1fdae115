#pragma once

#include "Base/Text.h"

#include <span>
#include <vector>

class TypeStructure;

/// One difference between the types that there were and those that there are.
struct TypeChange
{
    enum Id
    {
        typeAdded,
        typeRemoved,
        kindChanged, ///< a record that is a table now, or the like
        fieldAdded,
        fieldRemoved,
        constantAdded,
        constantRemoved,
        contentChanged,    ///< the type of a field, or of what a table or an array holds
        repetitionChanged, ///< a table where a field was, or the like
        folderChanged,     ///< of all types; its own line before the rest
        idCount
    };

    Id id;
    CString what; ///< what it is ("record", "field", "constant" ...), or what of it has changed: "kind", "type",
                  ///< "repetition"
    CString type; ///< the full name of the type
    CString part; ///< the name of its field or constant; empty for the type itself, and for what a table holds
    CString from; ///< for what was removed or changed; empty for a type and for a constant
    CString to;   ///< the same for what was added or changed
};

/// Whose programs a change of types may break.
enum class Reader
{
    readers, ///< read messages of the new types and know the old ones
    writers, ///< write messages of the old types for who knows the new ones
    both
};

/// The word for a change, by which it is allowed on the command line ("field-removed").
const char* idOf(TypeChange::Id id);

/// Whether a change breaks those programs. Optionality has no place in the model, so a field that was added does not.
bool breaks(TypeChange::Id id, Reader reader);

/// The change of that word; idCount if there is none.
TypeChange::Id changeCalled(std::string_view text);

/// A folder of each side. Types are compared by their names below it.
struct TypeFolders
{
    CString before;
    CString after;

    bool areEqual() const { return before == after; }
};

/// The deepest folder that holds all types of each side, where that explains why the sides have no full name in common:
/// another base path or main element. Two empty folders in any other case.
TypeFolders movedFolders(const TypeStructure& before, const TypeStructure& after);

/// How the types `after` differ from `before`, in the order of `after`, removed types last. Types are told by their
/// full names, those in `folders.before` by the name that they have in `folders.after`, parts by theirs; descriptions
/// and the order of parts count for nothing.
std::vector<TypeChange> typeChanges(const TypeStructure& before, const TypeStructure& after,
                                    const TypeFolders& folders = {});
