#include "Wizard/WindowLayout.h"

#include "Files/Registry.h"
#include "Ui/ListView.h"
#include "Ui/UiText.h"

#include <QSplitter>

#include <algorithm>

// The geometry is Qt's own form in base 64, because only Qt knows how to fit it to other screens. Widths are numbers in
// pixels, so that they can be checked. Both are shorter than the 259 bytes that a text of the settings may have.
namespace {

constexpr const char* kKey = "SOFTWARE\\ZANTH\\QEL\\Window";
constexpr const char* kGeometry = "Geometry";

QString queryText(const CString& name)
{
    return toUi(Registry().getText(kKey, name).value_or(""));
}

// An empty value means that the user has changed nothing; the former layout stays then.
void storeText(const CString& name, const QString& value)
{
    if (!value.isEmpty())
        Registry().setText(kKey, name, fromUi(value));
}

// Returns the `count` numbers of a text like "120 300"; empty for any other text. The settings file can be edited by
// hand.
QList<int> numbersOf(const QString& text, int count)
{
    QList<int> numbers;
    for (const QString& word : text.split(' ', Qt::SkipEmptyParts))
        numbers.append(word.toInt());
    const bool whole = numbers.size() == count && std::all_of(numbers.begin(), numbers.end(), [](int width) {
                           return width > 0 && width < QWIDGETSIZE_MAX;
                       });
    return whole ? numbers : QList<int>();
}

QString textOf(const QList<int>& numbers)
{
    QStringList words;
    for (const int number : numbers)
        words.append(QString::number(number));
    return words.join(' ');
}

// Object names of lists and splitters are unique in the wizard.
CString nameOf(const QObject& control)
{
    return "Widths " + fromUi(control.objectName());
}

} // namespace

void restoreGeometry(QWidget& window)
{
    window.restoreGeometry(QByteArray::fromBase64(queryText(kGeometry).toLatin1()));
}

void restoreWidths(const QWidget& page)
{
    const SettingsTransaction together;
    for (auto* list : page.findChildren<ListView*>())
        if (const auto widths = numbersOf(queryText(nameOf(*list)), list->model()->columnCount()); !widths.isEmpty())
            list->setWidths(widths);
    for (auto* splitter : page.findChildren<QSplitter*>())
        if (const auto widths = numbersOf(queryText(nameOf(*splitter)), splitter->count()); !widths.isEmpty())
            splitter->setSizes(widths);
}

void storeLayout(const QWidget& window)
{
    const SettingsTransaction together;
    storeText(kGeometry, window.saveGeometry().toBase64());
    for (const auto* list : window.findChildren<ListView*>())
        storeText(nameOf(*list), textOf(list->queryWidths()));
    for (const auto* splitter : window.findChildren<QSplitter*>())
        if (const QList<int> sizes = splitter->sizes(); !sizes.contains(0)) // all its parts are visible
            storeText(nameOf(*splitter), textOf(sizes));
}
