#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

class QPalette;

/// Colours tags, attribute names and values of XML with one tag on a line. The colours suit the palette's background.
class XmlHighlighter : public QSyntaxHighlighter
{
public:
    XmlHighlighter(QTextDocument* document, const QPalette& palette);

protected:
    void highlightBlock(const QString& line) override;

private:
    QTextCharFormat tag, attribute, value;
};
