#include "Wizard/Windows/SaveFile.h"

#include "Files/AtomicFile.h"
#include "Files/FileMessage.h"
#include "Resources/StringIds.h"
#include "Resources/StringTable.h"
#include "Ui/ModalBox.h"
#include "Ui/UiText.h"

#include <QDir>

#include <algorithm>

CString saveUnderChosenName(QWidget& owner, const CString& title, const std::vector<FileFilter>& filters,
                            CString suggested, const std::function<CString(const CString& fileName)>& bytes)
{
    std::replace(suggested.begin(), suggested.end(), '/', '_'); // type names may contain it
    const CString fileName = chooseFileToSave(&owner, {title, filters, fromUi(QDir::currentPath()), suggested});
    if (fileName.empty())
        return {};
    AtomicFile file(fileName);
    file.write(bytes(fileName));
    const FileCause cause = file.commit();
    if (cause == FileCause::none)
        return fileName;
    ModalBox(owner).show(cantOpen(fileName, cause), loadText(IDS_ERROR_TITLE), inWords(file.queryError()));
    return {};
}
