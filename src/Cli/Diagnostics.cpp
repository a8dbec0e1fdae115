#include "Cli/Diagnostics.h"

#include "Base/Fingerprint.h"
#include "Base/Utf8.h"
#include "Cli/ProgressLine.h"
#include "Files/FileMessage.h"
#include "Import/Full/FullReadingHint.h"
#include "Import/MsgBase.h"

#include <algorithm>
#include <cstdio>
#include <utility>

// Editors and build tools read the lines "FILE:LINE:COL: KIND: TEXT" of compilers and jump to the place, so each fault
// stays on one line whatever its text quotes.
namespace {

constexpr std::size_t kMaxWarnings = 20;
constexpr std::size_t kMaxText = 160; // characters shown of a text with several lines

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < ' ';
}

// Returns a text as one line. A text of several lines quotes a statement of the source, so its beginning is enough to
// identify it.
CString onOneLine(std::string_view text)
{
    text = trimmed(text);
    CString line;
    if (text.find('\n') == text.npos)
        return shownText(text);
    for (const char c : text) {
        if (!isControl(c) && c != ' ')
            line += c;
        else if (!line.ends_with(' '))
            line += ' ';
        if (line.size() > 4 * kMaxText)
            break;
    }
    const std::string_view start = firstCharacters(line, kMaxText);
    return shownText(start.size() < line.size() ? CString(start) + "..." : line);
}

// Returns a hash of place and reason. The texts are not kept, because a source can have any number of warnings.
std::uint64_t hashOf(const SourceFault& fault)
{
    const long place[] = {fault.line, fault.column};
    RunningHash hash({reinterpret_cast<const char*>(place), sizeof place});
    return Fingerprint(hash.append(fault.file).append("\n").append(fault.reason)).first;
}

// Writes "FILE:LINE:COLUMN: KIND: REASON". A column without a line is not a place. Uses one call of fwrite(), so that
// lines of several processes don't mix on a terminal or in a log.
void writeLine(const CString& file, const char* kind, const CString& reason, long line = 0, long column = 0)
{
    CString text = onOneLine(shownSource(shownFile(file)));
    for (const long number : {line, line > 0 ? column : 0})
        if (number > 0)
            text += ":" + std::to_string(number);
    text += CString(": ") + kind + ": " + onOneLine(reason) + "\n";
    ProgressLine::clear();
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace

// Drivers accept attributes in any letter case, and with blanks before the sign.
CString shownSource(const CString& source)
{
    const CString upper = upperAscii(source);
    std::size_t end = source.size();
    // Everything after the first password is hidden: it may be quoted and contain separators.
    for (const std::string_view word : {"PWD", "PASSWORD"})
        for (std::size_t at = upper.find(word); at < end; at = upper.find(word, at + 1))
            if (const std::size_t sign = upper.find_first_not_of(kWhitespace, at + word.size());
                sign < end && upper[sign] == '=')
                end = sign + 1;
    return end < source.size() ? source.substr(0, end) + "***" : source;
}

// snprintf() into a buffer on the stack, because std::string would allocate.
void report(std::string_view text)
{
    char line[1000];
    const int size =
        std::snprintf(line, sizeof line, "typeforge-import: %.*s", static_cast<int>(text.size()), text.data());
    char* const end = line + std::clamp<int>(size, 0, sizeof line - 1);
    std::replace_if(line, end, isControl, ' ');
    ProgressLine::clear();
    std::fprintf(stderr, "%s\n", line);
}

// The fault contains the reason. The importer's text, which is for a box, only shows whether the error comes from the
// literal reading.
void Diagnostics::receiveFrom(MsgBase& importer, const Advice& advice)
{
    importer.setErrorHandler([this, advice](const CString& text, const SourceFault& fault) {
        SourceFault advised = fault;
        if (advice && !fault.isWarning && fault.line <= 1 && fault.column <= 1)
            advised.reason += advice(fault.file.empty() ? source : fault.file);
        isLiteralError |= isErrorOfLiteralReading(text);
        add(advised);
    });
}

void Diagnostics::add(const SourceFault& fault)
{
    if (fault.isWarning) {
        const bool isKnown = fault.column > 0 && !shownWarnings.insert(hashOf(fault)).second;
        if (verbosity == Verbosity::quiet || isKnown || (++warnings > kMaxWarnings && verbosity == Verbosity::normal))
            return;
    } else {
        ++errors;
    }
    writeLine(fault.file.empty() ? source : fault.file, fault.isWarning ? "warning" : "error", fault.reason, fault.line,
              fault.column);
}

void Diagnostics::warning(const CString& reason, const CString& file)
{
    if (verbosity != Verbosity::quiet)
        writeLine(file.empty() ? source : file, "warning", reason);
}

void Diagnostics::note(const CString& reason, const CString& file) const
{
    if (verbosity == Verbosity::verbose)
        writeLine(file, "note", reason);
}

void Diagnostics::finish()
{
    if (verbosity == Verbosity::normal && warnings > kMaxWarnings)
        warning("... and " + std::to_string(std::exchange(warnings, 0) - kMaxWarnings) + " more (--verbose shows all)");
}
