#include "Base/Json.h"

#include <nlohmann/json.hpp>

CString jsonText(std::string_view text)
{
    CString out;
    appendJson(out, text);
    return out;
}

// Fast path: nearly all texts are names, in which only the backslash of a folder needs an escape.
void appendJson(CString& out, std::string_view text)
{
    if (!isPlainXmlText(text)) {
        // dump() throws for invalid UTF-8, which toXmlText() never returns.
        out += nlohmann::json(toXmlText(text)).dump();
        return;
    }
    out += '"';
    for (std::size_t at; (at = text.find('\\')) != text.npos; text.remove_prefix(at + 1))
        out.append(text.substr(0, at)).append("\\\\");
    out.append(text) += '"';
}
