#pragma once

#include "Import/Dtd/DTDText.h"
#include "Import/Full/ContentModel.h"
#include "Model/RepeatedFields.h"

#include <deque>
#include <map>
#include <unordered_set>

/// Reports the repetitions in which the model and a DTD differ. The literal reading takes each name that a record
/// mentions again for a repeated one, although `(b, c) | (b, d)` has one b; and the model makes one table for each
/// element. The content model of the declaration around a mention decides what the DTD means, as in the full reading.
class DTDRepetitions
{
public:
    /// The text must outlive this object.
    explicit DTDRepetitions(std::string_view text) : text(text) {}

    /// A field that a record mentions again, or with a mark that repeats it.
    struct Field
    {
        const Element* element; ///< this and `record` belong to the model, which must live until reportAll() returns
        const Element* record;
        std::size_t place; ///< offset of the name in the text
        bool isMarked;
        std::size_t attribute; ///< offset of the record's attribute that is the same field; kNowhere if there is none
    };

    /// Adds a field for reportAll(), in the order in which records are declared.
    void add(const Field& field) { fields.push_back(field); }

    /// Reports the fields that repeat but stay single, and those that don't repeat but become tables. Call it once,
    /// after all elements are declared.
    void reportAll(const TypeModel& model, TextPlaces& places, SourceReport& report);

private:
    // The repetitions of an ELEMENT declaration.
    struct Declaration
    {
        std::size_t end;                               // at the next '<', because statements may run beyond their '>'
        std::unordered_set<std::string_view> repeated; // its names that may occur more than once
    };

    bool mayRepeat(std::size_t place);
    Declaration read(std::size_t start);

    std::string_view text;
    std::deque<Field> fields;                        // not a vector, which would copy its many elements as it grows
    ContentModel content;                            // reused for each declaration
    std::map<std::size_t, Declaration> declarations; // by start
};
