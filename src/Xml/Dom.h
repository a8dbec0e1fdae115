#pragma once

#include "Base/Text.h"
#include "Xml/XmlPlace.h"

#include <memory>
#include <stdexcept>

class DomTree;
struct DomNode;
class IXMLDOMNamedNodeMap;
class IXMLDOMNodeList;
struct IXMLDOMParseError;

/// Thrown by a failed DOM operation: a call on a null handle, or a node at a place where it isn't allowed.
class ComError : public std::runtime_error
{
public:
    ComError(LONG status, const char* what) : std::runtime_error(what), code(status) {}

    /// Returns the status code, which is negative.
    LONG Error() const { return code; }

private:
    LONG code;
};

/// A handle of a node: an element, attribute, text, CDATA section, comment or processing instruction, or the document
/// itself. It is a plain pointer, cheap to copy, null or valid as long as a reference to its document lives. Texts are
/// views that live as long as the node. Every operation on a null handle throws ComError. Names and node kinds:
/// https://www.w3.org/TR/DOM-Level-2-Core/. One thread at a time may use a document and its nodes.
class IXMLDOMNode
{
public:
    IXMLDOMNode() = default;
    explicit IXMLDOMNode(DomNode* node) : pointer(node) {}

    explicit operator bool() const { return pointer != nullptr; }
    friend bool operator==(IXMLDOMNode, IXMLDOMNode) = default;

    /// Returns the qualified name, with its prefix; "#text", "#cdata-section", "#comment", "#document", or an
    /// instruction's target.
    std::string_view nodeName() const;

    /// Returns the name without its prefix; empty for everything but elements and attributes.
    std::string_view baseName() const;

    /// Returns the text of an attribute, text, CDATA section, comment or instruction; empty for an element.
    std::string_view nodeValue() const;

    /// Returns the attributes in document order, those that the internal subset supplies after the written ones.
    /// Namespace declarations are left out. Empty for all nodes but elements.
    IXMLDOMNamedNodeMap attributes() const;

    /// Return the children in document order, the first child or null, and the next sibling or null. An attribute has
    /// none.
    IXMLDOMNodeList childNodes() const;
    IXMLDOMNode firstChild() const;
    IXMLDOMNode nextSibling() const;

    /// Returns where an element's start tag was read; for other nodes, a place nearby. Unknown for an attribute, and
    /// for a node that was not read from a file.
    XmlPlace place() const;

    /// Appends `child` as the last child and returns it. It must come from createElement() of the same document and
    /// have no parent yet. Throws ComError otherwise, and if it would become its own ancestor or a second document
    /// element. Linear in the depth of this node.
    IXMLDOMNode appendChild(IXMLDOMNode child) const;

    /// Returns the node with its content as XML: no white space added, <X/> for an empty element.
    CString xml() const;

protected:
    // Returns the node; throws ComError if the handle is null.
    DomNode& get() const;

private:
    DomNode* pointer = nullptr;
};

/// A handle of an element, or null.
class IXMLDOMElement : public IXMLDOMNode
{
public:
    IXMLDOMElement() = default;

    /// Null if `node` is not an element.
    explicit IXMLDOMElement(IXMLDOMNode node);

    /// Sets the attribute `name`: an existing one keeps its place, a new one comes last. The value is made fit for XML
    /// (toXmlText); the name is used as it is. Linear in the attributes and the depth. The storage of a replaced value
    /// is freed with the document.
    void setAttribute(std::string_view name, std::string_view value) const;
};

/// The attributes of an element. A walk over the live list, not a copy of it.
class IXMLDOMNamedNodeMap
{
public:
    explicit IXMLDOMNamedNodeMap(DomNode* firstAttribute) : first(firstAttribute), next(firstAttribute) {}

    /// Returns the attribute of exactly this qualified name, or null.
    IXMLDOMNode getNamedItem(std::string_view name) const;

    /// Returns the next attribute, or null at the end.
    IXMLDOMNode nextNode();

private:
    DomNode* first;
    DomNode* next;
};

/// The children of a node: a walk over the live tree, not a copy of it.
class IXMLDOMNodeList
{
public:
    explicit IXMLDOMNodeList(DomNode* firstChild) : next(firstChild) {}

    /// Returns the next child, or null at the end.
    IXMLDOMNode nextNode();

private:
    DomNode* next;
};

/// A counted reference to a document. The document owns the storage of its nodes, which is freed with the last
/// reference.
class IXMLDOMDocument
{
public:
    /// Null; create() makes a document.
    IXMLDOMDocument() = default;

    /// Returns a new, empty document; null if there is no memory for it.
    static IXMLDOMDocument create();

    explicit operator bool() const { return tree != nullptr; }

    /// Replaces the content by that of a file; handles of the old content become invalid. Returns false, with an empty
    /// document and a parseError(), if the file can't be read or isn't well-formed. Text that is only white space is
    /// dropped unless xml:space="preserve" is in scope. Entities of the internal subset are expanded.
    bool load(const CString& fileName) const;

    /// Returns the error of the last load(), empty if it succeeded. Valid until the next load(), or as long as the
    /// document.
    const IXMLDOMParseError& parseError() const;

    /// Returns the root element, or null.
    IXMLDOMElement documentElement() const;

    /// Returns a new element of this document without a parent.
    IXMLDOMElement createElement(std::string_view name) const;

    /// Appends the root element and returns it. Throws ComError as IXMLDOMNode::appendChild() does.
    IXMLDOMNode appendChild(IXMLDOMNode child) const;

    /// Returns the document as XML, without a declaration.
    CString xml() const;

private:
    explicit IXMLDOMDocument(std::shared_ptr<DomTree> owned) : tree(std::move(owned)) {}
    DomTree& get() const;

    std::shared_ptr<DomTree> tree;
};
