#include "mappane.h"

#include "mapplot.h"
#include "msmodulation.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QDoubleValidator>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <utility>

namespace {

constexpr double percent = 100.0;

QDoubleSpinBox *secondsBox(double least, const QString &prefix)
{
    auto *box = new QDoubleSpinBox;
    box->setRange(least, MsLongestModulation);
    box->setDecimals(3);
    box->setSingleStep(0.1);
    box->setSuffix(QStringLiteral(" s"));
    box->setPrefix(prefix);
    box->setKeyboardTracking(false);
    return box;
}

QLineEdit *valueField(const QString &placeholder, QWidget *parent)
{
    auto *field = new QLineEdit;
    field->setPlaceholderText(placeholder);
    auto *validator = new QDoubleValidator(parent);
    validator->setLocale(QLocale::c());
    field->setValidator(validator);
    field->setMaximumWidth(field->fontMetrics().horizontalAdvance(QLatin1Char('0')) * 11);
    field->setToolTip(QStringLiteral("The ends of the range of colours; automatic where they are empty"));
    return field;
}

} // namespace

MapPane::MapPane(QWidget *parent)
    : QWidget(parent), plot_(new MapPlot), length_(secondsBox(0.0, QStringLiteral("Modulation: "))),
      shift_(secondsBox(-MsLongestModulation, QStringLiteral("Shift: "))), shown_(new QComboBox),
      scale_(new QComboBox), from_(valueField(QStringLiteral("from"), this)),
      to_(valueField(QStringLiteral("to"), this)), interpolates_(new QCheckBox(QStringLiteral("Smooth"))),
      remark_(new QLabel), chosen_(std::numeric_limits<double>::quiet_NaN())
{
    length_->setSpecialValueText(QStringLiteral("Modulation: not known"));
    scale_->addItems(
        {QStringLiteral("Linear"), QStringLiteral("Square root"), QStringLiteral("Logarithmic")});
    shown_->setToolTip(QStringLiteral("What the colours show"));
    remark_->setMargin(2);
    // In two rows, as one would keep the window wide.
    auto *folding = new QHBoxLayout;
    folding->setContentsMargins(4, 4, 4, 2);
    folding->addWidget(length_);
    folding->addWidget(shift_);
    folding->addWidget(remark_, 1);
    auto *colours = new QHBoxLayout;
    colours->setContentsMargins(4, 2, 4, 2);
    for (QWidget *widget :
         {static_cast<QWidget *>(shown_), static_cast<QWidget *>(scale_), static_cast<QWidget *>(from_),
          static_cast<QWidget *>(to_), static_cast<QWidget *>(interpolates_)})
        colours->addWidget(widget);
    colours->addStretch(1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(folding);
    layout->addLayout(colours);
    layout->addWidget(plot_, 1);

    connect(length_, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this] { fold(false); });
    connect(shift_, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this] { fold(true); });
    connect(shown_, qOverload<int>(&QComboBox::activated), this, [this] { fold(true); });
    connect(scale_, qOverload<int>(&QComboBox::currentIndexChanged), this, [this](int place) {
        plot_->setScale(MapPlot::Scale(place));
        setRange();
    });
    connect(interpolates_, &QCheckBox::toggled, plot_, &MapPlot::setInterpolated);
    connect(from_, &QLineEdit::editingFinished, this, &MapPane::setRange);
    connect(to_, &QLineEdit::editingFinished, this, &MapPane::setRange);
}

void MapPane::setTimes(const std::vector<double> &seconds)
{
    times_ = seconds;
}

void MapPane::setValues(const std::vector<Values> &values)
{
    const QString before = shown_->currentText();
    choices_ = values;
    shown_->clear();
    for (const Values &choice : choices_)
        shown_->addItem(choice.name);
    shown_->setCurrentIndex(std::max(shown_->findText(before), 0));
    fold(true);
}

void MapPane::setGuess(const MsModulation &guess)
{
    guess_ = guess;
    if (guess_.isConfident && length() == 0.0)
        length_->setValue(guess_.seconds);
    fold(true);
}

void MapPane::setLength(double seconds)
{
    length_->setValue(seconds);
}

double MapPane::length() const
{
    return length_->value();
}

void MapPane::choose(double seconds)
{
    chosen_ = seconds;
    plot_->choose(seconds);
}

void MapPane::fold(bool keepsView)
{
    fault_.clear();
    ModulationMap map;
    const int place = shown_->currentIndex();
    if (length() == 0.0)
        fault_ = QStringLiteral("Type the length of the modulation, which the file doesn't hold.");
    else if (place < 0 || choices_[std::size_t(place)].numbers.empty())
        fault_ = QStringLiteral("The run is still being read.");
    else
        map = foldTrace(times_, choices_[std::size_t(place)].numbers, length(), shift_->value(), &fault_);
    const bool isNew = plot_->map().isEmpty();
    plot_->setMap(map, shown_->currentText(), keepsView && !isNew);
    plot_->choose(chosen_);
    plot_->setFault(fault_);
    setRange(); // an end that isn't typed is the map's own
}

void MapPane::showRemark()
{
    QStringList remarks;
    if (!rangeFault_.isEmpty())
        remarks += rangeFault_;
    if (std::isfinite(guess_.seconds))
        remarks += QStringLiteral("Guessed: %1 s, confidence %2%")
                       .arg(guess_.seconds, 0, 'g', 5)
                       .arg(percent * guess_.confidence, 0, 'f', 0);
    const QString remark = remarks.join(QLatin1Char(' '));
    remark_->setText(remark);
    // Cut where the window is narrow, so that the bar doesn't keep it wide.
    remark_->setToolTip(remark);
    remark_->setMinimumWidth(1);
    remark_->setVisible(!remark.isEmpty());
}

void MapPane::setRange()
{
    bool hasFrom = false;
    bool hasTo = false;
    const double from = QLocale::c().toDouble(from_->text(), &hasFrom);
    const double to = QLocale::c().toDouble(to_->text(), &hasTo);
    plot_->setAutomaticRange();
    const QCPRange automatic = plot_->valueRange();
    const double lower = hasFrom ? from : automatic.lower;
    const double upper = hasTo ? to : automatic.upper;
    const bool isWanted = hasFrom || hasTo;
    rangeFault_.clear();
    if (isWanted && lower < upper)
        plot_->setValueRange({lower, upper});
    else if (isWanted)
        rangeFault_ = QStringLiteral("The range of colours ends before it begins.");
    showRemark();
}
