#pragma once

#include <QCompleter>

class QLineEdit;
class QStringListModel;

/// Completes what is typed in a field as the path of a file, relative ones from the current folder. What is already the
/// name of a file is left alone.
class PathCompleter : public QCompleter
{
public:
    /// Belongs to the field, which is to be given it as its completer.
    explicit PathCompleter(QLineEdit& field);

private:
    void offer(const QString& typed);

    QStringListModel* names;
};
