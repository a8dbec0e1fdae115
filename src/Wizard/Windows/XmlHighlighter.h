#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

class QPalette;

/// Colours tags, attribute names and values of XML text whose tags each stand on one line. The colours are chosen for
/// the palette's ground.
class XmlHighlighter : public QSyntaxHighlighter
{
public:
    XmlHighlighter(QTextDocument* document, const QPalette& palette);

protected:
    void highlightBlock(const QString& line) override;

private:
    QTextCharFormat tag, attribute, value;
};
