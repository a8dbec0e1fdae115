#include "Utils/FileMessage.h"

#include "Resources/StringTable.h"

CString cantOpen(const CString& fileName, FileCause cause)
{
    return formatText(loadText(IDS_CANT_OPEN), fileName.c_str(), static_cast<unsigned>(cause));
}
