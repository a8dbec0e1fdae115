#pragma once

#include <QCompleter>

class QLineEdit;

/// Completes the path typed in a field; relative paths start at the current folder. Offers nothing if the text is the
/// name of a file already. Reads the folder on each key, within limits of time and number.
class PathCompleter : public QCompleter
{
public:
    /// `field` owns the completer and must be set to use it.
    explicit PathCompleter(QLineEdit& field);

    /// Closes the open list together with the field, which it would outlive on the next page of a wizard.
    bool eventFilter(QObject* watched, QEvent* event) override;
};
