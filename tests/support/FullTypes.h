#pragma once

#include "Import/Full/FullMessage.h"
#include "Types/ReportText.h"

/// Returns the types of a full import in order: "record(field:type ...)", "enumeration{constant|...}" and
/// "table[component]". Types of the import's own folder have short names.
inline CString fullTypesOf(MsgBase& message)
{
    const auto known = [](const Element& element) {
        const CString type = element.queryKnownType();
        return type.starts_with(element.queryPath()) ? type.substr(element.queryPath().size()) : type;
    };
    CString text;
    message.beginEnum();
    while (const Element* type = message.enumNext()) {
        const bool isEnumeration = type->queryType() == Element::typeEnum;
        text += (text.empty() ? "" : " ") + type->queryName();
        if (type->queryType() == Element::typeTable) {
            text += "[" + known(*type) + "]";
            continue;
        }
        CString children;
        for (const Element* child : type->queryChildren())
            children += (children.empty() ? ""
                         : isEnumeration  ? "|"
                                          : " ") +
                        child->queryName() + (isEnumeration ? "" : ":" + known(*child));
        text += isEnumeration ? "{" + children + "}" : "(" + children + ")";
    }
    return text;
}

/// Returns the report of an import as text, without the folder of its files, which differs in each run, and without the
/// last line, the totals.
inline CString reportOf(MsgBase& message, const CString& folder)
{
    CString text;
    writeReport(message, ReportFormat::text, [&text](std::string_view piece) { text += piece; });
    text.pop_back();
    text.erase(text.rfind('\n') + 1);
    for (std::size_t at; (at = text.find(folder)) != CString::npos;)
        text.erase(at, folder.size());
    return text;
}

/// Returns the counts of an import's report: the losses in one line, then each kind of detail.
inline CString countsOf(const MsgBase& message)
{
    CString text = message.queryReport().lossesInWords();
    for (const CString& detail : message.queryReport().countsInWords(SourceReport::detail))
        text += "; " + detail;
    return text;
}
