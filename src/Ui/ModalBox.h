#pragma once

#include "Base/Text.h"

#include <QString>
#include <QStringList>

class QWidget;

/// Shows one message in a modal box owned by a window: title, text, details in smaller letters where it has any, an OK
/// button, no icon. However long they are, the box takes at most 60 % of the screen's free height, and title and button
/// stay in view; the texts scroll then. They can be selected, and Ctrl+C copies them whole. A MessageBoxHandler, for
/// long work too.
class ModalBox
{
public:
    explicit ModalBox(QWidget& ownerWindow) : owner(&ownerWindow) {}

    void operator()(const CString& text, const CString& title) const;
    void show(const CString& text, const CString& title, const CString& details) const; ///< in the window's thread

    /// Asks a question with a button for each answer, the first the default, and Cancel. Returns the answer's number,
    /// -1 for Cancel.
    int ask(const QString& title, const QString& question, const QStringList& answers) const;

private:
    QWidget* owner;
};

/// While one lives, the boxes that are shown belong to one import. From the second on, a box offers to hide the further
/// ones.
class ImportMessages
{
public:
    ImportMessages();
    ~ImportMessages();
    ImportMessages(const ImportMessages&) = delete;
    ImportMessages& operator=(const ImportMessages&) = delete;
};
