#include "Ui/PlainText.h"

#include <QImage>
#include <QLabel>
#include <QTextDocument>
#include <QUrl>
#include <QVariant>

QLabel* plainLabel(const QString& text)
{
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText); // before the text is set
    label->setText(text);
    return label;
}

// A tool tip's format can't be set, and a wide one only wraps as rich text. Markup in the text is escaped, so the tool
// tip has no other markup than ours.
QString plainToolTip(const QString& text)
{
    constexpr int wide = 80;
    constexpr int longest = 2'000;
    if (text.size() <= wide && !Qt::mightBeRichText(text))
        return text;
    const QString shown = text.size() > longest ? text.left(longest) + "..." : text;
    return "<div style=\"white-space: pre-wrap\">" + shown.toHtmlEscaped() + "</div>";
}

// Qt replaces "[*]" by the mark of an unsaved document; doubled, it is literal.
QString plainTitle(QString text)
{
    return text.replace("[*]", "[*][*]");
}

// The result must be valid, or the document opens the file itself. It is a picture of one pixel. Reading /dev/zero
// would take all memory, and a pipe would block the window.
void closeRichText()
{
    QTextDocument::setDefaultResourceProvider([](const QUrl& url) -> QVariant {
        return url.scheme() == "qrc" ? QVariant() : QImage(1, 1, QImage::Format_Mono);
    });
}
