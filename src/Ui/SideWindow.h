#pragma once

#include "Ui/PlainText.h"

#include <QBoxLayout>
#include <QKeySequence>
#include <QPushButton>
#include <QWidget>

/// The base of the windows beside the wizard. A window with an owner is destroyed with it, and blocked by the owner's
/// boxes and long work; one without an owner depends on nothing of the wizard.
class SideWindow : public QWidget
{
public:
    SideWindow(QWidget* owner, const char* objectName) : QWidget(owner, Qt::Window) { setObjectName(objectName); }

protected:
    /// Adds a button to a row. A click calls `action` of `receiver`.
    template <class Receiver, class Action>
    static QPushButton* addButton(QBoxLayout& row, const char* objectName, const QString& title, const QString& tip,
                                  Receiver* receiver, Action action)
    {
        auto* button = new QPushButton(title);
        button->setObjectName(objectName);
        button->setToolTip(plainToolTip(tip));
        connect(button, &QPushButton::clicked, receiver, action);
        row.addWidget(button);
        return button;
    }

    /// The same for a button that keys press from anywhere in the window. They are its tool tip.
    template <class Receiver, class Action>
    QPushButton* addButton(QBoxLayout& row, const char* objectName, const QString& title, const QKeySequence& keys,
                           Receiver* receiver, Action action)
    {
        QPushButton* button =
            addButton(row, objectName, title, keys.toString(QKeySequence::NativeText), receiver, action);
        addKeys(button, keys);
        return button;
    }

    /// Adds the button that closes the window, which Escape presses.
    void addCloseButton(QBoxLayout& row);

    /// Makes keys press a button from anywhere in the window.
    void addKeys(QPushButton* button, const QKeySequence& keys);

    /// Sets the size by the average width of letters and the height of lines; smaller on a screen that is too small.
    void resizeToText(int letters, int lines);
};
