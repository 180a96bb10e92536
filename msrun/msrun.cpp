#include "msrun.h"

#include "numbers_p.h"
#include "openrun_p.h"
#include "peaksum_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr qint32 mostListed = 10000; // components and groups
constexpr qint32 mostGroupMasses = 1 << 20;

// How far a long operation is.
class Report
{
public:
    Report(const MsRun::Progress &progress, qint32 all) : progress_(progress), all_(all) { }

    // Whether to go on with the scan.
    bool goesOn(qint32 scan) const
    {
        constexpr qint32 often = 256;
        return scan % often != 0 || !progress_ || progress_(double(scan) / all_);
    }

private:
    const MsRun::Progress &progress_;
    qint32 all_;
};

} // namespace

MsRun::MsRun(const QString &name, const MsRunOptions &options)
    : d(std::make_unique<Private>(name, options))
{
}

MsRun::MsRun(MsRun &&other) noexcept = default;
MsRun &MsRun::operator=(MsRun &&other) noexcept = default;
MsRun::~MsRun() = default;

bool MsRun::isOpen() const
{
    return d->file.isOpen();
}

QString MsRun::error() const
{
    return d->error;
}

QString MsRun::name() const
{
    return d->name;
}

MsRun::Kind MsRun::kind() const
{
    return d->kind;
}

qint32 MsRun::size() const
{
    return d->size;
}

int MsRun::fileId() const
{
    return d->file.id();
}

qint64 MsRun::pointCount() const
{
    return d->places ? d->places->points() : 0;
}

qint64 MsRun::positionCount() const
{
    return ms_count_positions(d->file.id());
}

bool MsRun::hasStoredMasses() const
{
    return isOpen() && d->file.record()->mass_format == MsFloatFormat && d->scales.mass == 1.0;
}

bool MsRun::hasStoredIntensities() const
{
    return isOpen() && d->file.record()->intensity_format == MsFloatFormat && d->scales.intensity == 1.0
        && d->scales.offset == 0.0;
}

bool MsRun::readsScansAlone() const
{
    return ms_reads_scans_alone(d->file.id());
}

MsSpectrum MsRun::spectrum(qint32 index) const
{
    return d->spectrum(index);
}

bool MsRun::hasSeconds() const
{
    return d->hasSeconds;
}

qint32 MsRun::scanAt(double time) const
{
    const auto timeOf = [this](qint32 scan) { return d->times->of(MsScanHeader(d->file.id(), scan)); };
    if (isOpen() && d->times->ascend()) {
        // The first scan that isn't before that time, or the one before it.
        qint32 low = 0;
        qint32 high = size();
        while (low < high) {
            const qint32 middle = low + (high - low) / 2;
            if (timeOf(middle) < time)
                low = middle + 1;
            else
                high = middle;
        }
        const bool isBehind = low == size() || (low > 0 && time - timeOf(low - 1) <= timeOf(low) - time);
        const qint32 nearest = isBehind ? low - 1 : low;
        if (nearest < 0 || std::isnan(time))
            return -1;
        const double found = timeOf(nearest);
        qint32 first = nearest;
        while (first > 0 && timeOf(first - 1) == found)
            --first;
        return first;
    }
    qint32 nearest = -1;
    double distance = std::numeric_limits<double>::infinity();
    for (qint32 scan = 0; scan < size(); ++scan) {
        const double off = std::abs(timeOf(scan) - time);
        if (off < distance) {
            distance = off;
            nearest = scan;
        }
    }
    return nearest;
}

std::vector<double> MsRun::times() const
{
    std::vector<double> result;
    result.reserve(std::size_t(size()));
    for (qint32 scan = 0; scan < size(); ++scan)
        result.push_back(d->times->of(MsScanHeader(d->file.id(), scan)));
    return result;
}

std::vector<double> MsRun::storedTotals() const
{
    std::vector<double> result;
    result.reserve(std::size_t(size()));
    for (qint32 scan = 0; scan < size(); ++scan)
        result.push_back(known(MsScanHeader(d->file.id(), scan).total_intensity));
    return result;
}

std::vector<double> MsRun::summedTotals(const Progress &progress) const
{
    const Report report(progress, size());
    std::vector<double> result;
    result.reserve(std::size_t(size()));
    for (qint32 scan = 0; scan < size(); ++scan) {
        if (!report.goesOn(scan))
            return {};
        result.push_back(spectrum(scan).summedTotal());
    }
    return result;
}

std::vector<std::vector<double>> MsRun::extractedTraces(const std::vector<MsInterval> &windows,
                                                        const Progress &progress) const
{
    const Report report(progress, size());
    std::vector<std::vector<double>> traces(windows.size());
    for (std::vector<double> &trace : traces)
        trace.reserve(std::size_t(size()));
    for (qint32 scan = 0; scan < size(); ++scan) {
        if (!report.goesOn(scan))
            return {};
        const MsSpectrum one = spectrum(scan);
        const WindowSums sums(one);
        for (std::size_t i = 0; i < windows.size(); ++i)
            traces[i].push_back(sums.of(windows[i]));
    }
    return traces;
}

MsModulation MsRun::modulation(const Progress &progress) const
{
    if (kind() == Kind::Library || !hasSeconds())
        return {};
    std::vector<double> totals = storedTotals();
    const auto missing =
        std::count_if(totals.begin(), totals.end(), [](double total) { return !ms_is_given(total); });
    if (std::size_t(missing) * 2 > totals.size() && kind() == Kind::Spectra)
        totals = summedTotals(progress);
    return ms_guess_modulation(times(), totals);
}

MsPeaks MsRun::summed(const MsInterval &times, double width, const Progress &progress) const
{
    return PeakSum::of(*this, times, progress).peaks(width, 1.0);
}

MsPeaks MsRun::averaged(const MsInterval &times, double width, const Progress &progress) const
{
    const PeakSum sum = PeakSum::of(*this, times, progress);
    return sum.peaks(width, std::max(sum.scans(), 1));
}

MsCompound MsRun::compound(qint32 index) const
{
    if (kind() != Kind::Library || index < 0 || index >= size())
        return MsCompound();
    return MsCompound(d->file.entry(index));
}

std::vector<MsInstrument> MsRun::instruments() const
{
    std::vector<MsInstrument> components;
    for (qint32 i = 0; i < std::min(d->file.instrumentCount(), mostListed); ++i)
        components.push_back(d->file.instrument(i));
    return components;
}

std::vector<MsGroup> MsRun::groups() const
{
    std::vector<MsGroup> groups;
    const qint32 count = std::min(d->file.groupCount(), mostListed); // looks for them
    const MsFileRecord *record = d->file.record();
    const qint32 width = record ? std::max(record->dimensions[MsDim_group_max_masses].size, 1) : 1;
    for (qint32 i = 0; i < std::min(count, std::max(mostGroupMasses / width, 1)); ++i)
        groups.push_back(d->file.group(i));
    return groups;
}

const MsRunFacts &MsRun::facts() const
{
    return d->facts;
}

const MsGlobals &MsRun::globals() const
{
    return d->globals;
}

QList<MsDoubt> MsRun::doubts() const
{
    if (!isOpen())
        return {};
    QStringList mended = d->times->mended();
    if (d->places)
        mended += d->places->mended();
    if (d->hasOtherUnit())
        mended += QStringLiteral("time-units"); // which is said of all units but seconds
    QList<MsDoubt> doubts;
    for (const MsDoubt &doubt : ms_list_doubts(d->file.id(), d->name)) {
        if (!mended.contains(QLatin1String(doubt.code)))
            doubts += doubt;
    }
    return doubts + d->ownDoubts();
}
