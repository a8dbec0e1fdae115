#pragma once

#include "Model/Element.h"
#include "Ui/ListRows.h"

/// The picture and the word for the kind of a type of its own: record, table, array, enumeration.
const ListRows::Mark& kindMark(Element::ElementTypes type);
