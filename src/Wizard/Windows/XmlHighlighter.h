#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

class QPalette;

/// Colours comments, and the tags, attribute names and values of XML with one tag on a line. The colours suit the
/// palette's background. A child of `document`, which colours each line when it is inserted.
class XmlHighlighter : public QSyntaxHighlighter
{
public:
    XmlHighlighter(QTextDocument* document, const QPalette& palette);

protected:
    void highlightBlock(const QString& line) override;

private:
    QTextCharFormat tag, attribute, value, comment;
};
