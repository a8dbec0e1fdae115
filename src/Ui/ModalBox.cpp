#include "Ui/ModalBox.h"

#include "Base/MessageBox.h"
#include "Ui/LongWork.h"
#include "Ui/MessageTexts.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Ui/WaitCursor.h"

#include <QCheckBox>
#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStyle>

#include <algorithm>

// A QMessageBox gives title, buttons, keys and the check box; only its label is replaced by texts that scroll. Boxes of
// an import are counted here, in the window's thread, because the importer doesn't know that its errors are shown in
// boxes.
namespace {

// The boxes of one import. A real DTD can report hundreds of faults, one box each.
struct MessageSeries
{
    bool running = false;
    int shown = 0;
    bool hidden = false;
};

MessageSeries series;

// Replaces the box's own label, which grows with its text past the edge of the screen. The label keeps the text and
// shows nothing.
void replaceLabel(QMessageBox& box, MessageTexts* texts)
{
    auto* label = box.findChild<QLabel*>("qt_msgbox_label");
    delete box.layout()->replaceWidget(label, texts);
    label->hide();
}

// Sizes the box for the screen, with room for the title and its buttons, because window managers cut a title that is
// wider than its window.
void fitToScreen(const QMessageBox& box, MessageTexts* texts)
{
    const QSize screen = box.screen()->availableSize();
    const QFontMetrics metrics = box.fontMetrics();
    const int title = metrics.horizontalAdvance(box.windowTitle()) + 160;
    texts->setFixedHeight(0);
    const int around = box.layout()->minimumSize().height() + box.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    texts->setMaximumHeight(QWIDGETSIZE_MAX);
    texts->setMinimumHeight(0);
    texts->fitInto(title, std::min(metrics.averageCharWidth() * 80, screen.width() * 9 / 10),
                   std::max(metrics.height(), screen.height() * 6 / 10 - around));
}

} // namespace

// The details are of the thread that shows the message, so they are read before the call changes the thread. The
// reference stays valid, because that thread waits.
void ModalBox::operator()(const CString& text, const CString& title) const
{
    const CString& details = queryMessageDetails(); // those of this thread
    inWindowThread([&] { show(text, title, details); });
}

// Long work sets a busy cursor for the whole program, so the box sets a plain one.
void ModalBox::show(const CString& text, const CString& title, const CString& details) const
{
    if (series.hidden)
        return;
    QMessageBox box(QMessageBox::NoIcon, plainTitle(toUi(title)), {}, QMessageBox::Ok, owner);
    box.setTextFormat(Qt::PlainText);
    box.setText(toUi(text));
    box.setWindowModality(Qt::WindowModal); // leaves the help usable
    if (series.running && series.shown++ > 0)
        box.setCheckBox(new QCheckBox("&Hide further messages of this import"));
    auto* texts = new MessageTexts(toUi(text), toUi(details));
    replaceLabel(box, texts);
    fitToScreen(box, texts);
    box.setAccessibleDescription(texts->wholeText());
    const auto copy = [texts] { QGuiApplication::clipboard()->setText(texts->wholeText()); };
    QObject::connect(new QShortcut(QKeySequence::Copy, &box), &QShortcut::activated, texts, copy);
    const PlainCursor arrow;
    box.exec();
    series.hidden = box.checkBox() != nullptr && box.checkBox()->isChecked();
}

// Cancel is not in `buttons`, so its index there is -1, and so is that of Escape, which presses Cancel.
int ModalBox::ask(const QString& title, const QString& question, const QStringList& answers) const
{
    QMessageBox box(QMessageBox::NoIcon, plainTitle(title), {}, QMessageBox::Cancel, owner);
    box.setTextFormat(Qt::PlainText);
    box.setText(question);
    box.setWindowModality(Qt::WindowModal);
    QList<QAbstractButton*> buttons;
    for (const QString& answer : answers)
        buttons.append(box.addButton(answer, QMessageBox::AcceptRole));
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
    box.exec();
    return static_cast<int>(buttons.indexOf(box.clickedButton()));
}

ImportMessages::ImportMessages()
{
    series = {true, 0, false};
}

ImportMessages::~ImportMessages()
{
    series = {};
}
