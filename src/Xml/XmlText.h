#pragma once

#include "Base/Text.h"

#include <cstring>
#include <memory>

/// A buffer for writing XML. Its storage is reused from one document to the next. Constant pieces are passed as
/// literals, so that their length is known and the copy is inlined. Types are rendered through it as text: with a tree
/// of nodes in between, an import of 100,000 declarations took 1.4 times as long.
class XmlText
{
public:
    /// Empties the text and keeps the storage.
    void clear() { size = 0; }
    /// Returns the text. Valid until the next change.
    std::string_view view() const { return {buffer.get(), size}; }

    /// Appends text that is XML already. It must not be a view of this object.
    void append(std::string_view text) { put(room(text.size()), text); }

    /// Appends a literal, whose length the compiler knows.
    template <std::size_t N>
    void append(const char (&literal)[N])
    {
        std::memcpy(room(N - 1), literal, N - 1);
        size += N - 1;
    }

    /// Appends an attribute: `open` is the text before the value, like ` NAME="`; the closing quote is added. The value
    /// is made fit for XML (toXmlText) and escaped. The two pieces of a value are written one after the other.
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
    // Returns where `more` bytes can be written. The caller writes them and adds them to `size`.
    char* room(std::size_t more)
    {
        if (capacity - size < more)
            grow(more);
        return buffer.get() + size;
    }

    // Copies to a place that room() returned.
    void put(char* at, std::string_view text)
    {
        std::memcpy(at, text.data(), text.size());
        size += text.size();
    }

    // Nearly all values are plain, so the test is inlined and the escaping is not.
    void appendValue(std::string_view value)
    {
        if (isPlainXmlText(value))
            append(value);
        else
            appendEscaped(value);
    }

    void grow(std::size_t more);
    void appendEscaped(std::string_view value);

    std::unique_ptr<char[]> buffer; // untouched pages of the unused part take no memory
    std::size_t capacity = 0;
    std::size_t size = 0;
};
