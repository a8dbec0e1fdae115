#pragma once

#include "Base/Text.h"

#include <cstring>
#include <memory>

/// XML as it is written: a text that grows, with room that is kept from one document to the next. The pieces that never
/// change are literals, so that they are copied without a call.
class XmlText
{
public:
    void clear() { size = 0; }
    std::string_view view() const { return {buffer.get(), size}; }

    /// A text that is XML already.
    void append(std::string_view text) { put(room(text.size()), text); }

    template <std::size_t N>
    void append(const char (&literal)[N])
    {
        std::memcpy(room(N - 1), literal, N - 1);
        size += N - 1;
    }

    /// The value of an attribute and the quote behind it; `open` is what stands before it, as in ` NAME="`. The value
    /// is made fit for XML (toXmlText), and what can't stand in it is written as a reference.
    template <std::size_t N>
    void attribute(const char (&open)[N], TextPieces value)
    {
        append(open);
        appendValue(value.first);
        if (!value.rest.empty())
            appendValue(value.rest);
        append("\"");
    }

private:
    char* room(std::size_t more)
    {
        if (capacity - size < more)
            grow(more);
        return buffer.get() + size;
    }

    void put(char* at, std::string_view text)
    {
        std::memcpy(at, text.data(), text.size());
        size += text.size();
    }

    void appendValue(std::string_view value)
    {
        if (isPlainXmlText(value))
            append(value);
        else
            appendEscaped(value);
    }

    void grow(std::size_t more);
    void appendEscaped(std::string_view value);

    std::unique_ptr<char[]> buffer; // what is not used of it was never touched, so it takes no memory
    std::size_t capacity = 0;
    std::size_t size = 0;
};
