#pragma once

#include "Platform/Text.h"

#include <QWidget>

class FullMessage;
class QComboBox;
class QLabel;
class QPushButton;

/// What the review page says of a source that was read in full: the main element, to choose another where several could
/// be it, and how much was not carried over. Hidden where there is nothing to say.
class ReadingRow : public QWidget
{
    Q_OBJECT

public:
    ReadingRow();

    /// Shows a new import; null for one that was read literally.
    void showReading(const FullMessage* message);

    /// Shows what the import of another main element left out.
    void showCount(const FullMessage& message);

Q_SIGNALS:
    /// The user has chosen a main element; "" is the source's own choice.
    void mainElementChosen(const CString& name);

    void detailsWanted();

private:
    QLabel* mainElementLabel;
    QComboBox* mainElement;
    QLabel* count;
    QPushButton* details;
};
