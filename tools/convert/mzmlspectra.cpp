#include "mzmlspectra.h"

#include "mzmlterms.h"
#include "namecodec.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>
#include <numeric>
#include <utility>

#include <boost/make_shared.hpp>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

// The threads ask for spectra a few places apart.
constexpr std::size_t mostWaiting = 256;

BinaryDataArrayPtr makeArray(CVID kind, CVID unit, const double *numbers, std::size_t count)
{
    auto array = boost::make_shared<BinaryDataArray>();
    array->cvParams.emplace_back(kind, "", unit);
    array->data.resize(count);
    std::copy(numbers, numbers + count, array->data.begin());
    return array;
}

} // namespace

std::string xmlText(const QString &text)
{
    QString clean;
    for (const uint letter : shownName(text).toUcs4()) {
        const bool isControl = letter < 0x20 || (letter & 0xfffe) == 0xfffe;
        clean += isControl ? QStringLiteral(" ") : QString::fromUcs4(&letter, 1);
    }
    return clean.trimmed().toStdString();
}

std::string exactText(double number)
{
    char digits[40];
    return {digits, std::to_chars(digits, digits + sizeof(digits), number).ptr};
}

const SpectrumIdentity &RunSpectra::spectrumIdentity(size_t index) const
{
    thread_local SpectrumIdentity identity; // read at once by who asks
    identity.index = index;
    identity.id = "scan=" + std::to_string(facts_.numbers[index]);
    return identity;
}

SpectrumPtr RunSpectra::spectrum(size_t index, bool) const
{
    // An exception would end the process where the library asks from a thread of its own.
    try {
        return make(index);
    } catch (const std::bad_alloc &) {
        const std::lock_guard<std::mutex> lock(mutex);
        isExhausted_ = true;
        return boost::make_shared<Spectrum>();
    }
}

MsSpectrum RunSpectra::take(size_t index, MsCompound *compound) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (run_.kind() == MsRun::Kind::Library)
        *compound = run_.compound(facts_.scans[index]);
    // A run is read ahead only from front to back.
    for (; next <= index && waiting.size() < mostWaiting; ++next)
        waiting.emplace(next, run_.spectrum(facts_.scans[next]));
    const auto place = waiting.find(index);
    if (place == waiting.end())
        return run_.spectrum(facts_.scans[index]);
    MsSpectrum spectrum = std::move(place->second);
    waiting.erase(place);
    return spectrum;
}

SpectrumPtr RunSpectra::make(size_t index) const
{
    MsCompound compound;
    const MsSpectrum scan = take(index, &compound);
    if (!scan.isRead()) {
        const std::lock_guard<std::mutex> lock(mutex);
        isLacking_ = true;
    }
    auto spectrum = boost::make_shared<Spectrum>();
    static_cast<SpectrumIdentity &>(*spectrum) = spectrumIdentity(index);
    spectrum->set(MS_ms_level, 1);
    spectrum->set(facts_.isSelectedIons ? MS_SIM_spectrum : MS_MS1_spectrum);
    spectrum->set(facts_.representation);
    if (facts_.polarity != CVID_Unknown)
        spectrum->set(facts_.polarity);
    spectrum->scanList.set(MS_no_combination);
    spectrum->scanList.scans.emplace_back();
    Scan &details = spectrum->scanList.scans.back();
    if (std::isfinite(facts_.times[index]))
        details.set(MS_scan_start_time, exactText(facts_.times[index]), facts_.timeUnit);
    const MsInterval window = scan.massRange();
    if (std::isfinite(window.from) && std::isfinite(window.to)) {
        details.scanWindows.emplace_back();
        details.scanWindows.back().set(MS_scan_window_lower_limit, exactText(window.from), MS_m_z);
        details.scanWindows.back().set(MS_scan_window_upper_limit, exactText(window.to), MS_m_z);
    }
    if (!compound.name.isNull())
        spectrum->userParams.emplace_back(compoundName, xmlText(compound.name));
    addPoints(scan, spectrum.get());
    if (std::isfinite(facts_.totals[index]))
        spectrum->set(MS_total_ion_current, exactText(facts_.totals[index])); // which takes no unit
    return spectrum;
}

void RunSpectra::addPoints(const MsSpectrum &scan, Spectrum *spectrum) const
{
    const auto count = std::size_t(scan.size());
    const double *masses = scan.masses();
    const double *intensities = scan.intensities();
    std::vector<double> sorted[2];
    if (!std::is_sorted(masses, masses + count)) {
        std::vector<std::size_t> order(count);
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [masses](std::size_t one, std::size_t other) {
            return masses[one] < masses[other];
        });
        for (const std::size_t place : order) {
            sorted[0].push_back(masses[place]);
            sorted[1].push_back(intensities[place]);
        }
        masses = sorted[0].data();
        intensities = sorted[1].data();
        const std::lock_guard<std::mutex> lock(mutex);
        hasSorted_ = true;
    }
    if (count > 0) {
        const auto base = std::size_t(std::max_element(intensities, intensities + count) - intensities);
        spectrum->set(MS_base_peak_m_z, exactText(masses[base]), MS_m_z);
        spectrum->set(MS_base_peak_intensity, exactText(intensities[base]), facts_.intensityUnit);
        spectrum->set(MS_lowest_observed_m_z, exactText(masses[0]), MS_m_z);
        spectrum->set(MS_highest_observed_m_z, exactText(masses[count - 1]), MS_m_z);
    }
    spectrum->defaultArrayLength = count;
    spectrum->binaryDataArrayPtrs = {
        makeArray(MS_m_z_array, MS_m_z, masses, count),
        makeArray(MS_intensity_array, facts_.intensityUnit, intensities, count)};
}
