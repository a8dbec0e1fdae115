#include "Ui/SideWindow.h"

#include <QScreen>
#include <QShortcut>

void SideWindow::addCloseButton(QBoxLayout& row)
{
    addButton(row, "close", tr("C&lose"), QKeySequence(Qt::Key_Escape), this, &QWidget::close);
}

void SideWindow::addKeys(QPushButton* button, const QKeySequence& keys)
{
    connect(new QShortcut(keys, this), &QShortcut::activated, button, &QPushButton::click);
}

void SideWindow::resizeToText(int letters, int lines)
{
    const QSize wanted(fontMetrics().averageCharWidth() * letters, fontMetrics().height() * lines);
    resize(wanted.boundedTo(screen()->availableSize() * 0.9)); // leaves room for the frame
}
