#include "Ui/ListFilter.h"

#include "Ui/ListView.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QShortcut>

// Ctrl+F works anywhere in the window, while the keys that the filter watches are those of its field.
ListFilter::ListFilter(ListView& filteredList, const QString& rowNoun) :
    list(filteredList), noun(rowNoun), field(new QLineEdit), count(plainLabel())
{
    field->setObjectName("filter");
    field->setPlaceholderText("Filter (Ctrl+F)");
    field->setAccessibleName("Filter for " + noun + 's');
    field->setAcceptDrops(false); // dropped files are for the page
    field->setClearButtonEnabled(true);
    field->installEventFilter(this);
    count->setObjectName("count");
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(field, 1);
    row->addWidget(count);
    connect(field, &QLineEdit::textChanged, &list, &ListView::setFilter);
    connect(&list, &ListView::shownRowsChanged, this, &ListFilter::showCount);
    connect(new QShortcut(QKeySequence::Find, this, nullptr, nullptr, Qt::WindowShortcut), &QShortcut::activated, field,
            [this] {
                field->setFocus(Qt::ShortcutFocusReason);
                field->selectAll();
            });
}

// Sets the field, because the list drops its filter when it gets other rows, or shows a row that the filter hides. This
// ends, because ListView::setFilter() ignores the text that it has already.
void ListFilter::showCount(const QString& filter)
{
    field->setText(filter);
    const QString all = shownCount(list.queryCount(), noun, noun + 's');
    count->setText(filter.isEmpty() ? all : QLocale().toString(list.rowCount()) + " of " + all);
}

// Watches the keys of the field. Going to the list selects a row if none is, so that the cursor keys have a start.
bool ListFilter::eventFilter(QObject*, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        list.setFocus(Qt::TabFocusReason);
        if (const QModelIndex current = list.currentIndex(); !list.selectionModel()->hasSelection())
            list.setCurrentIndex(current.isValid() ? current : list.model()->index(0, 0));
        return true;
    case Qt::Key_Escape:
        if (field->text().isEmpty())
            return false; // it closes the window, as everywhere
        field->clear();
        return true;
    default:
        return false;
    }
}
