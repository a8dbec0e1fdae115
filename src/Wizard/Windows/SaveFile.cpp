#include "Wizard/Windows/SaveFile.h"

#include "Files/AtomicFile.h"
#include "Files/FileMessage.h"
#include "Resources/StringIds.h"
#include "Resources/StringTable.h"
#include "Ui/ModalBox.h"
#include "Ui/UiText.h"

#include <QDir>

#include <algorithm>

// Only commit() touches an existing file, so a failure or an exception before leaves it as it was.
CString saveUnderChosenName(QWidget& owner, const CString& title, const std::vector<FileFilter>& filters,
                            CString suggested, const std::function<CString(const CString& fileName)>& bytes)
{
    std::replace(suggested.begin(), suggested.end(), '/', '_'); // type names may contain it
    const CString fileName = chooseFileToSave(&owner, {title, filters, fromUi(QDir::currentPath()), suggested});
    if (fileName.empty())
        return {};
    AtomicFile file(fileName);
    file.write(bytes(fileName));
    const int error = file.commit();
    if (error == 0)
        return fileName;
    ModalBox(owner).show(cantOpen(fileName, fileCauseOf(error)), loadText(IDS_ERROR_TITLE), inWords(error));
    return {};
}
