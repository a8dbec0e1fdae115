#pragma once

#include "Base/Text.h"

#include <QWidget>

class ChoiceCombo;
class FullMessage;
class MsgBase;
class QLabel;
class QPushButton;

/// What the review page says of how the source was read: how much of it was not carried over, and for a full reading
/// the main element, to choose another where several could be it. Hidden where there is nothing to say.
class ReadingRow : public QWidget
{
    Q_OBJECT

public:
    ReadingRow();

    /// Shows a new import; `full` is the same one where it was read in full, else null.
    void showReading(const MsgBase& message, const FullMessage* full);

    /// Shows what an import left out.
    void showCount(const MsgBase& message);

    /// Offers the full reading, or doesn't.
    void offerFull(bool isOffered);

Q_SIGNALS:
    /// The user has chosen a main element; "" is the source's own choice.
    void mainElementChosen(const CString& name);

    void detailsWanted();
    void fullWanted();

private:
    void showMainElements(const FullMessage* full);

    QLabel* mainElementLabel;
    ChoiceCombo* mainElement;
    QLabel* count;
    QPushButton* readInFull;
    QPushButton* details;
};
