#include "Types/IndentedDocument.h"

// Cuts at each '>' instead of parsing, which is enough for documents of this form.
CString indentedDocument(std::string_view document)
{
    CString lines;
    std::size_t depth = 0;
    while (!document.empty()) {
        const std::size_t end = document.find('>');
        const std::string_view tag = document.substr(0, end == document.npos ? end : end + 1);
        document.remove_prefix(tag.size());
        if (tag.starts_with("</") && depth > 0)
            --depth;
        lines.append(lines.empty() ? "" : "\n").append(2 * depth, ' ').append(tag);
        if (!tag.starts_with("</") && !tag.ends_with("/>"))
            ++depth;
    }
    return lines;
}
