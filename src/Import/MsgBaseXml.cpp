// MsgBase: writing the message document.
#include "Base/Progress.h"
#include "Base/Utf8.h"
#include "Import/GenerationTime.h"
#include "Import/MsgBase.h"
#include "Xml/XmlParser.h"

CString MsgBase::queryFrameTag() const
{
    const CString name = toXmlName(queryMainTypeName());
    std::string_view tag = std::string_view(name).substr(0, kMaxXmlName);
    dropPartialCharacter(tag);
    return CString(tag);
}

void MsgBase::writeXML(const std::function<void(std::string_view)>& write)
{
    constexpr unsigned typesPerReport = 16;
    ProgressMeter progress(Work::writing, static_cast<std::uint64_t>(beginEnum()), typesPerReport);
    std::uint64_t written = 0;
    const CString tag = queryFrameTag();
    write(CString(kBeforeTime) + generationTime() + " -->\r\n<" + tag + ">\r\n");
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
