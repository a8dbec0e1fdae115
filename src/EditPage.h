#pragma once

#include "Platform/Files/TemporaryFiles.h"
#include "QELPage.h"

#include <vector>

class Element;
class ListView;

/// Lists the types of the import and shows the document of one in the user's viewer.
class EditPage : public QELPage
{
public:
    EditPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override { return IDD_OUTPUT; }
    LRESULT OnWizardBack() override;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void OnEdit();
    void OnDblclkEdit();

    ListView* typeList = nullptr;
    std::vector<Element*> types; // the list's rows; the importer owns them
    TemporaryFiles tempFiles;
};
