#include "Import/Dtd/DTDMsg.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <utility>

// Reads ATTLIST statements.
namespace {

// Returns the name of an attribute's field. Its two names may differ in encoding, so each is converted by itself.
CString fieldNameOf(std::string_view element, std::string_view attribute)
{
    return toXmlText(element) + "_" + toXmlText(attribute);
}

} // namespace

// Reads pairs of element and attribute name, and skips type and default by their usual length. The rest is read as the
// next pair, so the words of other types and defaults are taken for names. If that isn't reported, an attribute may
// still be lost: in what is skipped, or after a '>' in a default.
void DTDMessage::doParseAttlist(std::size_t start, std::size_t end)
{
    const std::string_view statement = text->whole.substr(start, end - start);
    std::string_view rest = kDtdBlank.trim(statement);
    const bool isNew = std::exchange(text->lastAttlist, start) != start;
    bool isUsual = true; // so are all types and defaults
    bool isTold = false; // a type or default has been taken for an element
    const auto takeWord = [&rest](std::string_view& word) {
        const std::size_t blank = kDtdBlank.in(rest);
        if (blank == kNowhere)
            return false;
        word = rest.substr(0, blank);
        rest = kDtdBlank.trim(rest.substr(blank + 1));
        return true;
    };
    const auto drop = [&](std::string_view usual) {
        isUsual = isUsual && rest.substr(0, usual.size()) == usual;
        rest = kDtdBlank.trim(rest.substr(std::min(usual.size(), rest.size())));
    };
    // One remaining character is the '>' of the statement.
    for (std::size_t left = statement.size(); left >= 2; left = rest.size()) {
        reportAt(end - left);
        std::string_view element, attribute;
        if (!takeWord(element) || !takeWord(attribute)) {
            const CString words = fillText(loadText(IDS_DTD_STATEMENT), statement);
            const SourcePlace place = statementPlace(start);
            report.add(SourceReport::statementUnreadable, place, statement);
            showFault(words, report.faultAt(place, words, true));
            return;
        }
        if (attribute == kCdata || attribute == kImplied || attribute == kPcdata)
            continue;
        DTDElement& field = addAttribute(element, attribute);
        DTDElement& record = addPiece(element, nullptr);
        record.addChild(&field, placeOf(attribute), memory);
        field.setAttribute(record, placeOf(attribute));
        if (left < statement.size()) {
            note(SourceReport::inventedType, record, placeOf(element), element);
            field.isNoted = true;
            isTold = true;
        }
        drop("CDATA ");
        drop(kImplied);
    }
    if (isNew && !isUsual && !isTold)
        noteLost(kDtdBlank.trim(text->whole.substr(start)));
}

// Reports the attributes of an ATTLIST that became no fields; `attlist` begins with its element.
void DTDMessage::noteLost(std::string_view attlist)
{
    const std::string_view element = dtdNameAt(attlist);
    for (const std::string_view attribute : attributesOf(attlist))
        if (!dtdElements.find(fieldNameOf(element, attribute)))
            report.add(SourceReport::declarationSkipped, text->places.at(placeOf(attribute)), attribute);
}

// Returns the entry of an attribute.
DTDElement& DTDMessage::addAttribute(std::string_view element, std::string_view attribute)
{
    joined.assign(element).append("_").append(attribute);
    DTDElement* field = dtdElements.find(joined);
    if (!field) {
        if (!isXmlText(joined))
            joined = fieldNameOf(element, attribute);
        field = &addDTDElement(memory.keep(joined), placeOf(attribute), nullptr);
        field->isAttribute = true;
    }
    return *field;
}
