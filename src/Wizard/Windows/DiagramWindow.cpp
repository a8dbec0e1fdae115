#include "Wizard/Windows/DiagramWindow.h"

#include "Base/Progress.h"
#include "Resources/StringIds.h"
#include "Resources/StringTable.h"
#include "Ui/ComboBox.h"
#include "Ui/ElidedLabel.h"
#include "Ui/LongWork.h"
#include "Ui/ModalBox.h"
#include "Ui/PlainText.h"
#include "Ui/ProgressRow.h"
#include "Ui/UiText.h"
#include "Wizard/Windows/Diagram.h"
#include "Wizard/Windows/DiagramView.h"
#include "Wizard/Windows/SaveFile.h"

#include <QPointer>
#include <QScopeGuard>
#include <QShortcut>

// A picture is made in two parts. The types around one type are collected in the window's thread, to which the
// structure belongs. Layout and files take long and are made in the work's thread, from a graph or a diagram that
// doesn't change. Back keeps types, not pictures, so an earlier picture is laid out again, by the current choices.
namespace {

// Graphviz's time grows faster than the number of types, so a picture has at most kMaxTypes. The first picture shows
// all types that a type reaches only if they are few.
constexpr std::size_t kMaxTypes = 200;
constexpr std::size_t kManyTypes = 60; // more are only shown on request
constexpr std::size_t kMaxRows = 40;
constexpr int kAllDepths = 3; // row of the list of depths, after 1, 2 and 3

// Thrown if a picture is too large for a PNG and the user chooses an SVG instead.
struct SvgWanted
{};

} // namespace

DiagramWindow::DiagramWindow(QWidget* owner, const std::shared_ptr<const TypeStructure>& shownStructure) :
    SideWindow(owner, "diagramWindow"), structure(shownStructure), view(new DiagramView), status(new ElidedLabel)
{
    setAttribute(Qt::WA_DeleteOnClose);
    view->setObjectName("picture");
    status->setObjectName("status");
    connect(view, &DiagramView::boxChosen, this, &DiagramWindow::choose);
    connect(view, &DiagramView::boxEntered, this, &DiagramWindow::goTo);
    auto* column = new QVBoxLayout(this);
    column->addLayout(makeChoiceRow());
    column->addWidget(view);
    column->addWidget(status);
    column->addWidget(makeButtons());
    for (const QKeySequence& key : {QKeySequence(Qt::ALT | Qt::Key_Left), QKeySequence(Qt::Key_Backspace)})
        new QShortcut(key, this, this, &DiagramWindow::goBack);
    resizeToText(130, 36);
    view->setFocus();
}

// Returns the row above the picture: Back, and the choices of direction and depth.
QHBoxLayout* DiagramWindow::makeChoiceRow()
{
    backButton = new QPushButton(tr("&Back"));
    backButton->setObjectName("pictureBack");
    backButton->setToolTip(plainToolTip(tr("Back to the previous picture (Alt+Left)")));
    backButton->setEnabled(false);
    connect(backButton, &QPushButton::clicked, this, &DiagramWindow::goBack);
    auto* row = new QHBoxLayout;
    row->addWidget(backButton);
    row->addStretch();
    const auto addCombo = [&](const char* objectName, const QString& label, const QStringList& choices) {
        auto* combo = new ComboBox(label);
        combo->setObjectName(objectName);
        combo->addItems(choices);
        // Only the user's choice draws, not that of open() or redraw().
        connect(combo, &QComboBox::activated, this, &DiagramWindow::redraw);
        QLabel* words = plainLabel(label);
        words->setBuddy(combo);
        row->addWidget(words);
        row->addWidget(combo);
        return combo;
    };
    direction = addCombo("direction", tr("S&how:"), {tr("Types it uses"), tr("Types that use it"), tr("Both")});
    depth = addCombo("depth", tr("&Depth:"), {"1", "2", "3", tr("Any")});
    depth->setCurrentIndex(kAllDepths);
    return row;
}

