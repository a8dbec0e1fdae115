#include "Ui/PlainText.h"

#include <QImage>
#include <QLabel>
#include <QTextDocument>
#include <QUrl>
#include <QVariant>

QLabel* plainLabel(const QString& text)
{
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText); // before there is text
    label->setText(text);
    return label;
}

// A tool tip has no format that could be set. One that is wide wraps only as rich text.
QString plainToolTip(const QString& text)
{
    constexpr int wide = 80;
    constexpr int longest = 2'000;
    if (text.size() <= wide && !Qt::mightBeRichText(text))
        return text;
    const QString shown = text.size() > longest ? text.left(longest) + "..." : text;
    return "<div style=\"white-space: pre-wrap\">" + shown.toHtmlEscaped() + "</div>";
}

// "[*]" stands for the mark of an unsaved document, and twice for itself.
QString plainTitle(QString text)
{
    return text.replace("[*]", "[*][*]");
}

// Only a valid answer keeps the document from opening the file itself.
void closeRichText()
{
    QTextDocument::setDefaultResourceProvider([](const QUrl& url) -> QVariant {
        return url.scheme() == "qrc" ? QVariant() : QImage(1, 1, QImage::Format_Mono);
    });
}
