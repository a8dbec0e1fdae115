#include "Import/Dtd/DTDMsg.h"

#include "Base/Progress.h"
#include "Base/Utf8.h"
#include "Import/Dtd/DTDNotes.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <array>
#include <utility>

// Three passes, each linear in the text (or in the overlapping statements, which are bounded): DTDNotes reports what is
// not understood, scan() registers names and their children, and declareAll() declares records and fields. Records come
// last, because their folder has the name of the main type. Names are views of the text; docs/adr/views-of-a-dtd.md has
// the reasons and figures.
namespace {

constexpr std::string_view kCommentStart = "<!--", kCommentEnd = "-->";
constexpr CharSet kFieldTrim(" ()\r\n\t");
constexpr CharSet kSeparators(",|&");
constexpr CharSet kMarks("*+?");
constexpr CharSet kMarksAndBlanks("*+? \t\r\n");
constexpr CharSet kMarkup("<>%");
constexpr DTDKeyword kElement("ELEMENT"), kAttlist("ATTLIST");
constexpr CharSet kNameEnd(" ("); // other white space belongs to the name, whose ends are trimmed
constexpr std::size_t kMaxMainType = 4096;
constexpr std::size_t kFreeOverlap = 128 << 20; // bytes of statements; with drifting ends, real DTDs reach 90 MB
constexpr std::size_t kMaxOverlap = 16;         // times the size of the text
constexpr std::size_t kExcerpt = 200;           // bytes of a statement that a message quotes

// Returns whether a piece of a content model is the keyword of text, with any marks. "#CDATA" is not in XML, but is
// read like "#PCDATA".
bool isTextKeyword(std::string_view piece)
{
    return std::ranges::any_of(std::array{kPcdata, kCdata}, [&](std::string_view keyword) {
        return piece.starts_with(keyword) && kMarksAndBlanks.out(piece.substr(keyword.size())) == kNowhere;
    });
}

std::string_view withoutMarks(std::string_view piece)
{
    while (!piece.empty() && kMarks.has(piece.back()))
        piece.remove_suffix(1);
    return piece;
}

} // namespace

void DTDElement::addChild(DTDElement* child, std::size_t mention, std::pmr::memory_resource& memory)
{
    if (child->lastParent != this) {
        child->lastParent = this;
        child->repetitions = 0;
    }
    if (child->repetitions == 2)
        return;
    ++child->repetitions;
    Child* const added = std::pmr::polymorphic_allocator<>(&memory).new_object<Child>(Child{child, mention});
    (first ? last->next : first) = added;
    last = added;
    ++childCount;
}

const DTDElement::Child* DTDElement::enumNext()
{
    const Child* const child = cursor;
    cursor = child ? child->next : nullptr;
    if (cursor && cursor->next)
        __builtin_prefetch(cursor->next->element); // children are scattered in memory
    return child;
}

int DTDMessage::parse(const CString& source, const CString& basePath, const CString& fileName)
{
    previousMain = mainType;
    const bool hasNul = source.find('\0') != CString::npos; // which is read as a space
    // A copy is made only for a text with NUL. Views of it are used only in this function.
    CString copy(hasNul ? source : "");
    std::ranges::replace(copy, '\0', ' ');
    Text parsed(hasNul ? copy : source);
    text = &parsed;
    needsNoConversion = isXmlText(parsed.whole);
    report.addFile(fileName);
    DTDNotes(parsed.whole, parsed.places, report, isReportWanted).read();
    const int result = scan();
    parsed.groups = DTDGroups({}); // no longer needed
    if (result)
        declareAll(basePath + mainType + "\\");
    text = nullptr;
    forget();
    return result;
}

// `text` points to a local variable of parse(), which no longer exists.
void DTDMessage::onCancelled()
{
    text = nullptr;
    forget();
    mainType = previousMain;
}

// Releases the state of a single parse.
void DTDMessage::forget()
{
    dtdElements.clear();
    memory.release();
}

bool DTDMessage::isComment(std::size_t start) const
{
    return text->whole.substr(start, kCommentStart.size()) == kCommentStart;
}

// Returns the end of the statement that starts at `start`, searched from `from` on.
std::size_t DTDMessage::endFrom(std::size_t start, std::size_t from) const
{
    if (!isComment(start))
        return text->whole.find('>', from);
    const std::size_t end = text->whole.find(kCommentEnd, from);
    return end == kNowhere ? kNowhere : end + kCommentEnd.size() - 1;
}

