#pragma once

#include <QComboBox>

/// A combo box that the wheel changes only while it has the focus. Otherwise it would change under the pointer while
/// the user scrolls the page. Its name for screen readers is the text of its label.
class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    /// `label` is the text of the label beside it. Its mnemonic is removed from the name.
    explicit ComboBox(const QString& label);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

/// Returns an editable combo box with recent entries. It does not complete typed text, because a new name may begin
/// like a recent one. `label` is the text of the label beside it. The caller puts it into a layout and fills it.
QComboBox* newRecentCombo(const QString& label);

/// A combo box for choices that take time. A click or Enter chooses an entry; keys and the wheel only show it. Escape
/// and losing the focus show the chosen entry again. The shown entry is current; the chosen one is that of the last
/// chosen() or setChosen().
class ChoiceCombo : public ComboBox
{
    Q_OBJECT

public:
    explicit ChoiceCombo(const QString& label);

    /// Makes an entry the chosen one, without emitting chosen(). Call it after the entries have changed.
    void setChosen(int index);

Q_SIGNALS:
    /// Emitted if the user chooses another entry.
    void chosen(int index);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void choose(int index);

    int chosenIndex = 0;
    bool isHandlingInput = false; // a key or the wheel is being handled
};
