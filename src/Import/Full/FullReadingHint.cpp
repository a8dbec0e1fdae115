#include "Import/Full/FullReadingHint.h"

#include "Resources/StringTable.h"

void addUnsupported(CString& unsupported, bool isUsed, const char* words)
{
    if (isUsed)
        unsupported.append(unsupported.empty() ? "" : ", ").append(words);
}

bool isErrorOfLiteralReading(std::string_view text)
{
    const std::string_view statement = loadText(IDS_DTD_STATEMENT);
    return text == loadText(IDS_NO_ROOT) || text.starts_with(statement.substr(0, statement.find('%')));
}
