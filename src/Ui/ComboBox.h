#pragma once

#include <QComboBox>

/// A combo box that the wheel changes only while it has the focus. A screen reader gets the text of its label as its
/// name, whatever it shows.
class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    /// `label` is the text of the label beside it; its mnemonic is no part of the name.
    explicit ComboBox(const QString& label);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

/// A list to choose from, where a choice costs time. It is made by a click or by Enter; the keys and the wheel only
/// lead to an entry, and the entry that was chosen before comes back by Escape and when the focus leaves.
class ChoiceCombo : public ComboBox
{
    Q_OBJECT

public:
    explicit ChoiceCombo(const QString& label);

    /// Shows an entry as the one that is chosen. Does not emit chosen().
    void setChosen(int index);

Q_SIGNALS:
    /// The user has chosen another entry than before.
    void chosen(int index);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void choose(int index);

    int chosenIndex = 0;
    bool isLed = false; // a key or the wheel leads to another entry right now
};
