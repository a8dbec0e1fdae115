#include "Wizard/Windows/XmlHighlighter.h"

#include "Ui/Pictures.h"

#include <QRegularExpression>

XmlHighlighter::XmlHighlighter(QTextDocument* document, const QPalette& palette) : QSyntaxHighlighter(document)
{
    const bool dark = isDark(palette);
    tag.setForeground(dark ? QColor(126, 176, 255) : QColor(20, 72, 160));
    attribute.setForeground(dark ? QColor(224, 178, 112) : QColor(122, 62, 0));
    value.setForeground(dark ? QColor(146, 210, 146) : QColor(18, 98, 38));
    comment.setForeground(dark ? QColor(160, 160, 160) : QColor(104, 104, 104));
}

void XmlHighlighter::highlightBlock(const QString& line)
{
    // Each alternative is one group, in the order of `formats`.
    static const QRegularExpression token(R"((</?[^\s/>]+|/?>)|([^\s="]+)(?==)|("[^"]*"|(?<==)'[^']*'))");
    const QTextCharFormat* const formats[] = {&tag, &attribute, &value};
    for (auto matches = token.globalMatch(line); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        setFormat(static_cast<int>(match.capturedStart()), static_cast<int>(match.capturedLength()),
                  *formats[match.lastCapturedIndex() - 1]);
    }
    // Last, because markup in a comment is part of it.
    constexpr int kInComment = 1;
    setCurrentBlockState(0);
    for (qsizetype from = previousBlockState() == kInComment ? 0 : line.indexOf("<!--"); from >= 0;) {
        const qsizetype end = line.indexOf("-->", from);
        const qsizetype behind = end < 0 ? line.size() : end + 3;
        setFormat(static_cast<int>(from), static_cast<int>(behind - from), comment);
        setCurrentBlockState(end < 0 ? kInComment : 0);
        from = line.indexOf("<!--", behind);
    }
}
