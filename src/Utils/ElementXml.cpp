#include "Resources/StringTable.h"
#include "Utils/Element.h"

namespace {

void addAttribute(CString& out, std::string_view name, std::string_view value)
{
    out.append(" ").append(name).append("=\"");
    const CString fit = isXmlText(value) ? CString() : toXmlText(value);
    for (const char c : fit.empty() ? value : fit) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\t':
            out += "&#9;";
            break;
        case '\n':
            out += "&#10;";
            break;
        case '\r':
            out += "&#13;";
            break;
        default:
            out += c;
        }
    }
    out += '"';
}

void addDescribed(CString& out, std::string_view tag, std::string_view name, std::string_view description)
{
    out.append("<").append(tag);
    addAttribute(out, "NAME", name);
    if (!description.empty())
        addAttribute(out, "DESCRIPTION", description);
}

} // namespace

void Element::asXML(CString& out)
{
    out.clear();
    addDescribed(out, "BROKERTYPEDESCRIPTION", path + name, description);
    out += '>';
    switch (type) {
    case typeEnum:
        out += children.size() ? "<ENUM>" : "<ENUM/>";
        for (const Element* child : children) {
            addDescribed(out, "CONSTANT", child->name, child->description);
            out += "/>";
        }
        out += children.size() ? "</ENUM>" : "";
        break;
    case typeArray:
        if (size.empty())
            size = "5";
        out += "<ARRAY";
        addAttribute(out, "SIZE", size);
        out += "><COMPONENT";
        addAttribute(out, "TYPE", knownType.empty() ? path + baseName : knownType);
        out += "/></ARRAY>";
        break;
    case typeTable:
        out += "<TABLE><COMPONENT";
        addAttribute(out, "TYPE", knownType.empty() ? path + baseName : knownType);
        out += "/></TABLE>";
        break;
    case typeRow: {
        const std::size_t before = out.size();
        out += "<ROW>";
        for (const Element* child : children) {
            switch (child->type) {
            case typeRow:
                addDescribed(out, "FIELD", child->name, child->description);
                addAttribute(out, "TYPE", path + child->baseName);
                break;
            case typeTable:
                addDescribed(out, "FIELD", child->baseName, fillText(loadText(IDS_AUTOMATIC), child->baseName));
                addAttribute(out, "TYPE", path + child->name);
                break;
            case typeString:
            case typeNumber:
            case typeDate:
            case typeOther:
                addDescribed(out, "FIELD", child->name, child->description);
                addAttribute(out, "TYPE",
                             child->type == typeString   ? "String"
                             : child->type == typeNumber ? "Number"
                             : child->type == typeDate   ? "Time"
                                                         : child->knownType);
                break;
            default:
                continue;
            }
            out += "/>";
        }
        if (out.size() == before + 5)
            out.replace(before, 5, "<ROW/>");
        else
            out += "</ROW>";
        break;
    }
    default:
        out.pop_back();
        out += "/>";
        return;
    }
    out += "</BROKERTYPEDESCRIPTION>";
}
