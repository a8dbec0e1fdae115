#pragma once

#include "Import/MsgBase.h"

/// Returns the types of an import in order: "NAME(CHILD:KIND ...)". Kinds are those of Element::ElementTypes as letters
/// of "EARtSNTO", followed by "=" and the known type, and by an array's size in brackets.
inline CString typesOf(MsgBase& message)
{
    const auto kindOf = [](const Element& element) {
        CString kind(1, "EARtSNTO"[element.queryType()]);
        if (!CString(element.queryKnownType()).empty())
            kind.append("=").append(element.queryKnownType());
        return element.querySize().empty() ? kind : kind + "[" + CString(element.querySize()) + "]";
    };
    CString text;
    message.beginEnum();
    while (const Element* type = message.enumNext()) {
        text += (text.empty() ? "" : " ") + CString(type->queryName()) + ":" + kindOf(*type) + "(";
        for (const Element* child : type->queryChildren()) {
            text += text.ends_with('(') ? "" : " ";
            text += CString(child->queryName()) + ":" + kindOf(*child);
        }
        text += ")";
    }
    return text;
}
