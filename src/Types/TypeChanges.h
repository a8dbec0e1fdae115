#pragma once

#include "Base/Text.h"

#include <vector>

class TypeStructure;

/// One difference between the types that there were and those that there are.
struct TypeChange
{
    enum Kind
    {
        added,
        removed,
        changed
    };

    Kind kind;
    CString what; ///< what it is ("record", "field", "constant" ...), or what of it has changed: "kind", "type",
                  ///< "repetition"
    CString name; ///< the type's full name; for a part of it "." and the part's name behind that
    CString from; ///< for what was removed or changed; "" for a type and for a constant
    CString to;   ///< the same for what was added or changed
};

/// How the types `after` differ from `before`, in the order of `after`, what is gone behind the rest. Types are told by
/// their full names, parts by theirs; descriptions and the order of parts count for nothing.
std::vector<TypeChange> typeChanges(const TypeStructure& before, const TypeStructure& after);

/// True when who reads the types as they were can read them still: there are only additions.
bool isCompatible(const std::vector<TypeChange>& changes);
