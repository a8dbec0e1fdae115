#include "Import/XmlData/XMLDataMsg.h"

#include "Import/XmlData/XMLDataWalk.h"
#include "Resources/StringTable.h"
#include "Xml/XMLDoc.h"

#include <algorithm>

bool XMLDataMessage::setFurtherFiles(const std::vector<CString>& files)
{
    furtherFiles = files;
    model.setTablesInAllParents(!files.empty());
    return true;
}

// One walk reads all files, one after the other, so memory holds names and declarations, but no document.
int XMLDataMessage::parse(const CString& source, const CString& basePath, const CString&)
{
    XMLDataWalk walk(report, !furtherFiles.empty());
    XmlDocument document;
    const auto read = [&](const CString& fileName) {
        walk.beginDocument(report.addFile(fileName));
        return document.streamFile(fileName, walk);
    };
    if (!read(source) || !std::all_of(furtherFiles.begin(), furtherFiles.end(), read))
        return fail(document.queryParseError(), document.queryFault());
    mainTypeName = walk.queryRootTag();
    typeFolder = basePath + (basePath.ends_with('\\') ? "" : "\\") + mainTypeName + "\\";
    doParse(walk);
    return 1;
}

// Declares everything. Called after reading, so that a document that isn't well-formed declares nothing.
void XMLDataMessage::doParse(XMLDataWalk& walk)
{
    const bool isBody = !furtherFiles.empty();
    for (const XMLDataWalk::Declaration& declaration : walk.takeDeclarations()) {
        const XMLDataWalk::Pair& pair = *declaration.pair;
        const CString parentName = pair.key.parent ? pair.key.parent->name : CString();
        Element* const parent = pair.key.parent ? findElement(parentName) : nullptr;
        RunningHash usageKey(parentName);
        usageKey.append(isBody && pair.key.isAttribute ? "@" : ".")
            .append(pair.queryName())
            .append(".")
            .append(std::to_string(declaration.sequence));
        // In a set, a marked attribute would keep an element of the same name from becoming a table.
        const bool isMarked = pair.key.isAttribute && !isBody;
        const bool repeats = declaration.repeats && (isMarked || !pair.key.isAttribute);
        // Two instances are enough to show that a usage repeats.
        for (int instances = repeats ? 2 : 1; instances > 0; --instances) {
            Element* element =
                model.addElement(usageKey, typeFolder, pair.item->name, Element::typeString, parent).element;
            if (isMarked)
                element->asAttribute();
        }
    }
    // Called before arrange() makes tables, which replace declared elements.
    walk.reportLosses(model);
}
