#include "Import/MsgBase.h"

#include "Base/Progress.h"
#include "Base/QELApp.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Resources/StringIds.h"

namespace {

constexpr std::size_t kAhead = 8; // elements that enumNext() prefetches ahead

} // namespace

int MsgBase::parseFile(const CString& fileName, const CString& basePath)
{
    clear();
    CString source;
    if (!isFileMode()) {
        const FileCause cause = readFile(fileName, source);
        if (cause != FileCause::none)
            return fail(cantOpen(fileName, cause), {fileName, inWords(fileName, cause)});
    }
    // If the import is cancelled, no half-filled model stays.
    return orEmpty([&] {
        const int result = parse(isFileMode() ? fileName : source, toXmlText(basePath), fileName);
        source = {}; // frees it, because arranging needs memory of its own
        onAfterParse();
        return result;
    });
}

int MsgBase::parseData(const CString& data, const CString& basePath)
{
    clear();
    return orEmpty([&] {
        const int result = parse(data, toXmlText(basePath), {});
        onAfterParse();
        return result;
    });
}

template <class Import>
int MsgBase::orEmpty(Import import)
{
    try {
        return import();
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

Element* MsgBase::enumNext()
{
    const TypeList& types = model.queryOrder();
    while (enumPosition < types.size()) {
        if (enumPosition + kAhead < types.size())
            __builtin_prefetch(types[enumPosition + kAhead]);
        Element* element = types[enumPosition++];
        if (element->hasOwnDocument())
            return element;
    }
    return nullptr;
}

Element* MsgBase::addElement(const CString& usageKey, const CString& path, const CString& name,
                             const CString& description, Element::ElementTypes type, Element* parent)
{
    return model.addElement(usageKey, path, name, description, type, parent);
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
