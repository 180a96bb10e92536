#include "mzmlchoice.h"

#include "cdfdescription.h"
#include "countedtext_p.h"
#include "interruption.h"
#include "mzmlterms.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

constexpr std::size_t mostSpectra = 1 << 30;

// Returns the MS level of a spectrum; 1 where it says none.
int levelOf(const Spectrum &spectrum)
{
    constexpr double mostLevels = 1000.0; // more than any instrument has
    const double level =
        textOf(spectrum.cvParam(MS_ms_level).value).toDouble(); // 0 where it is no number
    return level > 1.0 ? int(std::min(level, mostLevels)) : 1;
}

CVID polarityOf(const Spectrum &spectrum)
{
    if (spectrum.hasCVParam(MS_positive_scan))
        return MS_positive_scan;
    return spectrum.hasCVParam(MS_negative_scan) ? MS_negative_scan : CVID_Unknown;
}

} // namespace

bool chooseSpectra(const SpectrumList &list, const ConversionOptions &options, MzMlChoice *choice,
                   ConversionLog *log)
{
    if (list.size() > mostSpectra)
        return log->fail(QStringLiteral("it has too many spectra"));
    std::set<CVID> polarities; // CVID_Unknown among them where a spectrum says none
    std::size_t otherLevels = 0;
    std::size_t otherPolarities = 0;
    std::size_t withoutPolarity = 0;
    std::size_t others = 0; // of light, say: no mass spectra
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (isInterrupted())
            return false;
        const SpectrumPtr spectrum = list.spectrum(i, false);
        const CVID polarity = polarityOf(*spectrum);
        if (spectrum->hasCVParamChild(MS_electromagnetic_radiation_spectrum)) {
            ++others;
        } else if (levelOf(*spectrum) != options.msLevel.value_or(1)) {
            ++otherLevels;
        } else if (options.isPositive
                   && polarity != (*options.isPositive ? MS_positive_scan : MS_negative_scan)) {
            ++(polarity == CVID_Unknown ? withoutPolarity : otherPolarities);
        } else {
            polarities.insert(polarity);
            const bool isProfile = spectrum->hasCVParam(MS_profile_spectrum);
            const bool isCentroided = spectrum->hasCVParam(MS_centroid_spectrum);
            choice->isProfile = choice->isProfile || isProfile;
            choice->isCentroided = choice->isCentroided || isCentroided;
            choice->isOfUnsaidKind = choice->isOfUnsaidKind || (!isProfile && !isCentroided);
            choice->isSelectedIons = choice->isSelectedIons || spectrum->hasCVParam(MS_SIM_spectrum);
            choice->hasCompounds =
                choice->hasCompounds || !spectrum->userParam(compoundName).value.empty();
            choice->spectra.push_back(i);
        }
    }
    if (otherLevels > 0 && !options.msLevel)
        return log->fail(
            QStringLiteral("it has spectra of MS levels above 1, and the option --ms-level chooses one "
                           "level"));
    if (polarities.size() > 1)
        return log->fail(
            QStringLiteral("it has spectra of several polarities, of which the option --polarity chooses "
                           "one"));
    if (choice->spectra.empty() && withoutPolarity > 0 && otherPolarities == 0)
        return log->fail(
            QStringLiteral("its spectra say no polarity, so the option --polarity chooses none of them"));
    if (choice->spectra.empty())
        return log->fail(options.msLevel || options.isPositive
                             ? QStringLiteral("it has no spectra of the MS level and polarity chosen")
                             : QStringLiteral("it has no mass spectra"));
    choice->polarity = *polarities.begin();
    if (others > 0)
        log->warn(ms_counted_text(
            "%1 [spectrum that isn't a mass spectrum is|spectra that aren't mass spectra are] left out.",
            qint64(others)));
    if (otherLevels > 0)
        log->warn(ms_counted_text(
            "%1 [spectrum of another MS level is|spectra of other MS levels are] left out.",
            qint64(otherLevels)));
    if (otherPolarities > 0)
        log->warn(ms_counted_text("%1 [spectrum|spectra] of the other polarity [is|are] left out.",
                                  qint64(otherPolarities)));
    if (withoutPolarity > 0)
        log->warn(ms_counted_text(
            "%1 [spectrum that says no polarity is|spectra that say no polarity are] left out.",
            qint64(withoutPolarity)));
    if (choice->hasCompounds)
        log->warn(QStringLiteral("The names of the compounds are left out."));
    return true;
}
