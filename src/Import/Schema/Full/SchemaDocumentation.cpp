#include "Import/Schema/Full/SchemaDocumentation.h"

#include "Import/Full/Descriptions.h"

// The text of each open element is collected, and appended to that of its parent at the end tag. Every text is cut once
// it is long enough for a description, so that deep nesting doesn't multiply the work.

namespace {

// Appends text with each run of white space as one space, also at the start, because other text may come before it.
void appendPart(CString& out, std::string_view text)
{
    if (out.empty() && !text.empty() && kWhitespace.find(text.front()) != kWhitespace.npos)
        out = ' ';
    appendCollapsed(out, text);
}

} // namespace

void SchemaDocumentation::begin()
{
    whole.clear();
    open = startTags = firstNumber = 0;
    holdsText = false;
    definition.clear();
    firstText.clear();
}

void SchemaDocumentation::enter(std::string_view local)
{
    if (open == parts.size())
        parts.emplace_back();
    Part& part = parts[open++];
    part.text.clear();
    part.number = ++startTags;
    part.holdsText = false;
    part.isDefinition = local == "Definition" || local == "definition";
}

// Ends an element. Of nested elements that contain text directly, the outermost is used; it has the smallest number,
// but ends last.
void SchemaDocumentation::leave()
{
    const Part& part = parts[--open];
    const std::string_view words = trimmed(part.text);
    if (part.isDefinition && definition.empty())
        definition = words;
    const bool isSentence = part.holdsText && words.find(' ') != words.npos;
    if (isSentence && (firstNumber == 0 || part.number < firstNumber)) {
        firstNumber = part.number;
        firstText = words;
    }
    if (open > 0)
        appendPart(parts[open - 1].text, part.text);
}

void SchemaDocumentation::text(std::string_view text)
{
    appendCollapsed(whole, text);
    if (open > 0)
        appendPart(parts[open - 1].text, text);
    bool& isHeld = open > 0 ? parts[open - 1].holdsText : holdsText;
    isHeld = isHeld || !trimmed(text).empty();
}

std::string_view SchemaDocumentation::query() const
{
    const CString& structured = definition.empty() ? firstText : definition;
    return shortDescription(holdsText || structured.empty() ? whole : structured);
}
