#pragma once

#include "Xml/XmlText.h"

/// Builds the BROKERTYPEDESCRIPTION document of one broker type: its full name, its description, and at most one
/// content element. Every add function returns 1; it returns 0 and changes nothing if the current content element, or
/// its absence, doesn't allow the addition. Texts are made fit for XML and escaped.
///
/// The document is written as text, not built as a tree first: an import has as many fields as its source, and a tree
/// node for each costs several times the writing.
class BrokerTypeDescription
{
public:
    /// NAME is `path` and `name`, with one backslash between them. An empty description leaves DESCRIPTION out.
    /// Replaces the content of `text`, which must outlive the builder, and must not be changed by others meanwhile.
    BrokerTypeDescription(std::string_view name, TextPieces description, std::string_view path, XmlText& text);

    /// Does the same with an internal buffer.
    BrokerTypeDescription(std::string_view name, std::string_view description, std::string_view path);
    BrokerTypeDescription(const BrokerTypeDescription&) = delete;
    BrokerTypeDescription& operator=(const BrokerTypeDescription&) = delete;

    /// Adds an empty ROW, then its fields. `type` is the name of the field's type.
    int addRow();
    int addField(std::string_view name, TextPieces description, TextPieces type);

    /// Adds an empty ENUM, then its constants.
    int addEnum();
    int addConstant(std::string_view name, TextPieces description);

    /// Adds an ARRAY with SIZE `size`, a text, and its COMPONENT.
    int addArray(std::string_view size, TextPieces componentType);

    /// Adds a TABLE with its COMPONENT.
    int addTable(TextPieces componentType);

    /// Replaces `out` with the document: no declaration, no white space between tags. The builder can continue.
    void queryXML(CString& out) const;

    /// Completes the document and returns a view of the builder's text. Nothing can be added afterwards.
    std::string_view finish();

private:
    enum State
    {
        stateEmpty = 0,
        stateArray = 1,
        stateEnum = 2,
        stateRow = 3,
        stateTable = 4,
        stateFinished = 5
    };

    template <std::size_t N>
    int openContent(const char (&tag)[N], State opened);
    template <std::size_t N>
    void openItem(const char (&tag)[N], std::string_view name, TextPieces description);
    void addComponent(TextPieces componentType);
    template <class Text>
    void appendEnd(Text& out) const;

    XmlText ownText;
    XmlText& text;            // the document so far; the last tag still lacks its '>'
    std::string_view content; // the tag of the content element
    bool hasItems = false;
    State state = stateEmpty;
};
