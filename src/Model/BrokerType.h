#pragma once

#include "Xml/XmlText.h"

/// Builds the BROKERTYPEDESCRIPTION document of one broker type: its full name, its description, and at most one
/// content element with what belongs into it. Every add operation answers 1, or 0 and changes nothing when the content
/// element that was added (or that there is none yet) doesn't accept it.
///
/// The document is written as text as it grows, not built as a tree first: an import has as many fields as its source,
/// and the nodes of each would cost several times what writing it does.
class BrokerTypeDescription
{
public:
    /// NAME is `path` and `name`, with one backslash between; DESCRIPTION is written where there is one. The document
    /// is written into `text`, which must outlive the builder; what it held is lost.
    BrokerTypeDescription(std::string_view name, TextPieces description, std::string_view path, XmlText& text);

    /// The same with a text of its own.
    BrokerTypeDescription(std::string_view name, std::string_view description, std::string_view path);
    BrokerTypeDescription(const BrokerTypeDescription&) = delete;
    BrokerTypeDescription& operator=(const BrokerTypeDescription&) = delete;

    /// An empty ROW, which takes fields.
    int addRow();
    int addField(std::string_view name, TextPieces description, TextPieces type);

    /// An empty ENUM, which takes constants.
    int addEnum();
    int addConstant(std::string_view name, TextPieces description);

    /// An ARRAY of SIZE `size` with its COMPONENT.
    int addArray(std::string_view size, TextPieces componentType);

    /// A TABLE with its COMPONENT.
    int addTable(TextPieces componentType);

    /// Replaces `out` with the text of the document: no declaration, no white space between tags.
    void queryXML(CString& out) const;

    /// The same as a view into the text that the builder writes into. Nothing can be added afterwards.
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
    XmlText& text;            // all but the end; the tag written last is still without its '>'
    std::string_view content; // the tag of the content element
    bool hasItems = false;
    State state = stateEmpty;
};