// The k-th statement runs from the k-th '<' to the k-th end; starts and ends advance on their own.
int DTDMessage::scan()
{
    std::size_t from = 0, read = 0;
    for (std::size_t start = text->whole.find('<'); start != kNowhere; start = text->whole.find('<', start + 1)) {
        std::size_t end = endFrom(start, from);
        if (end != kNowhere && end < start) // after stray ends the ends lag behind the starts
            end = endFrom(start, start);
        if (end == kNowhere)
            return 1;
        from = end + 1;
        reportAt(from);
        if (isComment(start))
            continue;
        read += from - start;
        if (read > kFreeOverlap && read / kMaxOverlap > text->whole.size())
            return refuse(text->whole.substr(start, from - start),
                          "statements that span each other come to more than " + std::to_string(kMaxOverlap) +
                              " times the text");
        if (!doParse(start, from))
            return 0;
    }
    return 1;
}

// The message's text is fixed, so the exceeded bound is stated in the fault beside it.
int DTDMessage::refuse(std::string_view statement, const CString& bound)
{
    std::string_view start = statement.substr(0, kExcerpt);
    if (start.size() < statement.size())
        dropPartialCharacter(start);
    return fail(
        fillText(loadText(IDS_DTD_STATEMENT), start),
        report.faultAt(statementPlace(placeOf(statement)),
                       fillText(loadText(IDS_DTD_STATEMENT), "a limit is exceeded: " + bound + ": " + CString(start))));
}

// Returns the place of the statement that begins at `at`, or at the last '<' before it.
SourcePlace DTDMessage::statementPlace(std::size_t at) const
{
    const std::size_t start = text->whole.rfind('<', at);
    return text->places.at(start == kNowhere ? at : start);
}

// Parses one statement, from its '<' through its '>'. Both handlers run if both keywords occur.
int DTDMessage::doParse(std::size_t start, std::size_t end)
{
    const std::string_view upToEnd = text->whole.substr(0, end);
    // "<!ATTLIST element id ..." contains both keywords, because letter case is ignored. It then also declares the
    // element `id`.
    if (const std::size_t element = kElement.behind(upToEnd, start); element != kNowhere)
        if (!doParseElement(element, end))
            return 0;
    if (const std::size_t attlist = kAttlist.behind(upToEnd, start); attlist != kNowhere)
        doParseAttlist(attlist, end);
    return 1;
}

// Parses an ELEMENT from the end of its keyword on: a name up to the first space or '(', then the content model.
int DTDMessage::doParseElement(std::size_t start, std::size_t end)
{
    const std::string_view upToEnd = text->whole.substr(0, end);
    const std::size_t nameStart = kDtdBlank.out(upToEnd, start);
    if (nameStart == kNowhere)
        return 1;
    const std::size_t nameEnd = std::min(kNameEnd.in(upToEnd, nameStart), end);
    const std::string_view name = kDtdBlank.trim(text->whole.substr(nameStart, nameEnd - nameStart));
    if (mainType.empty() && name.size() > kMaxMainType)
        return refuse(text->whole.substr(start, end - start),
                      "the name of the main type has more than " + std::to_string(kMaxMainType) + " bytes");
    if (mainType.empty())
        mainType = toXmlText(name);
    DTDElement& element = addPiece(name, nullptr);
    noteDeclaration(element, name, start);
    element.isDeclared = true;
    const std::string_view content = kDtdBlank.trim(text->whole.substr(nameEnd, std::max(end - 1, nameEnd) - nameEnd));
    if (content.find(kPcdata) != kNowhere || content.find(kCdata) != kNowhere || content == "ANY")
        element.textAt = nameStart;
    const std::size_t group = text->groups.firstFrom(nameEnd);
    if (group == text->groups.size() || text->groups.openOf(group) >= end ||
        holdsTextOnly(text->groups.openOf(group), end))
        return 1;
    doParseField(nameEnd, end - 1, name.empty() ? nullptr : &element);
    return 1;
}

// Reports an ELEMENT that is dropped or merged with another one of its name. `start` is the end of its keyword.
void DTDMessage::noteDeclaration(DTDElement& element, std::string_view name, std::size_t start)
{
    const bool isNew = std::exchange(text->lastElement, start) != start;
    // The word may also be a name in another declaration.
    if (!isNew || !text->whole.substr(0, start - kElement.size()).ends_with("<!"))
        return;
    if (name.empty()) // a group of names, as in SGML
        report.add(SourceReport::malformedDeclaration, text->places.at(placeOf(name)), "ELEMENT without a name");
    else if (std::exchange(element.hasStatement, true))
        report.add(SourceReport::declaredTwice, text->places.at(placeOf(name)), name);
}

