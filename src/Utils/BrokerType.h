#pragma once

#include "Platform/Dom.h"

/// Builds the BROKERTYPEDESCRIPTION document of one broker type: its full name, its description, and at most one
/// content element with what belongs into it. Every add operation answers 1, or 0 and changes nothing when the content
/// element that was added (or that there is none yet) doesn't accept it.
class BrokerTypeDescription
{
public:
    /// NAME is `path` and `name`, with one backslash between; DESCRIPTION is written where there is one.
    BrokerTypeDescription(const CString& name, const CString& description, const CString& path);

    /// An empty ROW, which takes fields.
    int addRow();
    int addField(const CString& fieldName, const CString& fieldDescription, const CString& type);

    /// An empty ENUM, which takes constants.
    int addEnum();
    int addConstant(const CString& constantName, const CString& constantDescription);

    /// An ARRAY of SIZE `size` with its COMPONENT.
    int addArray(const CString& size, const CString& componentType);

    /// A TABLE with its COMPONENT.
    int addTable(const CString& componentType);

    /// Replaces `out` with the text of the document: no declaration, no white space between tags.
    void queryXML(CString& out) const;

private:
    enum State
    {
        stateEmpty = 0,
        stateArray = 1,
        stateEnum = 2,
        stateRow = 3,
        stateTable = 4
    };

    void Initialize(const CString& name, const CString& description, const CString& path);
    void addComponent(const CString& componentType);
    void addContent(State added);
    IXMLDOMElement addDescribed(std::string_view tag, const CString& name, const CString& description);

    CString name;
    CString description;
    IXMLDOMDocument document;
    IXMLDOMElement root;
    IXMLDOMElement content;
    State state = stateEmpty;
};
