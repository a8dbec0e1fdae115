#include "Wizard/Windows/DocumentWindow.h"

#include "Types/IndentedDocument.h"
#include "Ui/ElidedLabel.h"
#include "Ui/UiText.h"
#include "Wizard/Windows/SaveFile.h"
#include "Wizard/Windows/XmlHighlighter.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QShortcut>

// The first piece of the text is there when the window opens; a timer of 0 ms adds the others between events.
DocumentWindow::DocumentWindow(QWidget* owner, const CString& typeName, const CString& typeDocument,
                               const QString& note, Kind documentKind) :
    SideWindow(owner, "documentWindow"),
    name(typeName), document(typeDocument), kind(documentKind), text(new QPlainTextEdit), findEdit(new QLineEdit),
    status(new ElidedLabel(note))
{
    setAttribute(Qt::WA_DeleteOnClose);
    const bool isType = kind == ofType;
    setWindowTitle(plainTitle((isType ? tr("%1 - Typeforge type") : tr("%1 - Typeforge")).arg(toUi(name))));
    text->setObjectName("document");
    text->setAccessibleName(isType ? tr("Document of the type") : toUi(name));
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setReadOnly(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard); // shows a cursor
    text->setTabChangesFocus(true);
    text->setUndoRedoEnabled(false); // keeps no second copy of the text
    if (isType)
        new XmlHighlighter(text->document(), palette());
    shown = toUi(isType ? indentedDocument(document) : document);
    // 20 ms at a time, so that the window reacts meanwhile.
    connect(&filling, &QTimer::timeout, this, [this] { fill(20); });
    filling.start();
    fill(0);
    text->moveCursor(QTextCursor::Start);
    auto* column = new QVBoxLayout(this);
    column->addLayout(makeFindRow());
    column->addWidget(text);
    column->addWidget(status);
    column->addLayout(makeButtonRow());
    resizeToText(110, 30);
    text->setFocus();
}

QHBoxLayout* DocumentWindow::makeFindRow()
{
    auto* row = new QHBoxLayout;
    QLabel* label = plainLabel(tr("&Find:"));
    label->setBuddy(findEdit);
    findEdit->setObjectName("find");
    findEdit->setClearButtonEnabled(true);
    row->addWidget(label);
    row->addWidget(findEdit);
    addButton(*row, "findNext", tr("&Next"), QKeySequence::FindNext, this, [this] { find(false); });
    addButton(*row, "findPrevious", tr("&Previous"), QKeySequence::FindPrevious, this, [this] { find(true); });
    connect(findEdit, &QLineEdit::returnPressed, this, [this] { find(false); });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, findEdit, [this] {
        findEdit->setFocus();
        findEdit->selectAll();
    });
    return row;
}

QHBoxLayout* DocumentWindow::makeButtonRow()
{
    auto* row = new QHBoxLayout;
    status->setObjectName("status");
    row->addStretch();
    addButton(*row, "copy", tr("&Copy"), tr("Copies the selected text, or all of it"), this, &DocumentWindow::copy);
    addKeys(addButton(*row, "save", tr("&Save ..."), tr("Saves the document in a file"), this, &DocumentWindow::save),
            QKeySequence::Save);
    addCloseButton(*row);
    return row;
}

// Shows more of the text, at least one piece and for about that many milliseconds. A type with 100,000 constants took
// 1.5 s at once, most of it for colouring.
void DocumentWindow::fill(qint64 time)
{
    constexpr qsizetype piece = 8'192; // characters
    QElapsedTimer since;
    since.start();
    // Not the user's cursor, which can be moved meanwhile.
    QTextCursor end(text->document());
    end.movePosition(QTextCursor::End);
    do {
        const qsizetype line = shown.indexOf('\n', filled + piece) + 1; // whole lines, because each is coloured once
        const qsizetype next = line > 0 ? line : shown.size();
        end.insertText(shown.mid(filled, next - filled));
        filled = next;
    } while (filled < shown.size() && since.elapsed() < time);
    if (filled < shown.size())
        return;
    filling.stop();
    if (wantedSearch)
        find(*wantedSearch);
}

// Searches for the text of the field from the cursor on, and continues from the other end if nothing more is found.
// Waits until the whole text is shown. The status says that the search has continued, or that there is no such text.
void DocumentWindow::find(bool backward)
{
    if (filling.isActive()) {
        wantedSearch = backward;
        status->setText(tr("Searching ..."));
        return;
    }
    const QString wanted = findEdit->text();
    if (wanted.isEmpty()) {
        findEdit->setFocus();
        return;
    }
    const QTextDocument::FindFlags flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    status->clear();
    // Moves the user's cursor if it finds something.
    if (text->find(wanted, flags))
        return;
    QTextCursor end = text->textCursor();
    end.movePosition(backward ? QTextCursor::End : QTextCursor::Start);
    const QTextCursor found = text->document()->find(wanted, end, flags);
    if (!found.isNull())
        text->setTextCursor(found);
    status->setText(found.isNull() ? tr("There is no \"%1\".").arg(wanted)
                    : backward     ? tr("Continued from the end.")
                                   : tr("Continued from the start."));
}

// Copies the selection, or all of the text, also if the window is not filled yet.
void DocumentWindow::copy()
{
    if (text->textCursor().hasSelection())
        text->copy();
    else
        QGuiApplication::clipboard()->setText(shown);
    status->setText(tr("Copied."));
}

// Saves the document as the importer wrote it. The indented text is only shown.
void DocumentWindow::save()
{
    const bool isType = kind == ofType;
    const FileFilter filter = isType ? FileFilter{"XML files", "*.xml"} : FileFilter{"Text files", "*.txt"};
    const CString fileName =
        saveUnderChosenName(*this, isType ? "Save the type" : "Save the report", {filter},
                            name + (isType ? ".xml" : ".txt"), [this](const CString&) { return document; });
    if (!fileName.empty())
        status->setText(tr("Saved as %1.").arg(toUi(fileName)));
}
