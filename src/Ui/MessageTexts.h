#pragma once

#include <QWidget>

class QTextEdit;

/// The texts of a message box: the message and, below it in smaller letters, its details. Both can be selected, and
/// scroll if there is too little room.
class MessageTexts : public QWidget
{
public:
    /// Empty details take no room.
    MessageTexts(const QString& message, const QString& details);

    /// Sets a fixed size in pixels. With details the width is `width`, else the message's natural width between `least`
    /// and `width`. The height is that of the texts at this width, at most `height`; if both texts are too long for it,
    /// each gets half.
    void fitInto(int least, int width, int height);

    /// Returns both texts, for copying.
    QString wholeText() const;

private:
    QTextEdit* addText(const QString& text, const char* accessibleName);

    QTextEdit* message;
    QTextEdit* details = nullptr; // null if there are none
};
