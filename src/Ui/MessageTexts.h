#pragma once

#include <QWidget>

class QTextEdit;

/// The texts of a message box: the message and, below it in smaller letters, its details. Both can be selected, and
/// scroll where they need more room than they get.
class MessageTexts : public QWidget
{
public:
    /// Without details there is no part for them.
    MessageTexts(const QString& message, const QString& details);

    /// As wide as the message wants to be but not wider than `width`, and as high as the texts then are but not higher
    /// than `height`; `least` is a width that it takes in any case.
    void fitInto(int least, int width, int height);

    /// Both texts, to be copied.
    QString wholeText() const;

private:
    QTextEdit* addText(const QString& text, const char* accessibleName);

    QTextEdit* message;
    QTextEdit* details = nullptr;
};
