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
    label->setForegroundRole(QPalette::Text); // it stands on the base colour, not on the window's
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding); // the text takes the room, it doesn't make it
    return label;
}

// A font that is asked for by name and isn't there can come back as any other, a chancery hand for instance: ask first.
QFont coverFont(const CString& family, int height)
{
    QFont font;
    if (QFontDatabase::hasFamily(toUi(family)))
        font.setFamilies({toUi(family)});
    font.setPointSizeF(height * 0.75);
    font.setPointSizeF(height * 0.75 * QFontInfo(font).pixelSize() / QFontMetricsF(font).height());
    return font;
}
