#pragma once

#include "Model/Element.h"
#include "Ui/ListRows.h"

/// Returns the icon and the name of a type's kind: record, table, array or enumeration.
const ListRows::Mark& kindMark(Element::ElementTypes type);
