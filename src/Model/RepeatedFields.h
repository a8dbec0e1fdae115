#pragma once

#include "Model/TypeModel.h"

#include <vector>

/// Finds the repeated fields that stay single in a model that puts a table into one record only: the first in which the
/// element repeats. An element with the table's name prevents the table everywhere. Used before TypeModel::arrange(),
/// which follows this rule, to report the fields as losses.
class RepeatedFields
{
public:
    explicit RepeatedFields(const TypeModel& model) : model(model) {}

    /// Returns whether `element` stays single in the record with the number `record`, in which it repeats. Call it once
    /// all elements are declared, for the records in the order in which they were declared.
    bool staysSingle(const Element& element, std::uint32_t record)
    {
        const std::uint32_t number = element.queryNumber();
        if (number >= records.size())
            records.resize(number + 1, kUnmet);
        if (records[number] == kUnmet)
            records[number] = model.findElement("t_" + element.queryBaseName()) ? kNoTable : record;
        return records[number] != record;
    }

private:
    static constexpr std::uint32_t kUnmet = Element::kNoNumber, kNoTable = kUnmet - 1;

    const TypeModel& model;
    std::vector<std::uint32_t> records; // by element, the number of the record with its table
};
