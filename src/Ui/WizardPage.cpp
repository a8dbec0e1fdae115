#include "Ui/WizardPage.h"

#include "Ui/Pictures.h"
#include "Ui/UiText.h"
#include "Ui/WizardSheet.h"

#include <QPainter>

WizardPage::WizardPage(int id, Look pageLook, const CString& pageCaption, const CString& pageTitle,
                       const CString& pageSubtitle) :
    dialogId(id),
    look(pageLook), caption(toUi(pageCaption)), title(toUi(pageTitle)), subtitle(toUi(pageSubtitle))
{
    setObjectName(QString::number(id));
}

void WizardPage::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    if (look != Look::cover || owner == nullptr)
        return;
    QPainter painter(this);
    paintWatermark(painter, rect(), owner->queryWatermark());
}
