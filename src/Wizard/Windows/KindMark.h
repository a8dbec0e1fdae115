#pragma once

#include "Model/Element.h"
#include "Ui/ListRows.h"

/// Returns the icon and the name of a type's kind: record, table, array or enumeration. Other kinds have none and must
/// not be passed. The mark lives until the program ends; call it in the window's thread.
const ListRows::Mark& kindMark(Element::ElementTypes type);
