#pragma once

#include "Base/Text.h"
#include "Xml/DomPlace.h"

#include <memory>
#include <stdexcept>

class DomTree;
struct DomNode;
class IXMLDOMNamedNodeMap;
class IXMLDOMNodeList;
struct IXMLDOMParseError;

/// The failure of a DOM operation: a call on a null handle, or a node put where it can't stand.
class ComError : public std::runtime_error
{
public:
    ComError(LONG status, const char* what) : std::runtime_error(what), code(status) {}

    /// The status code, negative.
    LONG Error() const { return code; }

private:
    LONG code;
};

/// A node of a document: an element, attribute, text, CDATA section, comment or processing instruction, or the document
/// itself. A handle is a plain pointer, null or valid as long as a reference to its document lives; it costs nothing to
/// copy. Texts are views that live as long as the node. Every operation on a null handle throws ComError. Names and
/// node kinds: https://www.w3.org/TR/DOM-Level-2-Core/
class IXMLDOMNode
{
public:
    IXMLDOMNode() = default;
    explicit IXMLDOMNode(DomNode* node) : pointer(node) {}

    explicit operator bool() const { return pointer != nullptr; }
    friend bool operator==(IXMLDOMNode, IXMLDOMNode) = default;

    /// The qualified name, with its prefix; "#text", "#cdata-section", "#comment", "#document", or an instruction's
    /// target.
    std::string_view nodeName() const;

    /// The name without its prefix; empty for everything but elements and attributes.
    std::string_view baseName() const;

    /// The text of an attribute, text, CDATA section, comment or instruction; empty for an element.
    std::string_view nodeValue() const;

    /// The attributes in the order of the document, those that its internal subset supplies after the written ones;
    /// namespace declarations are not among them. A list of length 0 for all but elements.
    IXMLDOMNamedNodeMap attributes() const;

    IXMLDOMNodeList childNodes() const;
    IXMLDOMNode firstChild() const;
    IXMLDOMNode nextSibling() const;

    /// Where an element's start tag was read, for other nodes one that is near. Unknown for an attribute, and for what
    /// was not read from a file.
    DomPlace place() const;

    /// Puts `child`, which createElement() of the same document has made and which stands nowhere yet, behind the last
    /// child and answers it. ComError when it is another, holds this node, or would be a second document element.
    IXMLDOMNode appendChild(IXMLDOMNode child) const;

    /// The node and all that is in it as XML text: no white space added, <X/> for an empty element.
    CString xml() const;

protected:
    DomNode& get() const;

private:
    DomNode* pointer = nullptr;
};

/// A node that is an element, or null.
class IXMLDOMElement : public IXMLDOMNode
{
public:
    IXMLDOMElement() = default;

    /// Null when `node` is no element.
    explicit IXMLDOMElement(IXMLDOMNode node);

    /// Sets the attribute `name`, in its place when it is there, else behind the last one. The value is made fit for
    /// XML (toXmlText); the name is taken as it is.
    void setAttribute(std::string_view name, std::string_view value) const;
};

/// The attributes of an element.
class IXMLDOMNamedNodeMap
{
public:
    explicit IXMLDOMNamedNodeMap(DomNode* firstAttribute) : first(firstAttribute), next(firstAttribute) {}

    /// The attribute of exactly this qualified name, or null.
    IXMLDOMNode getNamedItem(std::string_view name) const;

    /// The next attribute, or null at the end.
    IXMLDOMNode nextNode();

private:
    DomNode* first;
    DomNode* next;
};

/// The children of a node: a walk over the tree as it is, not a copy of it.
class IXMLDOMNodeList
{
public:
    explicit IXMLDOMNodeList(DomNode* firstChild) : next(firstChild) {}

    /// The next child, or null at the end.
    IXMLDOMNode nextNode();

private:
    DomNode* next;
};

/// A counted reference to a document. Its nodes lie in storage of its own that goes with the last reference.
class IXMLDOMDocument
{
public:
    /// Null; create() makes a document.
    IXMLDOMDocument() = default;

    /// A new, empty document; null when there is no memory for it.
    static IXMLDOMDocument create();

    explicit operator bool() const { return tree != nullptr; }

    /// Replaces the content by that of a file, whose handles all become invalid. False, and an empty document, when it
    /// can't be read or isn't well-formed; see parseError(). Text of white space alone is dropped unless
    /// xml:space="preserve" is in force; entities of the internal subset are expanded.
    bool load(const CString& fileName) const;

    /// What the last load() ran into.
    const IXMLDOMParseError& parseError() const;

    /// The root element, or null.
    IXMLDOMElement documentElement() const;

    /// A new element that belongs to this document and stands nowhere yet.
    IXMLDOMElement createElement(std::string_view name) const;

    /// Puts the root element, or a comment or instruction, behind what the document holds.
    IXMLDOMNode appendChild(IXMLDOMNode child) const;

    CString xml() const;

private:
    explicit IXMLDOMDocument(std::shared_ptr<DomTree> owned) : tree(std::move(owned)) {}
    DomTree& get() const;

    std::shared_ptr<DomTree> tree;
};
