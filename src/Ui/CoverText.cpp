#include "Ui/CoverText.h"

#include "Ui/PlainText.h"
#include "Ui/UiText.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>

namespace {
constexpr const char* kIsCoverText = "isCoverText";
}

bool isCoverText(const QLabel& label)
{
    return label.property(kIsCoverText).toBool();
}

QLabel* coverText(const CString& text, const QFont& font)
{
    QLabel* label = plainLabel(toUi(text));
    label->setProperty(kIsCoverText, true);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setFont(font);
    label->setForegroundRole(QPalette::Text);                           // the page's background is Base, not Window
    QSizePolicy freeRoom(QSizePolicy::Ignored, QSizePolicy::Expanding); // takes the free room, requests no width
    freeRoom.setHeightForWidth(true);                                   // a page too small for the text scrolls
    label->setSizePolicy(freeRoom);
    return label;
}

// Looks the family up first, because Qt may replace a missing font by any other, for instance a script. A point is 1/72
// inch, so a unit is 0.75 points. The first size makes the letters that high. The second one scales it, so that a whole
// line is that high.
QFont coverFont(const CString& family, int height)
{
    QFont font;
    if (QFontDatabase::hasFamily(toUi(family)))
        font.setFamilies({toUi(family)});
    font.setPointSizeF(height * 0.75);
    font.setPointSizeF(height * 0.75 * QFontInfo(font).pixelSize() / QFontMetricsF(font).height());
    return font;
}