// Returns true if the first piece of the content model is empty or declares text content.
bool DTDMessage::holdsTextOnly(std::size_t open, std::size_t end) const
{
    const DTDGroups::Close* const close = text->groups.lastBetween(open, end);
    const std::string_view upToEnd = text->whole.substr(0, close ? close->at : end);
    const std::size_t first = kDtdBlank.out(upToEnd, open + 1);
    if (first == kNowhere || upToEnd[first] == ',')
        return true;
    // Only the first piece up to a ',' counts: "(#PCDATA | a)*" contains more than text, so `a` becomes a field.
    for (const std::string_view keyword : {kPcdata, kCdata}) {
        if (upToEnd.substr(first, keyword.size()) != keyword)
            continue;
        const std::size_t next = kDtdBlank.out(upToEnd, first + keyword.size());
        return next == kNowhere || upToEnd[next] == ',';
    }
    return false;
}

// Parses a content model: names, and groups of names. The ends of the open groups are kept on a stack of our own,
// because a model may nest as deep as the text is long.
void DTDMessage::doParseField(std::size_t start, std::size_t end, DTDElement* parent)
{
    const DTDGroups& groups = text->groups;
    std::vector<std::size_t> ends{end};
    for (std::size_t next = groups.firstFrom(start); !ends.empty();) {
        while (next < groups.size() && groups.openOf(next) < start)
            ++next;
        const std::size_t levelEnd = ends.back();
        const std::size_t open = next < groups.size() ? std::min(groups.openOf(next), levelEnd) : levelEnd;
        reportAt(start);
        if (start < open)
            formatField(text->whole.substr(start, open - start), {}, parent);
        start = open + 1;
        if (open == levelEnd) {
            ends.pop_back(); // continue after the ')' that ended this level
        } else if (const DTDGroups::Close* close = groups.closeOf(next, levelEnd); !close) {
            continue; // the group runs to the end of this level
        } else if (close->mark < levelEnd) {
            // The text between a group and its mark is skipped, such as the second group in "(a)(b)*".
            formatField(text->whole.substr(start, close->at - start), "*", parent);
            const std::string_view skipped =
                kFieldTrim.trim(text->whole.substr(close->at + 1, close->mark - close->at - 1));
            // Statements may overlap. Markup is no skipped name, and an entity has been reported.
            if (parent && kMarkup.in(skipped) == kNowhere && kDtdDelimiter.out(skipped) != kNowhere)
                report.add(SourceReport::groupSkipped, text->places.at(placeOf(skipped)), skipped);
            start = close->mark;
        } else {
            ends.push_back(close->at);
        }
    }
}

// Adds the names of a flat list. Parentheses left over from groups are trimmed from its pieces.
void DTDMessage::formatField(std::string_view content, std::string_view mark, DTDElement* parent)
{
    while (!content.empty()) {
        const std::size_t separator = kSeparators.in(content);
        const std::string_view piece = kFieldTrim.trim(content.substr(0, separator));
        content.remove_prefix(separator == kNowhere ? content.size() : separator + 1);
        const std::string_view name = withoutMarks(piece);
        reportAt(static_cast<std::size_t>(piece.data() - text->whole.data()));
        if (name.empty() || isTextKeyword(piece))
            continue;
        if (mark.empty() || piece.ends_with('*') || piece.ends_with('+')) {
            addPiece(piece, parent);
        } else { // the text doesn't contain the name with its mark
            joined.assign(piece).append(mark);
            addDTDElement(dtdElements.find(joined) ? std::string_view(joined) : memory.keep(joined), placeOf(piece),
                          parent);
        }
    }
}

// Returns the entry of `child`, added if it is new, and appends it to the children of `parent`, if there is one.
DTDElement& DTDMessage::addDTDElement(std::string_view child, std::size_t place, DTDElement* parent)
{
    const std::uint32_t hash = keyHash(child);
    DTDElement* entry = dtdElements.find(child, hash);
    if (!entry) {
        entry = std::pmr::polymorphic_allocator<>(&memory).new_object<DTDElement>(child, place);
        dtdElements.store(entry, hash);
    }
    if (parent)
        parent->addChild(entry, place, memory);
    return *entry;
}

