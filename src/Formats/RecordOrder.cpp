#include "Formats/RecordOrder.h"

#include <algorithm>

RecordOrder::RecordOrder(const SourceTypes& types) :
    types(types), component(types.records.size(), SourceTypes::kNone), number(types.records.size()),
    lowest(types.records.size())
{}

void RecordOrder::visit(Index start)
{
    if (number[start] != 0)
        return;
    enter(start);
    while (!steps.empty()) {
        Step& top = steps.back();
        const auto fields = types.fieldsOf(top.record);
        if (top.nextField == fields.size()) {
            leave(top.record);
            continue;
        }
        const SourceTypes::Type type = fields[top.nextField++].type;
        if (type.kind != SourceTypes::kindRecord)
            continue;
        if (number[type.index] == 0)
            enter(type.index);
        else if (component[type.index] == SourceTypes::kNone)
            lowest[top.record] = std::min(lowest[top.record], number[type.index]);
    }
}

void RecordOrder::enter(Index record)
{
    number[record] = lowest[record] = ++lastNumber;
    pending.push_back(record);
    steps.push_back({record, 0});
}

void RecordOrder::leave(Index record)
{
    order.push_back(record);
    steps.pop_back();
    if (!steps.empty())
        lowest[steps.back().record] = std::min(lowest[steps.back().record], lowest[record]);
    if (lowest[record] != number[record])
        return;
    Index member;
    do {
        member = pending.back();
        pending.pop_back();
        component[member] = components;
    } while (member != record);
    ++components;
}
