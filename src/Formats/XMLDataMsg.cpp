#include "Formats/XMLDataMsg.h"

#include "Formats/XMLDataWalk.h"
#include "Resources/StringTable.h"
#include "Utils/XMLDoc.h"

int XMLDataMessage::parse(const CString& source, const CString& basePath, const CString&)
{
    XMLDataWalk walk;
    XmlDocument document;
    if (!document.streamFile(source, walk))
        return fail(document.queryParseError());
    mainTypeName = walk.queryRootTag();
    typeFolder = basePath + (basePath.ends_with('\\') ? "" : "\\") + mainTypeName + "\\";
    doParse(walk);
    return 1;
}

// Nothing is declared before the document is known to be well-formed.
void XMLDataMessage::doParse(XMLDataWalk& walk)
{
    for (const XMLDataWalk::Declaration& declaration : walk.takeDeclarations()) {
        const XMLDataWalk::Pair& pair = *declaration.pair;
        Element* const parent = pair.parent ? findElement(pair.parent->name) : nullptr;
        const CString name(pair.queryName());
        const CString usageKey =
            (pair.parent ? pair.parent->name : CString()) + "." + name + "." + std::to_string(declaration.sequence);
        const CString description = fillText(loadText(IDS_AUTOMATIC), pair.item->name);
        for (int instances = declaration.repeats ? 2 : 1; instances > 0; --instances) {
            if (pair.isAttribute)
                addAttribute(usageKey, typeFolder, name, description, Element::typeString, parent);
            else
                addElement(usageKey, typeFolder, name, description, Element::typeString, parent);
        }
    }
}