// Declares records in the order of their first mention in the text.
void DTDMessage::declareAll(const CString& path)
{
    beginWork(Work::arranging);
    for (DTDElement* record : dtdElements) {
        if (!record->beginEnum())
            continue;
        declareRecord(*record, path);
        if (record->attributeAt != kNowhere)
            report.add(SourceReport::mergedByName, text->places.at(record->attributeAt),
                       toXmlText(record->queryName()));
    }
    text->repetitions.reportAll(model, text->places, report);
}

void DTDMessage::declareRecord(DTDElement& record, const CString& path)
{
    RunningHash key(record.queryName());
    const TypeModel::Declared made = needsNoConversion
                                         ? model.addRecord(path, record.queryName())
                                         : model.addElement(key, path, record.queryName(), Element::typeRow, nullptr);
    if (made.sharedWith)
        noteSharedKey(made, nullptr, 1, text->places.at(record.place));
    noteName(record, record, *made.element);
    if (record.textAt != kNowhere) // a record has no field for its text
        report.add(SourceReport::textSkipped, text->places.at(record.textAt), made.element->queryName());
    key.append(".");
    model.reserveFields(made.element, record.queryChildCount());
    while (const DTDElement::Child* const child = record.enumNext())
        declareField(*child, path, key, record, made.element);
}

// A repeating mark declares the usage twice: the model makes a table of a usage that it sees twice. `usageKey` holds
// the common start of the keys of the record's fields.
void DTDMessage::declareField(const DTDElement::Child& mention, const CString& path, RunningHash usageKey,
                              const DTDElement& parent, Element* record)
{
    DTDElement& child = *mention.element;
    std::string_view name = child.queryName();
    const Modifiers mark = getModifiers(name); // strips the mark
    const auto addUsage = [&] {
        return needsNoConversion ? model.addFieldUsage(record, child.element)
                                 : model.addUsage(usageKey, child.element, record);
    };
    usageKey.append(name);
    // An earlier mention has declared the name, so it needn't be looked up.
    TypeModel::Declared made = child.element ? addUsage()
                               : needsNoConversion
                                   ? model.addField(record, model.queryNames().intern(name), Element::typeString)
                                   : model.addElement(usageKey, path, name, Element::typeString, record);
    if (!child.element) {
        child.element = made.element;
        noteName(unmarkedOf(child, name), child, *child.element);
    }
    const bool isMarked = mark == modStar || mark == modPlus;
    if (isMarked)
        made = addUsage();
    // A second usage makes the field repeat, even without a mark. `repetitions` compares that with the DTD.
    if (made.sharedWith)
        noteSharedKey(made, record, isMarked ? 2 : 1, text->places.at(mention.place));
    else if (!made.isFirst)
        text->repetitions.add(
            {child.element, record, mention.place, isMarked,
             name.starts_with(parent.queryName()) ? unmarkedOf(child, name).attributeIn(parent) : kNowhere});
}

// Reports a name that is not an XML name, or that no declaration belongs to: once, at the place that mentions it first.
// A name with a '%' is skipped, because the unexpanded entity has been reported.
void DTDMessage::noteName(DTDElement& entry, const DTDElement& mention, const Element& element)
{
    const CString& name = element.queryName();
    const bool isPossible = isXmlName(name);
    if (entry.isNoted || (isPossible && (entry.isDeclared || entry.isAttribute)) || name.find('%') != CString::npos)
        return;
    note(!isPossible                               ? SourceReport::impossibleName
         : element.queryType() == Element::typeRow ? SourceReport::inventedType
                                                   : SourceReport::unresolvedReference,
         entry, mention.place, name);
}

void DTDMessage::note(SourceReport::Construct construct, DTDElement& entry, std::size_t place, std::string_view name)
{
    entry.isNoted = true;
    report.add(construct, text->places.at(place), name);
}

// Strips all marks off the end of a name. A repeating mark takes precedence over '?'.
DTDMessage::Modifiers DTDMessage::getModifiers(std::string_view& name)
{
    Modifiers found = modNone;
    name = trimmed(name);
    while (name.size() > 1 && kMarks.has(name.back())) {
        const Modifiers mark = name.back() == '*' ? modStar : name.back() == '+' ? modPlus : modOptional;
        if (found == modNone || found == modOptional)
            found = mark;
        name.remove_suffix(1);
    }
    return found;
}
