#include "Ui/WizardPage.h"

#include "Ui/CoverText.h"
#include "Ui/Pictures.h"
#include "Ui/UiText.h"
#include "Ui/WizardSheet.h"

#include <QLabel>
#include <QPainter>

#include <algorithm>

WizardPage::WizardPage(int id, Look pageLook, const CString& pageCaption, const CString& pageTitle,
                       const CString& pageSubtitle) :
    dialogId(id),
    look(pageLook), caption(toUi(pageCaption)), title(toUi(pageTitle)), subtitle(toUi(pageSubtitle))
{
    setObjectName(QString::number(id));
}

// Without room for the drawing, the page has the colour of the picture's upper left corner, as paintWatermark() uses it
// beside the picture.
void WizardPage::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    if (look != Look::cover || owner == nullptr)
        return;
    QPainter painter(this);
    if (hasRoomForPicture())
        paintWatermark(painter, rect(), owner->queryWatermark());
    else
        painter.fillRect(rect(), owner->queryWatermark().pixelColor(0, 0));
}

// Returns whether all cover texts end above the drawing in the picture, which begins at 56 % of the page's height. At
// 512 x 300 pixels and twice the size of letters they don't.
bool WizardPage::hasRoomForPicture() const
{
    const int drawing = height() * 56 / 100;
    const auto labels = findChildren<QLabel*>();
    return std::none_of(labels.begin(), labels.end(), [drawing](const QLabel* label) {
        return isCoverText(*label) && label->y() + label->heightForWidth(label->width()) > drawing;
    });
}
