#include "Base/QELApp.h"

#include "Resources/StringTable.h"

#include <new>
#include <stdexcept>

CQELApp theApp;

void CQELApp::Error(UINT textId, UINT titleId)
{
    Error(loadText(textId), titleId);
}

void CQELApp::Error(const CString& text, UINT titleId, const CString& details)
{
    showMessageBox(text, loadText(titleId), details);
}

void CQELApp::Error(const CString& text, UINT titleId, const SourceFault& fault)
{
    const auto isSaid = [&text](const CString& words) { return words.empty() || text.find(words) != CString::npos; };
    CString details = isSaid(fault.reason) ? CString() : fault.reason;
    if (!isSaid(fault.file))
        details += (details.empty() ? "In the file " : "\nIn the file ") + fault.file;
    showMessageBox(text, loadText(titleId), details, &fault);
}

const char* messageOf(const std::exception& error)
{
    const bool isMemory = dynamic_cast<const std::bad_alloc*>(&error) != nullptr;
    const bool isLength = dynamic_cast<const std::length_error*>(&error) != nullptr; // a size that no memory could hold
    return isMemory || isLength ? "There is not enough memory" : error.what();
}
