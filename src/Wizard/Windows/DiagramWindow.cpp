#include "Wizard/Windows/DiagramWindow.h"

#include "Types/TypeStructure.h"
#include "Ui/ElidedLabel.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Ui/WaitCursor.h"
#include "Wizard/Windows/DiagramScene.h"
#include "Wizard/Windows/DiagramView.h"
#include "Wizard/Windows/SaveFile.h"

#include <QBuffer>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSvgGenerator>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t kMostTypes = 200;
constexpr std::size_t kMostRows = 40;

void renderSvg(QGraphicsScene& scene, const QString& title, QIODevice& out)
{
    QSvgGenerator svg;
    svg.setOutputDevice(&out);
    if (title == title.toHtmlEscaped()) // or the picture is no XML
        svg.setTitle(title);
    svg.setSize(scene.sceneRect().size().toSize());
    svg.setViewBox(QRectF({}, scene.sceneRect().size()));
    QPainter painter(&svg);
    scene.render(&painter);
}

// Twice the size on the screen, for printing, as far as that gives a picture that programs can open.
void renderPng(QGraphicsScene& scene, QIODevice& out)
{
    constexpr double kMostPixels = 100e6;
    const QSizeF size = scene.sceneRect().size();
    const double scale = std::min(2.0, std::sqrt(kMostPixels / (size.width() * size.height())));
    QImage image((size * scale).toSize().expandedTo({1, 1}), QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter);
    painter.end();
    image.save(&out, "PNG");
}

} // namespace

DiagramWindow::DiagramWindow(QWidget* owner, const TypeStructure& structure, std::uint32_t type) :
    QWidget(owner, Qt::Window), name(toUi(shortName(structure.queryFullName(type)))), status(new ElidedLabel)
{
    const WaitCursor wait;
    setObjectName("diagramWindow");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(plainTitle(tr("%1 - Typeforge picture").arg(name)));
    bool isWhole = true;
    const std::vector<std::uint32_t> types = structure.reach(type, kMostTypes, isWhole);
    scene = new DiagramScene(TypeGraph(structure, types, kMostRows), palette(), font());
    scene->setParent(this);
    view = new DiagramView(scene, scene->queryStart());
    view->setObjectName("picture");
    const QString count = scene->items().isEmpty() ? tr("Graphviz can't lay this picture out.")
                          : !isWhole               ? tr("The nearest %1 types; it reaches more.").arg(types.size())
                          : types.size() == 1      ? tr("It reaches no other type.")
                                                   : tr("%1 types").arg(types.size());
    status->setObjectName("status");
    status->setText(count);
    view->setAccessibleName(tr("Picture of the types that %1 reaches").arg(name));
    view->setAccessibleDescription(count);
    auto* column = new QVBoxLayout(this);
    column->addWidget(view);
    column->addWidget(status);
    column->addLayout(makeButtonRow());
    new QShortcut(Qt::Key_Escape, this, this, &QWidget::close);
    const QSize wanted(fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 36);
    resize(wanted.boundedTo(screen()->availableSize() * 0.9)); // what is left is for the frame
    view->setFocus();
}

QHBoxLayout* DiagramWindow::makeButtonRow()
{
    auto* row = new QHBoxLayout;
    row->addStretch();
    const auto addButton = [&](const char* objectName, const QString& title, const QString& tip, auto action) {
        auto* button = new QPushButton(title);
        button->setObjectName(objectName);
        button->setToolTip(plainToolTip(tip));
        connect(button, &QPushButton::clicked, this, action);
        row->addWidget(button);
        return button;
    };
    constexpr double kStep = 1.25;
    addButton("zoomIn", tr("Zoom &in"), "+", [this] { view->zoom(kStep); });
    addButton("zoomOut", tr("Zoom &out"), "-", [this] { view->zoom(1 / kStep); });
    addButton("showAll", tr("Show &all"), "0", [this] { view->showAll(); });
    QPushButton* saveButton =
        addButton("save", tr("&Save ..."), tr("Saves the picture as SVG or PNG"), &DiagramWindow::save);
    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, saveButton, &QPushButton::click);
    addButton("close", tr("C&lose"), QKeySequence(Qt::Key_Escape).toString(QKeySequence::NativeText), &QWidget::close);
    return row;
}

void DiagramWindow::save()
{
    const CString fileName =
        saveUnderChosenName(*this, "Save the picture", {{"SVG pictures", "*.svg"}, {"PNG pictures", "*.png"}},
                            fromUi(name) + ".svg", [this](const CString& chosen) {
                                const WaitCursor wait;
                                QBuffer bytes;
                                bytes.open(QIODevice::WriteOnly);
                                if (toUi(chosen).endsWith(".png", Qt::CaseInsensitive))
                                    renderPng(*scene, bytes);
                                else
                                    renderSvg(*scene, windowTitle(), bytes);
                                return CString(bytes.data().constData(), static_cast<std::size_t>(bytes.size()));
                            });
    if (!fileName.empty())
        status->setText(tr("Saved as %1.").arg(toUi(fileName)));
}
