#include "Ui/MessageTexts.h"

#include "Ui/PlainText.h"

#include <QAbstractTextDocumentLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QTextEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

// Returns the height of a text wrapped at a width. Signals are blocked, because the field would reset the width to its
// own.
int heightAt(const QTextEdit& text, int width)
{
    const QSignalBlocker quiet(text.document()->documentLayout());
    text.document()->setTextWidth(width);
    return static_cast<int>(std::ceil(text.document()->size().height()));
}

// Returns the wrap mode. Qt's search for break points is quadratic in a word's length, so texts with very long words
// wrap anywhere.
QTextOption::WrapMode wrapModeFor(const QString& text)
{
    constexpr int longWord = 1000;
    int length = 0;
    for (const QChar c : text)
        if (length = c.isSpace() ? 0 : length + 1; length > longWord)
            return QTextOption::WrapAnywhere;
    return QTextOption::WrapAtWordBoundaryOrAnywhere;
}

} // namespace

MessageTexts::MessageTexts(const QString& messageText, const QString& detailsText)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    message = addText(messageText, "Message");
    if (detailsText.isEmpty())
        return;
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    QLabel* heading = plainLabel("Details");
    heading->setFont(small);
    column->addWidget(heading);
    details = addText(detailsText, "Details");
    details->setFont(small);
}

// A text field instead of a label, because a label neither scrolls nor breaks a word that is wider than the box.
QTextEdit* MessageTexts::addText(const QString& text, const char* accessibleName)
{
    auto* edit = new QTextEdit;
    edit->setWordWrapMode(wrapModeFor(text));
    edit->setPlainText(text); // text of a server or a file, so no markup
    edit->document()->setDocumentMargin(0);
    edit->setReadOnly(true);
    edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    edit->setTabChangesFocus(true);
    edit->setAccessibleName(accessibleName);
    edit->setFrameStyle(QFrame::NoFrame);
    edit->viewport()->setAutoFillBackground(false); // looks like a label
    edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout()->addWidget(edit);
    return edit;
}

// The details get the room that the message leaves, and at least half of all.
void MessageTexts::fitInto(int least, int width, int height)
{
    message->document()->setTextWidth(-1);
    const int wanted = static_cast<int>(std::ceil(message->document()->idealWidth()));
    const int wide = std::clamp(details != nullptr ? width : wanted, std::min(least, width), width);
    int room = height;
    if (details != nullptr) {
        const int heading = layout()->itemAt(1)->sizeHint().height() + 2 * layout()->spacing();
        const int lines = heightAt(*details, wide);
        room -= heading;
        details->setFixedHeight(std::min(lines, std::max(room / 2, room - heightAt(*message, wide))));
        room -= details->height();
    }
    message->setFixedHeight(std::min(room, heightAt(*message, wide)));
    setFixedWidth(wide);
}

QString MessageTexts::wholeText() const
{
    return message->toPlainText() + (details != nullptr ? "\n\n" + details->toPlainText() : QString());
}
