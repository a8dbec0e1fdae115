#include "Import/MsgBase.h"

#include "Base/Progress.h"
#include "Base/QELApp.h"
#include "Base/Utf8.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/GenerationTime.h"
#include "Resources/StringIds.h"
#include "Xml/XmlLimits.h"

int MsgBase::parseFile(const CString& fileName, const CString& basePath)
{
    clear();
    CString source = fileName;
    if (!isFileMode()) {
        const FileCause cause = readFile(fileName, source);
        if (cause != FileCause::none)
            return fail(cantOpen(fileName, cause), {fileName, inWords(fileName, cause)});
    }
    return parseAndArrange(std::move(source), basePath, fileName);
}

int MsgBase::parseData(const CString& data, const CString& basePath)
{
    clear();
    return parseAndArrange(data, basePath, {});
}

// If the import is cancelled, clears the model, so that no part of it stays, and passes the exception on. toXmlText()
// converts the base path separately, because its encoding may differ from that of the names.
int MsgBase::parseAndArrange(CString source, const CString& basePath, const CString& fileName)
{
    try {
        const int result = parse(source, toXmlText(basePath), fileName);
        source = CString(); // freed, because arranging needs memory, too; `= {}` would keep the storage
        onAfterParse();
        return result;
    } catch (const Cancelled&) {
        onCancelled();
        clear();
        throw;
    }
}

int MsgBase::beginEnum()
{
    enumPosition = 0;
    return model.queryOrder().typeCount();
}

// Types are scattered in memory, so those that follow are prefetched while the caller uses this one.
Element* MsgBase::enumNext()
{
    const TypeList& types = model.queryOrder();
    while (enumPosition < types.size()) {
        types.prefetchBehind(enumPosition);
        Element* element = types[enumPosition++];
        if (element->hasOwnDocument())
            return element;
    }
    return nullptr;
}

Element* MsgBase::addElement(const CString& usageKey, const CString& path, const CString& name,
                             const CString& description, Element::ElementTypes type, Element* parent)
{
    return model.addElement(usageKey, path, name, description, type, parent).element;
}

Element* MsgBase::addAttribute(const CString& usageKey, const CString& path, const CString& name,
                               const CString& description, Element::ElementTypes type, Element* parent)
{
    // The two names may differ in encoding, so each is converted by itself.
    const CString fullName = parent->queryName() + "_" + toXmlText(name);
    Element* element = addElement(usageKey, path, fullName, description, type, parent);
    element->asAttribute();
    return element;
}

void MsgBase::clear()
{
    model.clear();
    report.clear();
    enumPosition = static_cast<std::size_t>(-1);
}

void MsgBase::noteSharedKey(const TypeModel::Declared& made, const Element* parent, unsigned times, SourcePlace place)
{
    const auto inWords = [](const Element& element, const Element* record) {
        return element.queryName() + (record ? " in " + record->queryName() : CString());
    };
    if (made.sharedWith->queryInstances() == times + 1)
        report.add(SourceReport::inventedRepetition, place,
                   inWords(*made.sharedWith->queryElement(), made.sharedWith->queryParent()) + ", because of " +
                       inWords(*made.element, parent));
    if (times > 1)
        report.add(SourceReport::repetitionSkipped, place, made.element->queryName());
}

void MsgBase::showFault(const CString& text, const SourceFault& fault) const
{
    if (errorHandler)
        errorHandler(text, fault);
    else
        theApp.Error(text, IDS_ERROR_TITLE, fault);
}

int MsgBase::fail(const CString& text, const SourceFault& fault) const
{
    showFault(text, fault);
    return 0;
}

// The parser could not read a document with a longer tag.
CString MsgBase::queryFrameTag() const
{
    const CString name = toXmlName(queryMainTypeName());
    std::string_view tag = std::string_view(name).substr(0, kMaxXmlName);
    dropPartialCharacter(tag);
    return CString(tag);
}

// Each type is rendered into the same buffer and passed on, so memory doesn't grow with the document.
void MsgBase::writeXML(const std::function<void(std::string_view)>& write)
{
    constexpr unsigned typesPerReport = 16;
    ProgressMeter progress(Work::writing, static_cast<std::uint64_t>(beginEnum()), typesPerReport);
    std::uint64_t written = 0;
    const CString tag = queryFrameTag();
    // Types/TextMatch reads this form back.
    write(CString(kBeforeTime).append(generationTime()).append(kAfterTime) + "<" + tag + ">\r\n");
    while (Element* element = enumNext()) {
        write(element->asXML());
        progress.step(++written);
    }
    write("</" + tag + ">");
}

void MsgBase::getXML(CString& out)
{
    out.clear();
    writeXML([&out](std::string_view piece) { out.append(piece); });
}
