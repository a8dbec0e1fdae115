#include "Wizard/Pages/PreviewPane.h"

#include "Resources/DialogIds.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Wizard/Windows/XmlHighlighter.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr qsizetype kMaxReason = 100; // characters
constexpr int kTypingDelay = 300;     // ms to wait for the next key

// Returns a result in words.
QString inWords(const SourcePreview::Count& count)
{
    if (!count.isKnown)
        return "counting ...";
    if (count.fails())
        return "no types, " +
               (count.failure.size() > kMaxReason ? count.failure.left(kMaxReason) + " ..." : count.failure);
    return shownCount(count.types, "type", "types") + ", " +
           (count.losses == 0 ? "no losses" : shownCount(static_cast<qlonglong>(count.losses), "loss", "losses"));
}

} // namespace

// The text keeps its room while it is hidden, so that the controls below don't move. It requests no width, because
// lines of a source can be long.
PreviewPane::PreviewPane(QWidget* reading) :
    text(new QPlainTextEdit), counts(plainLabel()), countButton(new QPushButton("C&ount types"))
{
    text->setObjectName(QString::number(IDC_PREVIEW));
    text->setAccessibleName("Start of the source");
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setReadOnly(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setTabChangesFocus(true);
    text->setPlaceholderText("This is not text.");
    QSizePolicy place(QSizePolicy::Ignored, QSizePolicy::Ignored);
    place.setRetainSizeWhenHidden(true);
    text->setSizePolicy(place);
    text->setMinimumHeight(fontMetrics().height() * 3);
    text->hide();
    new XmlHighlighter(text->document(), palette());
    counts->setObjectName(QString::number(IDC_COUNTS));
    counts->setWordWrap(true);
    countButton->setObjectName(QString::number(IDC_COUNT_TYPES));
    countButton->hide();
    auto* row = new QHBoxLayout;
    row->addWidget(counts, 1);
    row->addWidget(countButton);
    row->addWidget(reading);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(text, 1);
    column->addLayout(row);
    delay.setSingleShot(true);
    delay.setInterval(kTypingDelay);
    connect(&delay, &QTimer::timeout, this, [this] { start(false); });
    connect(countButton, &QPushButton::clicked, this, [this] { start(true); });
    connect(&preview, &SourcePreview::begun, this, &PreviewPane::showText);
    connect(&preview, &SourcePreview::counted, this, &PreviewPane::showCounts);
}

// The old text stays until the new one arrives, so that the page doesn't flicker while a name is typed.
void PreviewPane::showSource(const SourcePreview::Source& wanted)
{
    stop();
    source = wanted;
    counts->clear();
    countButton->hide();
    if (source.names.empty())
        text->hide();
    else
        delay.start();
}

void PreviewPane::stop()
{
    delay.stop();
    preview.drop();
}

// Sets the height explicitly, because a scrolling page ignores heightForWidth().
void PreviewPane::setCounts(const QString& words)
{
    counts->setText(words);
    counts->setMinimumHeight(0); // because heightForWidth() respects it
    counts->setMinimumHeight(
        std::max(counts->fontMetrics().lineSpacing() * 3, counts->heightForWidth(counts->width())));
}

// The counts wrap, so their height depends on the width.
void PreviewPane::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    setCounts(counts->text());
}

void PreviewPane::start(bool isWanted)
{
    if (isWanted)
        text->setFocus(); // the button disappears
    preview.start(source, isWanted);
}

// An equal text is left alone, because setting it would scroll to its start.
void PreviewPane::showText(const QString& start, quint64 size, bool isCounted)
{
    if (start != text->toPlainText())
        text->setPlainText(start);
    text->setHidden(size == 0);
    countButton->setHidden(size == 0 || isCounted);
    if (size == 0)
        counts->clear();
    else if (isCounted)
        setCounts("Counting types ...");
    else
        setCounts("The source has " +
                  QLocale().formattedDataSize(static_cast<qint64>(size), 0, QLocale::DataSizeSIFormat) + '.');
}

void PreviewPane::showCounts(const SourcePreview::Count& literal, const SourcePreview::Count& full)
{
    QString words;
    if (!source.importer->hasFull())
        words = inWords(literal) + '.';
    else if (literal.isKnown)
        words = "As it stands: " + inWords(literal) + ".\nIn full: " + inWords(full) + '.';
    else
        words = "In full: " + inWords(full) + '.';
    setCounts(words);
}
