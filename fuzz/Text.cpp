// The string toolkit against std::string: each step of the input changes both in the same way.
#include "Base/QELStr.h"
#include "Target.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

struct Pair
{
    QELString ours;
    std::string theirs;
};

// The operands of a step: a number, a character other than NUL, and a text from the input.
struct Operands
{
    unsigned number;
    char character;
    std::string text;
};

// Returns what QELString's operator() does: negative numbers count from the end.
std::string part(const std::string& text, int from, int count)
{
    const int size = static_cast<int>(text.size());
    const int first = from < 0 ? std::max(from + size, 0) : std::min(from, size);
    return text.substr(first, count < 0 ? std::max(count + size, 0) : count);
}

std::string trimmed(const std::string& text, const std::string& set)
{
    const std::size_t first = std::min(text.find_first_not_of(set), text.size());
    return text.substr(first, text.find_last_not_of(set) + 1 - first);
}

void split(Pair& text, const Operands& with)
{
    QELString left, right;
    const std::size_t at = text.theirs.find(with.character);
    if (text.ours.splitl(with.character, left, right) != (at != std::string::npos))
        std::abort();
    text.ours.splitr(with.character, text.ours, right); // result and source are the same
    text.theirs = text.theirs.substr(0, text.theirs.rfind(with.character));
}

void joinFields(Pair& text, const Operands& with)
{
    QELStringIterator fields(text.ours);
    fields.beginEnum(with.character);
    QELString field;
    unsigned count = 1;
    while (fields.enumNext(field))
        ++count;
    if (count != text.ours.count(with.character) + 1)
        std::abort();
    text.theirs = trimmed(text.theirs.substr(text.theirs.rfind(with.character) + 1), " ");
    text.ours = field;
}

constexpr unsigned kMost = 1 << 12; // maximum number of characters for doubling

using Step = void (*)(Pair&, const Operands&);
const Step kSteps[] = {
    [](Pair& text, const Operands& with) { text.ours = with.text.c_str(), text.theirs = with.text; },
    [](Pair& text, const Operands& with) { text.ours += with.text.c_str(), text.theirs += with.text; },
    [](Pair& text, const Operands& with) { text.ours += with.character, text.theirs += with.character; },
    [](Pair& text, const Operands&) {
        if (text.theirs.size() < kMost)
            text.ours += text.ours, text.theirs += std::string(text.theirs);
    },
    [](Pair& text, const Operands& with) {
        const unsigned from = std::min<unsigned>(with.number, text.theirs.size());
        text.ours.assign(static_cast<const char*>(text.ours) + from, with.number),
            text.theirs = text.theirs.substr(from, with.number);
    },
    [](Pair& text, const Operands& with) {
        const int from = static_cast<signed char>(with.number), count = static_cast<signed char>(with.character);
        text.ours = text.ours(from, count), text.theirs = part(text.theirs, from, count);
    },
    [](Pair& text, const Operands& with) {
        text.ours.cutl(with.number), text.theirs = part(text.theirs, with.number, kMost * 2);
    },
    [](Pair& text, const Operands& with) {
        text.ours.cutr(with.number),
            text.theirs.resize(text.theirs.size() - std::min<std::size_t>(text.theirs.size(), with.number));
    },
    [](Pair& text, const Operands& with) {
        if (text.ours.truncate(with.number))
            text.theirs.resize(with.number);
    },
    [](Pair& text, const Operands& with) {
        text.ours.trim(with.text.c_str()), text.theirs = trimmed(text.theirs, with.text);
    },
    [](Pair& text, const Operands&) { text.ours.trim(), text.theirs = trimmed(text.theirs, " "); },
    [](Pair& text, const Operands& with) {
        text.ours.rtrim(with.number), text.theirs.resize(text.theirs.find_last_not_of(' ') + 1);
        text.theirs.insert(0, std::max<std::size_t>(with.number, text.theirs.size()) - text.theirs.size(), ' ');
    },
    split,
    joinFields,
};

// Aborts unless both texts and the results of searches in them are equal.
void compare(const Pair& text, const Operands& with)
{
    const auto index = [](std::size_t at) { return at == std::string::npos ? -1 : static_cast<int>(at); };
    const bool same = text.theirs == static_cast<const char*>(text.ours) && len(text.ours) == text.theirs.size() &&
                      text.ours.queryCapacity() > text.theirs.size() &&
                      find(text.ours, with.character) == index(text.theirs.find(with.character)) &&
                      findr(text.ours, with.character) == index(text.theirs.rfind(with.character)) &&
                      findAny(text.ours, with.text.c_str()) == index(text.theirs.find_first_of(with.text));
    if (!same)
        std::abort();
}

} // namespace

void fuzz(std::string_view input)
{
    Pair text;
    while (input.size() > 3) {
        const unsigned char step = input[0], number = input[1];
        Operands with{number, input[2] ? input[2] : ' ', std::string(input.substr(3, number % 32))};
        with.text.resize(std::min(with.text.find('\0'), with.text.size()));
        kSteps[step % std::size(kSteps)](text, with);
        compare(text, with);
        input.remove_prefix(std::min<std::size_t>(input.size(), 3 + with.text.size()));
    }
}
