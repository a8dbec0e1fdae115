#pragma once

#include "Base/Text.h"

#include <QWidget>

class ChoiceCombo;
class FullMessage;
class MsgBase;
class QLabel;
class QPushButton;

/// The review page's row about how the source was read: what was not carried over, and after a full reading the main
/// element, with a choice if several are possible. Hidden if it has nothing to show.
class ReadingRow : public QWidget
{
    Q_OBJECT

public:
    ReadingRow();

    /// Shows a new import. `full` is the same object if the source was read in full, else null. `offersFull` shows a
    /// button for the full reading.
    void showReading(const MsgBase& message, const FullMessage* full, bool offersFull);

Q_SIGNALS:
    /// Emitted when the user chooses a main element; empty means the source's own choice.
    void mainElementChosen(const CString& name);

    /// Emitted when the user asks for the details, or for the full reading.
    void detailsWanted();
    void fullWanted();

private:
    // Fills the choice of the main element; hides it without a choice.
    void showMainElements(const FullMessage* full);
    // Shows how much was not carried over, and the button for details.
    void showCount(const MsgBase& message);

    QLabel* mainElementLabel;
    ChoiceCombo* mainElement; // in row 0 the source's own choice
    QLabel* count;            // of losses, or else of details
    QPushButton* fullButton;
    QPushButton* details; // shown if the report lists anything
};
