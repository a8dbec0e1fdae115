#include "Utils/QELApp.h"

#include "Platform/MessageBox.h"
#include "Resources/StringTable.h"

CQELApp theApp;

void CQELApp::Error(UINT textId, UINT titleId)
{
    Error(loadText(textId), titleId);
}

void CQELApp::Error(const CString& text, UINT titleId, const CString& details)
{
    showMessageBox(text, loadText(titleId), details);
}
