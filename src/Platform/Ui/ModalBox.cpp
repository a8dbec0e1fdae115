#include "Platform/Ui/ModalBox.h"

#include "Platform/Ui/UiText.h"
#include "Platform/Ui/WaitCursor.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QGridLayout>
#include <QMessageBox>
#include <QSpacerItem>

namespace {

struct Series
{
    bool running = false;
    int shown = 0;
    bool hidden = false;
};

Series series;

// A window manager cuts a title that is longer than the window: room for the title and its buttons is held open.
void widenForTitle(QMessageBox& box)
{
    const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + 160;
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
}

} // namespace

void ModalBox::operator()(const CString& text, const CString& title) const
{
    if (series.hidden)
        return;
    QMessageBox box(QMessageBox::NoIcon, toUi(title), {}, QMessageBox::Ok, owner);
    box.setTextFormat(Qt::PlainText);
    box.setText(toUi(text));
    box.setWindowModality(Qt::WindowModal);
    if (series.running && series.shown++ > 0)
        box.setCheckBox(new QCheckBox("&Hide further messages of this import"));
    widenForTitle(box);
    const PlainCursor arrow;
    box.exec();
    series.hidden = box.checkBox() != nullptr && box.checkBox()->isChecked();
}

ImportMessages::ImportMessages()
{
    series = {true, 0, false};
}

ImportMessages::~ImportMessages()
{
    series = {};
}
