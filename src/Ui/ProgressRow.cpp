#include "Ui/ProgressRow.h"

#include "Base/Progress.h"
#include "Ui/Announce.h"
#include "Ui/ElidedLabel.h"

#include <QHBoxLayout>
#include <QProgressBar>

ProgressRow::ProgressRow() : text(new ElidedLabel), bar(new QProgressBar)
{
    setObjectName("progressRow");
    text->setObjectName("progressText");
    bar->setObjectName("progressBar");
    bar->setAccessibleName("Progress");
    bar->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    bar->setMinimumWidth(text->fontMetrics().averageCharWidth() * 8);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(text, 3); // by shares, so that the bar keeps its place whatever the text is
    row->addWidget(bar, 1);
}

void ProgressRow::setBarVisible(bool visible)
{
    bar->setVisible(visible);
}

// The bar has a range of its own, because counts of bytes can exceed an int.
void ProgressRow::show(const QString& words, const Progress& progress)
{
    constexpr int steps = 1000;
    const bool isKnown = progress.total != 0;
    const bool isNew = isHidden();
    text->setText(words);
    bar->setAccessibleDescription(words);
    bar->setRange(0, isKnown ? steps : 0);
    if (isKnown)
        bar->setValue(static_cast<int>(double(progress.done) / double(progress.total) * steps));
    setVisible(true);
    if (isNew)
        announce(*text, words);
}
