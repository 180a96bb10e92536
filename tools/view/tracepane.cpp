#include "tracepane.h"

#include "traceplot.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalBlocker>

#include <utility>

TracePane::TracePane(QWidget *parent)
    : QWidget(parent), sources_(new QComboBox), masses_(new QLineEdit), place_(new QLineEdit),
      plot_(new TracePlot)
{
    sources_->setToolTip(QStringLiteral("What the trace is made of"));
    masses_->setPlaceholderText(QStringLiteral("Masses, such as 43, 57-71"));
    masses_->setToolTip(
        QStringLiteral("Traces of these masses and ranges of masses. A click on a peak adds its mass."));
    masses_->setClearButtonEnabled(true);
    place_->setPlaceholderText(QStringLiteral("Scan or time"));
    place_->setToolTip(
        QStringLiteral("Go to a scan, such as 344, or to a time, such as 6.44. A range such "
                       "as 6.4-6.5 shows the average of its scans, 6.4-6.5, 6-6.2 that "
                       "less the background of a second one."));
    place_->setMaximumWidth(fontMetrics().horizontalAdvance(QLatin1Char('x')) * 24);
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(4, 4, 4, 2);
    bar->addWidget(sources_);
    bar->addWidget(masses_, 1);
    bar->addWidget(place_);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(plot_, 1);
    // The keys go to the plot again behind a text that was typed.
    connect(masses_, &QLineEdit::returnPressed, this, [this] {
        plot_->setFocus();
        emit massesTyped(masses_->text());
    });
    connect(masses_, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (text.isEmpty())
            emit massesTyped(text);
    });
    connect(place_, &QLineEdit::returnPressed, this, [this] {
        plot_->setFocus();
        emit placeTyped(place_->text());
    });
    connect(sources_, qOverload<int>(&QComboBox::activated), this,
            [this](int row) { emit sourceChosen(TraceSource(sources_->itemData(row).toInt())); });
}

void TracePane::setSources(const std::vector<TraceSource> &sources, TraceSource shown)
{
    sources_->clear();
    for (const TraceSource source : sources) {
        sources_->addItem(sourceName(source), int(source));
        if (source == shown)
            sources_->setCurrentIndex(sources_->count() - 1);
    }
}

QString TracePane::masses() const
{
    return masses_->text();
}

void TracePane::setMasses(const QString &text)
{
    const QSignalBlocker quiet(masses_);
    if (masses_->text() != text)
        masses_->setText(text);
}

void TracePane::setMassesVisible(bool isVisible)
{
    masses_->setVisible(isVisible);
}

void TracePane::focusMasses()
{
    masses_->setFocus(Qt::ShortcutFocusReason);
    masses_->selectAll();
}

void TracePane::focusPlace()
{
    place_->setFocus(Qt::ShortcutFocusReason);
    place_->selectAll();
}
