#pragma once

#include "Platform/Ui/ListRows.h"
#include "Utils/Element.h"

/// The picture and the word for the kind of a type of its own: record, table, array, enumeration.
const ListRows::Mark& kindMark(Element::ElementTypes type);