// Returns the two rows of which one is shown: the buttons, or the progress of work with Cancel.
QWidget* DiagramWindow::makeButtons()
{
    buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins({});
    row->addStretch();
    addButton(*row, "zoomIn", tr("Zoom &in"), "+", view, [this] { view->zoom(1); });
    addButton(*row, "zoomOut", tr("Zoom &out"), "-", view, [this] { view->zoom(-1); });
    addButton(*row, "showAll", tr("Show &all"), "0", view, &DiagramView::showAll);
    addKeys(addButton(*row, "save", tr("&Save ..."), tr("Saves the picture as SVG or PNG"), this, &DiagramWindow::save),
            QKeySequence::Save);
    addCloseButton(*row);

    work = new QWidget;
    progress = new ProgressRow;
    cancelButton = new QPushButton(tr("&Cancel"));
    cancelButton->setObjectName("cancelWork");
    auto* workRow = new QHBoxLayout(work);
    workRow->setContentsMargins({});
    workRow->addWidget(progress, 1);
    workRow->addWidget(cancelButton);
    work->hide();

    auto* both = new QWidget;
    auto* column = new QVBoxLayout(both);
    column->setContentsMargins({});
    column->addWidget(buttons);
    column->addWidget(work);
    return both;
}

// Returns false if the work was cancelled. The row of buttons is replaced by one with the progress, also in a window
// that is not yet shown, so that the user sees the progress. Only Cancel has input. The focus returns to its earlier
// control, because the work may have been started from a list.
bool DiagramWindow::runLong(const std::function<void()>& call)
{
    LongWork longWork(*cancelButton);
    const auto tell = [&] {
        progress->show(longWork.isCancelled() ? tr("Cancelling ...") : tr("Drawing the picture ..."), longWork.query());
    };
    connect(cancelButton, &QPushButton::clicked, &longWork, &LongWork::cancel);
    connect(&longWork, &LongWork::progressed, this, tell);
    connect(&longWork, &LongWork::becameVisible, this, [&] {
        buttons->hide();
        work->show();
        tell();
        show(); // the window may not have been shown yet
        cancelButton->setFocus();
    });
    const auto end = qScopeGuard([this, focus = QPointer<QWidget>(focusWidget())] {
        const bool wasShown = !work->isHidden();
        work->hide();
        buttons->show();
        if (wasShown && focus) // while the work ran, only Cancel could have it
            focus->setFocus();
    });
    try {
        longWork.run(call);
    } catch (const Cancelled&) {
        return false;
    }
    return true;
}

// With many types, the first picture has only the neighbours, in both directions; the user can go on from there.
void DiagramWindow::open(std::uint32_t type)
{
    bool isComplete = true;
    // Only checks whether there are more than kManyTypes.
    structure.lock()->reach(type, kManyTypes, isComplete);
    if (!isComplete) {
        depth->setCurrentIndex(0);
        direction->setCurrentIndex(static_cast<int>(TypeStructure::Direction::both));
    }
    if (draw(type))
        show();
    else
        close();
}

// Collects the types here and only lays them out in the work's thread, because a structure belongs to one thread.
// Members are set when the picture is complete, so that a cancelled one leaves no trace.
bool DiagramWindow::draw(std::uint32_t type)
{
    if (!areTypesThere())
        return false;
    const auto types = structure.lock();
    const std::size_t steps = depth->currentIndex() == kAllDepths ? TypeStructure::kAnyDepth
                                                                  : static_cast<std::size_t>(depth->currentIndex()) + 1;
    bool isComplete = true;
    const std::vector<std::uint32_t> around =
        types->reach(type, kMaxTypes, isComplete, TypeStructure::Direction(direction->currentIndex()), steps);
    const TypeGraph graph(*types, around, kMaxRows);
    std::shared_ptr<const Diagram> drawn;
    const bool isDone = runLong([&, tones = palette(), letters = font()] {
        beginWork(Work::arranging);
        drawn = std::make_shared<const Diagram>(graph, tones, letters);
        // Graphviz can't be interrupted, so a cancelled layout is dropped at its end.
        throwIfCancelled();
    });
    if (!isDone)
        return false;
    shown = type;
    shownDirection = direction->currentIndex();
    shownDepth = depth->currentIndex();
    diagram = drawn;
    name = toUi(shortName(types->queryFullName(type)));
    setWindowTitle(plainTitle(tr("%1 - Typeforge picture").arg(name)));
    view->showDiagram(diagram);
    status->setText(diagram->isEmpty() ? tr("Graphviz can't lay this picture out.")
                                       : countOf(around.size(), isComplete));
    view->setAccessibleName(tr("Picture of the types around %1").arg(name));
    view->setAccessibleDescription(status->text());
    backButton->setEnabled(!earlier.empty());
    return true;
}

