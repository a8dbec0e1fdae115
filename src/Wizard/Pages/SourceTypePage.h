#pragma once

#include "Wizard/Pages/QELPage.h"

#include <QElapsedTimer>

class ListView;
class QLineEdit;

/// Chooses the importer and the base path of the types, and sets WizardRun::message and the path of the options. The
/// importer always belongs to the selected row; each time the page is shown, a new one is created. Rows are those of
/// the table of importers.
class SourceTypePage : public QELPage
{
public:
    SourceTypePage();

    void OnInitDialog() override;
    void OnSetActive() override;
    /// Leads to the importer's first page, for a file or a data source; stays if no importer is selected.
    LRESULT OnWizardNext() override;

private:
    /// Creates the importer of the selected row; null if none is selected.
    void OnClickSource();
    void OnDblclkSource();
    QWidget* makePathGroup();

    ListView* importerList = nullptr;
    QLineEdit* pathEdit = nullptr;
    CString objectPath;       // the base path last shown or confirmed
    QString typedPath;        // the typed path that the last click has replaced
    QElapsedTimer sinceTyped; // time since that click; invalid if none has replaced a path
};
