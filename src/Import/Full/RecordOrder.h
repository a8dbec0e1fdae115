#pragma once

#include "Base/StrongComponents.h"
#include "Import/Full/SourceTypes.h"

/// The graph of records: each field that holds a record is an edge. Tables and enumerations are not part of it, because
/// they are declared with the record that uses them. It is made before SourceNames makes tables.
struct RecordLinks
{
    const SourceTypes& types;

    /// Each field counts as a link; target() returns kNone for one that holds no record.
    std::size_t degree(SourceTypes::Index record) const { return types.records[record].fieldCount; }
    SourceTypes::Index target(SourceTypes::Index record, std::size_t field) const
    {
        const SourceTypes::Type type = types.fieldsOf(record)[field].type;
        return type.kind == SourceTypes::kindRecord ? type.index : SourceTypes::kNone;
    }
};

/// Orders records so that components come before their users, and finds cycles of records. Only inside a cycle may a
/// record come before a component of its own.
using RecordOrder = StrongComponents<RecordLinks>;