QString DiagramWindow::countOf(std::size_t types, bool isComplete) const
{
    if (!isComplete)
        return tr("The nearest %1 types are shown; there are more.").arg(types);
    const QString count = types == 1 ? tr("No other type") : tr("%1 types").arg(types);
    return depth->currentIndex() == kAllDepths ? count : tr("%1; double-click a type to continue from it.").arg(count);
}

// If the drawing is cancelled, restores the choices for the picture that stays.
void DiagramWindow::redraw()
{
    if (draw(shown))
        return;
    direction->setCurrentIndex(shownDirection);
    depth->setCurrentIndex(shownDepth);
}

// The list of earlier types grows only if the new picture is shown.
void DiagramWindow::goTo(std::size_t box)
{
    const std::uint32_t type = diagram->typeOf(box);
    if (type == shown)
        return;
    earlier.push_back(shown);
    if (!draw(type))
        earlier.pop_back();
}

// The list of earlier types is only cut if the earlier picture is shown.
void DiagramWindow::goBack()
{
    if (earlier.empty())
        return;
    const std::uint32_t type = earlier.back();
    earlier.pop_back();
    if (!draw(type))
        earlier.push_back(type);
}

void DiagramWindow::choose(std::size_t box)
{
    if (areTypesThere())
        Q_EMIT typeChosen(diagram->typeOf(box));
}

// Returns whether the structure still exists. If not, disables the controls that need it and shows the reason.
bool DiagramWindow::areTypesThere()
{
    if (!structure.expired())
        return true;
    for (QWidget* control : std::initializer_list<QWidget*>{backButton, depth, direction})
        control->setEnabled(false);
    status->setText(tr("The types have changed since; this picture shows the earlier ones."));
    return false;
}

// SvgWanted starts the dialog again, because a file of another type needs another name. The exception leaves the file
// that was chosen first as it was. The name stays empty if the user cancels the dialog, and on failure.
void DiagramWindow::save()
{
    std::vector<FileFilter> filters = {{"SVG pictures", "*.svg"}, {"PNG pictures", "*.png"}};
    const auto saveByDialog = [&] {
        return saveUnderChosenName(*this, "Save the picture", filters, fromUi(name) + ".svg",
                                   [this](const CString& chosen) { return bytesFor(chosen); });
    };
    CString fileName;
    try {
        try {
            fileName = saveByDialog();
        } catch (const SvgWanted&) {
            filters.pop_back();
            fileName = saveByDialog();
        }
    } catch (const Cancelled&) {
        return status->setText(tr("The picture was not saved."));
    } catch (const std::exception& error) {
        ModalBox(*this).show(error.what(), loadText(IDS_ERROR_TITLE), {});
    }
    if (!fileName.empty())
        status->setText(tr("Saved as %1.").arg(toUi(fileName)));
}

// Returns the bytes of the file. Throws Cancelled and SvgWanted. The suffix decides, because the dialog gives each file
// type its own.
CString DiagramWindow::bytesFor(const CString& fileName)
{
    const bool isPng = toUi(fileName).endsWith(".png", Qt::CaseInsensitive);
    if (isPng && wantsSvgInstead())
        throw SvgWanted();
    QByteArray bytes;
    const QString title = windowTitle();
    if (!runLong([&] { bytes = isPng ? drawPng(*diagram) : drawSvg(*diagram, title); }))
        throw Cancelled();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

// Returns whether to save an SVG instead. Asks the user if a PNG would have to be smaller than the picture. Throws
// Cancelled.
bool DiagramWindow::wantsSvgInstead()
{
    double scale = 1;
    const QSize size = pngSize(*diagram, scale);
    if (scale >= 1)
        return false;
    const QString question = tr("The picture is too large for a PNG in full size. At %1 x %2 pixels it has %3 % of "
                                "that size, and small text may be illegible. An SVG keeps the full size.")
                                 .arg(size.width())
                                 .arg(size.height())
                                 .arg(static_cast<int>(scale * 100));
    const int answer =
        ModalBox(*this).ask(tr("Save the picture"), question, {tr("Save as S&VG ..."), tr("Save a smaller &PNG")});
    if (answer < 0)
        throw Cancelled();
    return answer == 0;
}
