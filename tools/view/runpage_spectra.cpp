// Which spectrum a run's page shows, of a scan or of a range of scans, and what is laid over it.

#include "runpage.h"

#include "compoundlist.h"
#include "countedtext_p.h"
#include "mappane.h"
#include "peaktable.h"
#include "spectrumplot.h"
#include "traceplot.h"
#include "typedplace.h"
#include "viewexport.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

std::optional<QCPRange> rangeOf(const std::optional<MsInterval> &interval)
{
    return interval ? std::make_optional(QCPRange(interval->from, interval->to)) : std::nullopt;
}

} // namespace

void RunPage::showHighest()
{
    if (model_->summary().kind == MsRun::Kind::Spectra)
        showScan(model_->highestScan(source_));
}

void RunPage::showScan(qint32 scan)
{
    if (scan < 0 || scan >= model_->summary().size)
        return;
    wanted_ = scan;
    average_.reset();
    background_.reset();
    if (model_->summary().kind != MsRun::Kind::Trace) {
        model_->requestSpectrum(scan);
        return;
    }
    shown_.scan = scan;
    shown_.time = model_->shownTime(scan);
    markShown();
}

void RunPage::stepScans(qint32 by)
{
    const qint32 last = model_->summary().size - 1;
    if (last < 0)
        return;
    const qint64 wanted = std::clamp<qint64>(qint64(std::max(wanted_, 0)) + by, 0, last);
    if (compounds_)
        compounds_->choose(qint32(wanted));
    showScan(qint32(wanted));
}

void RunPage::stepModulations(int by)
{
    const double time = model_->shownTime(wanted_) + by * map_->length() / model_->summary().timeUnit;
    const qint32 scan = model_->scanAt(time);
    const double reached = model_->shownTime(scan) * model_->summary().timeUnit;
    const double length = map_->length();
    // Not at the ends of the run, where the nearest scan is one of the same modulation.
    if (scan != -1 && std::abs(reached - time * model_->summary().timeUnit) < length / 2.0)
        showScan(scan);
}

void RunPage::goTo(const QString &text)
{
    const std::optional<TypedPlace> place = typedPlace(text);
    say(QString());
    if (!place)
        say(QStringLiteral("\"%1\" is neither a scan, such as 344, nor a time, such as 6.44, nor a range "
                           "of times, such as 6.4-6.5.")
                .arg(text));
    else if (place->kind == TypedPlace::Kind::Time)
        showScan(model_->scanAt(place->time));
    else if (place->kind == TypedPlace::Kind::Average) {
        background_ = place->background;
        showAverage(place->average, false);
    } else if (place->scan < model_->summary().size)
        showScan(place->scan);
    else
        say(ms_counted_text("There is no scan %1: the run has %2 [scan|scans], counted from 0.",
                            model_->summary().size,
                            {QString::number(place->scan), QString::number(model_->summary().size)}));
}

void RunPage::showAverage(const MsInterval &times, bool isBackground)
{
    (isBackground ? background_ : average_) = times;
    if (!average_) {
        say(QStringLiteral("The background is known. Drag with Shift over the range to take it from."));
        markShown();
        return;
    }
    say(QString());
    model_->requestAverage(*average_, background_);
}

void RunPage::takeSpectrum(const SpectrumData &spectrum)
{
    shown_ = spectrum;
    spectrum_->setSpectrum(spectrum);
    peaks_->setSpectrum(spectrum);
    markShown();
    askHost();
}

void RunPage::markShown()
{
    trace_->markTime(shown_.scan != -1 ? shown_.time : unknown);
    if (shown_.scan != -1)
        map_->choose(shown_.time * model_->summary().timeUnit);
    trace_->markRanges(rangeOf(average_), rangeOf(background_));
}

void RunPage::setMirrored(const std::optional<SpectrumData> &spectrum)
{
    spectrum_->setMirrored(spectrum);
}

void RunPage::setHost(bool isShown)
{
    showsHost_ = isShown;
    if (!isShown)
        say(QString());
    askHost();
}

void RunPage::askHost()
{
    spectrum_->setHost({});
    if (showsHost_ && shown_.scan != -1 && model_->summary().kind != MsRun::Kind::Trace)
        model_->requestHostScan(shown_.scan);
}

QString RunPage::saveSpectrum(const QString &name)
{
    MspEntry about;
    if (shown_.scan >= 0 && std::size_t(shown_.scan) < model_->compounds().size())
        about = entryOf(model_->compounds()[std::size_t(shown_.scan)], shown_.scan);
    else {
        about.name = QStringLiteral("%1, %2").arg(model_->shownName(), shown_.title);
        if (shown_.scan != -1 && model_->summary().timeUnit != 1.0)
            about.minutes = shown_.time;
    }
    return writeSpectrum(*spectrum_, shown_, about, model_->fileName(), name);
}

QString RunPage::describe(double time, double *nearest) const
{
    const qint32 scan = model_->scanAt(time);
    if (scan == -1)
        return QString();
    *nearest = model_->shownTime(scan);
    const std::vector<double> &totals = model_->trace(source_);
    const double total = std::size_t(scan) < totals.size() ? totals[std::size_t(scan)] : unknown;
    QStringList parts;
    if (model_->summary().hasTimes)
        parts += timeText(*nearest, model_->summary());
    parts += QStringLiteral("scan %1").arg(scan);
    if (!std::isnan(total))
        parts +=
            QStringLiteral("%1: %2").arg(sourceName(source_).toLower(), QString::number(total, 'g', 7));
    return parts.join(QStringLiteral(", "));
}
