#pragma once

#include "Base/Text.h"

#include <QString>
#include <QStringList>

class QWidget;

/// Shows one message in a modal box of a window: title, text, details in smaller letters if there are any, an OK
/// button, no icon. The box takes at most 60 % of the screen's free height; longer texts scroll, so that title and
/// button stay visible. The texts can be selected, and Ctrl+C copies them whole. It is a MessageBoxHandler that long
/// work can call too. The window must outlive the object.
class ModalBox
{
public:
    explicit ModalBox(QWidget& ownerWindow) : owner(&ownerWindow) {}

    /// Shows a message with the details of the calling thread, from any thread. Returns when the user has closed the
    /// box, and at once if the user has hidden the messages of the import.
    void operator()(const CString& text, const CString& title) const;
    /// The same with given details, "" for none.
    void show(const CString& text, const CString& title, const CString& details) const; ///< only in the window's thread

    /// Asks a question with a button for each answer and Cancel. The first answer is the default. Returns the answer's
    /// index, -1 for Cancel.
    int ask(const QString& title, const QString& question, const QStringList& answers) const;

private:
    QWidget* owner;
};

/// The scope of one import's boxes. From the second on, a box offers to hide the further ones of the import. Create it
/// in the window's thread, around the import; there is one at a time. Outside of such a scope each box is shown.
class ImportMessages
{
public:
    ImportMessages();
    ~ImportMessages();
    ImportMessages(const ImportMessages&) = delete;
    ImportMessages& operator=(const ImportMessages&) = delete;
};
