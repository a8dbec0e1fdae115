#include "Import/Schema/Full/SchemaFullMsg.h"

#include "Import/Full/FullReadingHint.h"
#include "Import/Full/RootNames.h"
#include "Import/Schema/Full/SchemaTypes.h"
#include "Xml/XmlParser.h"

#include <utility>

namespace {

// Reads the root of a schema. The literal reading only knows the prefixes xs and xsd, and does not read the documents
// that a schema with a target namespace refers to.
struct SchemaRoot : XmlHandler
{
    void startElement(XmlName name, XmlAttributes attributes, const XmlScope&) override
    {
        if (std::exchange(isSeen, true) || name.local != std::string_view("schema"))
            return;
        const std::string_view prefix = name.prefix ? name.prefix : "";
        hasOtherPrefix = prefix != "xs" && prefix != "xsd";
        for (std::size_t i = 0; i < attributes.size(); ++i)
            hasTarget |= !attributes[i].name.prefix && attributes[i].name.local == std::string_view("targetNamespace");
    }
    void endElement() override {}
    bool wantsText() const override { return false; }

    bool isSeen = false;
    bool hasOtherPrefix = false;
    bool hasTarget = false;
};

} // namespace

SchemaFullMessage::SchemaFullMessage() : FullMessage(*importerNamed("xsd")) {}

// A file that is not well-formed has no full reading either, so it gets no hint.
CString SchemaFullMessage::unsupportedByLiteral(const CString& fileName) const
{
    CString unsupported;
    SchemaRoot root;
    if (parseXmlFile(fileName, root))
        return {};
    addUnsupported(unsupported, root.hasTarget, "a target namespace");
    addUnsupported(unsupported, root.hasOtherPrefix, "a prefix other than xs");
    return unsupported;
}

// With requested types or messages, types are made twice: first all of them, then the requested ones alone, into types
// that are dropped. The second time marks the components that are reached. The report held all constructs back, and
// then releases those of these components, and those of no component.
void SchemaFullMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    if (!queryRoots().empty() || !furtherFiles.empty()) // one of which may be a WSDL
        report.hold();
    SchemaSet set(types, report, *catalogs);
    set.load(source);
    for (const CString& file : furtherFiles)
        set.load(file);
    check(set, fileName);
    const auto sources = set.finish();
    const auto messages = set.findMessages();
    const bool isAskedFor = !queryRoots().empty() || !messages.empty();
    if (isAskedFor)
        set.reportNotes(); // of the documents themselves
    SchemaTypes all(set, types);
    all.read(sources, queryRoots(), messages);
    // Only what the requested types reach is imported, so only that is reported. If none are requested, the messages
    // are.
    if (isAskedFor && !types.empty()) {
        const RootNames names(types);
        std::vector<SchemaNode::Index> wanted;
        for (const CString& root : queryRoots())
            wanted.push_back(all.componentOf(names.find(root)));
        for (const auto& [element, source] : messages)
            if (queryRoots().empty())
                wanted.push_back(element);
        set.dropNotes();
        set.recordReached(queryRoots().empty());
        SourceTypes alone(fileName);
        SchemaTypes(set, alone).readAlone(wanted);
        report.release([&set](SourceReport::Component component) { return set.isReached(component); });
    }
    report.release({});
    set.reportNotes();
}
