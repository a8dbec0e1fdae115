// The message document: what MsgBase writes of a whole import.
#include "Base/Progress.h"
#include "Import/GenerationTime.h"
#include "Import/MsgBase.h"

void MsgBase::writeXML(const std::function<void(std::string_view)>& write)
{
    constexpr unsigned typesATick = 16;
    ProgressMeter progress(Work::writing, static_cast<std::uint64_t>(beginEnum()), typesATick);
    std::uint64_t written = 0;
    const CString mainType = queryMainTypeName();
    write(CString(kBeforeTime) + generationTime() + " -->\r\n<" + mainType + ">\r\n");
    while (Element* element = enumNext()) {
        write(element->asXML());
        progress.step(++written);
    }
    write("</" + mainType + ">");
}

void MsgBase::getXML(CString& out)
{
    out.clear();
    writeXML([&out](std::string_view piece) { out.append(piece); });
}
