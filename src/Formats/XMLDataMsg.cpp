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
        const CString parentName = pair.key.parent ? pair.key.parent->name : CString();
        Element* const parent = pair.key.parent ? findElement(parentName) : nullptr;
        RunningHash usageKey(parentName);
        usageKey.append(".").append(pair.queryName()).append(".").append(std::to_string(declaration.sequence));
        for (int instances = declaration.repeats ? 2 : 1; instances > 0; --instances) {
            Element* element = addElement(usageKey, typeFolder, pair.item->name, Element::typeString, parent);
            if (pair.key.isAttribute)
                element->asAttribute();
        }
    }
}
