#pragma once

#include "Base/StrongComponents.h"
#include "Import/Full/SourceTypes.h"

/// The links of a record lead to the records that its fields hold.
struct RecordLinks
{
    const SourceTypes& types;

    std::size_t degree(SourceTypes::Index record) const { return types.records[record].fieldCount; }
    SourceTypes::Index target(SourceTypes::Index record, std::size_t field) const
    {
        const SourceTypes::Type type = types.fieldsOf(record)[field].type;
        return type.kind == SourceTypes::kindRecord ? type.index : SourceTypes::kNone;
    }
};

/// Puts records in order, components before what uses them, and finds those that hold each other. Only there does one
/// come before a component of its own.
class RecordOrder : public StrongComponents<RecordLinks>
{
public:
    explicit RecordOrder(const SourceTypes& types) : StrongComponents(RecordLinks{types}, types.records.size()) {}
};
