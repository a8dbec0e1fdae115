#pragma once

#include "Model/TypeModel.h"

#include <unordered_map>

/// Tells which repeated fields stay single in a model that puts a table into one record only: the first in which the
/// element repeats. An element that has the table's name prevents it everywhere.
class RepeatedFields
{
public:
    explicit RepeatedFields(const TypeModel& model) : model(model) {}

    /// Returns whether `element` stays single in `record`, where it repeats. Call it once all elements are declared,
    /// for the records in the order in which they were declared.
    bool staysSingle(const Element& element, const Element& record)
    {
        const auto [first, isNew] = records.try_emplace(&element, &record);
        if (isNew && model.findElement("t_" + element.queryBaseName()))
            first->second = nullptr;
        return first->second != &record;
    }

private:
    const TypeModel& model;
    std::unordered_map<const Element*, const Element*> records; // the one with the table; null if there is no table
};
