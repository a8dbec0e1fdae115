#include "Ui/ComboBox.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QWheelEvent>

#include <utility>

namespace {

// Describes a combo box to screen readers as Qt does, but with its label as the name. Qt uses the shown text, which can
// be empty. Children are the list and, of an editable box, the field, in this order.
class SpokenComboBox : public QAccessibleWidget
{
public:
    explicit SpokenComboBox(QComboBox& comboBox) : QAccessibleWidget(&comboBox, QAccessible::ComboBox), box(comboBox) {}

    int childCount() const override { return box.isEditable() ? 2 : 1; }

    QAccessibleInterface* child(int index) const override
    {
        QWidget* const parts[] = {box.view(), box.lineEdit()};
        return index >= 0 && index < childCount() ? QAccessible::queryAccessibleInterface(parts[index]) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface* part) const override
    {
        return part->object() == box.view() ? 0 : part->object() == box.lineEdit() ? 1 : -1;
    }

    // The name is the accessible name; the current entry is the value.
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? box.currentText() : QAccessibleWidget::text(kind);
    }

    QAccessible::State state() const override
    {
        QAccessible::State now = QAccessibleWidget::state();
        now.expandable = true;
        now.expanded = isOpen();
        now.editable = box.isEditable();
        return now;
    }

    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }

    void doAction(const QString& action) override
    {
        if (actionNames().contains(action))
            isOpen() ? box.hidePopup() : box.showPopup();
    }

private:
    bool isOpen() const { return box.view()->isVisible(); }

    QComboBox& box;
};

// Qt asks each factory for an object's interface by the name of its class, then by those of its base classes. It owns
// the result.
QAccessibleInterface* speak(const QString& className, QObject* object)
{
    auto* box = className == "ComboBox" ? qobject_cast<ComboBox*>(object) : nullptr;
    return box ? new SpokenComboBox(*box) : nullptr;
}

} // namespace

// The factory is installed once, before the first box can be asked for its interface.
ComboBox::ComboBox(const QString& label)
{
    [[maybe_unused]] static const bool once = (QAccessible::installFactory(speak), true);
    setAccessibleName(QString(label).remove('&'));
    setFocusPolicy(Qt::StrongFocus); // without focus by the wheel
}

void ComboBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore(); // passed on, so that the page scrolls
}

QComboBox* newRecentCombo(const QString& label)
{
    auto* combo = new ComboBox(label);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setCompleter(nullptr);
    combo->lineEdit()->setAccessibleName(combo->accessibleName());
    return combo;
}

// Qt emits activated() for keys and the wheel as well as for a click in the list. A flag tells them apart.
ChoiceCombo::ChoiceCombo(const QString& label) : ComboBox(label)
{
    connect(this, &QComboBox::activated, this, [this](int index) {
        if (!isHandlingInput)
            choose(index);
    });
}

void ChoiceCombo::setChosen(int index)
{
    chosenIndex = index;
    setCurrentIndex(index);
}

void ChoiceCombo::choose(int index)
{
    if (index != std::exchange(chosenIndex, index))
        Q_EMIT chosen(index);
}

// Return and Escape have their usual effect in the window unless an entry waits to be chosen.
void ChoiceCombo::keyPressEvent(QKeyEvent* event)
{
    const bool isPending = currentIndex() != chosenIndex;
    if (isPending && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        return choose(currentIndex());
    if (isPending && event->key() == Qt::Key_Escape)
        return setCurrentIndex(chosenIndex);
    const QScopedValueRollback<bool> handling(isHandlingInput, true);
    ComboBox::keyPressEvent(event);
}

void ChoiceCombo::wheelEvent(QWheelEvent* event)
{
    const QScopedValueRollback<bool> handling(isHandlingInput, true);
    ComboBox::wheelEvent(event);
}

// The shown entry stays while the box's own list is open or another window is used.
void ChoiceCombo::focusOutEvent(QFocusEvent* event)
{
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        setCurrentIndex(chosenIndex);
    ComboBox::focusOutEvent(event);
}
