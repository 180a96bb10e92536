#include "runtocdf.h"

#include "cdfwriter.h"
#include "scanwalk.h"
#include "statedglobals.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

namespace {

double orMissing(double number)
{
    return ms_is_given(number) ? number : MsMissingDouble;
}

// What has to be known of a run before its first scan is written.
struct Survey {
    qint32 scans = 0; // that can be read
    bool hasFloatMasses = true;
    bool hasFloatIntensities = true;
    bool hasPointTimes = false;
    bool isLackingPoints = false; // points without data were left out, which flags count
    bool hasWrongTotals = false;  // which the points can mend
};

bool survey(const MsRun &run, ProgressBar *progress, Survey *result)
{
    const bool isWhole =
        forEachScan(run, ScanWalk::First, progress, [result](const MsSpectrum &spectrum) {
            ++result->scans;
            if (spectrum.size() > 0) {
                result->hasFloatMasses = result->hasFloatMasses && spectrum.storedMasses();
                result->hasFloatIntensities = result->hasFloatIntensities && spectrum.storedIntensities();
            }
            const MsNumbers times = spectrum.pointTimes();
            result->hasPointTimes = result->hasPointTimes
                || std::any_of(times.begin(), times.end(), [](double time) { return ms_is_given(time); });
            return true;
        });
    for (const MsDoubt &doubt : run.doubts()) {
        const QLatin1String code(doubt.code);
        result->hasWrongTotals = result->hasWrongTotals
            || (run.kind() != MsRun::Kind::Trace && code == QLatin1String("wrong-totals"));
        for (const char *lacking : {"bad-masses", "fill-masses", "bad-intensities", "fill-intensities"})
            result->isLackingPoints = result->isLackingPoints || code == QLatin1String(lacking);
    }
    return isWhole;
}

// The entry of a library, from a compound.
class Entry : public MsLibraryDraft
{
public:
    Entry(qint32 index, const MsCompound &compound) : MsLibraryDraft(index)
    {
        entry_name = keep(compound.name);
        entry_id = keep(compound.id);
        entry_number = orMissing(compound.number);
        source_data_file_reference = keep(compound.source);
        CAS_name = keep(compound.casName);
        CAS_number = orMissing(compound.casNumber);
        char **const names[] = {&other_name_0, &other_name_1, &other_name_2, &other_name_3};
        for (int i = 0; i < std::min(compound.otherNames.size(), 4); ++i)
            *names[i] = keep(compound.otherNames[i]);
        chemical_formula = keep(compound.formula);
        smiles = keep(compound.smiles);
        wiswesser = keep(compound.wiswesser);
        molfile_reference = keep(compound.molfile);
        other_structure = keep(compound.structure);
        retention_index = ::orMissing(compound.retentionIndex);
        retention_type = keep(compound.retentionType);
        absolute_retention = ::orMissing(compound.absoluteRetention);
        relative_retention = ::orMissing(compound.relativeRetention);
        retention_reference_name = keep(compound.retentionReference);
        retention_reference_CAS = orMissing(compound.retentionReferenceNumber);
        melting_point = float(::orMissing(compound.meltingPoint));
        boiling_point = float(::orMissing(compound.boilingPoint));
        chemical_mass = ::orMissing(compound.chemicalMass);
        nominal_mass = orMissing(compound.nominalMass);
        accurate_mass = ::orMissing(compound.accurateMass);
        entry_other_information = keep(compound.information);
    }

private:
    static qint32 orMissing(qint32 number) { return number < 0 ? MsMissingLong : number; }

    char *keep(const QString &text)
    {
        if (text.isNull())
            return nullptr;
        texts[used] = bytesOfText(text);
        return texts[used++].data();
    }

    std::array<QByteArray, 17> texts; // one for each text above
    std::size_t used = 0;
};

class CdfConversion
{
public:
    CdfConversion(const MsRun &source, const Survey &known, const MsFileLayout &fileLayout,
                  ConversionLog *messages)
        : run(source), survey(known), layout(fileLayout), log(messages)
    {
    }

    qint32 count() const { return written; }

    bool add(const MsSpectrum &spectrum, CdfWriter *writer)
    {
        MsScanRecord scan = spectrum.record();
        scan.scan_number = written++;
        scan.actual_scan_number = spectrum.number();
        scan.scan_acquisition_time = orMissing(spectrum.time());
        takeTotal(spectrum, &scan);
        for (double *number :
             {&scan.a_d_sampling_rate, &scan.scan_duration, &scan.inter_scan_time, &scan.resolution})
            *number = orMissing(*number);
        if (scan.a_d_coaddition_factor == NC_FILL_SHORT)
            scan.a_d_coaddition_factor = qint16(MsMissingLong);
        scan.mass_range_min = orMissing(spectrum.massRange().from);
        scan.mass_range_max = orMissing(spectrum.massRange().to);
        scan.time_range_min = orMissing(spectrum.timeRange().from);
        scan.time_range_max = orMissing(spectrum.timeRange().to);
        takePoints(spectrum, &scan);
        takeFlags(&scan);
        if (run.kind() != MsRun::Kind::Library)
            return writer->add(scan);
        const Entry entry(scan.scan_number, run.compound(spectrum.index()));
        return writer->add(scan, &entry);
    }

private:
    void takeTotal(const MsSpectrum &spectrum, MsScanRecord *scan)
    {
        const double stored = spectrum.storedTotal();
        const bool isSummed = survey.hasWrongTotals || std::isnan(stored);
        scan->total_intensity = orMissing(isSummed ? spectrum.summedTotal() : stored);
    }

    void takePoints(const MsSpectrum &spectrum, MsScanRecord *scan)
    {
        const auto count = std::size_t(spectrum.size());
        scan->point_count = qint32(count);
        isSorted =
            !layout.has_mass_values || std::is_sorted(spectrum.masses(), spectrum.masses() + count);
        order.resize(isSorted ? 0 : count);
        std::iota(order.begin(), order.end(), 0);
        if (!isSorted) {
            std::stable_sort(order.begin(), order.end(), [&spectrum](std::size_t one, std::size_t other) {
                return spectrum.masses()[one] < spectrum.masses()[other];
            });
            log->warn(QStringLiteral("The points of some scans are put in the order of their masses."));
        }
        scan->mass_values = layout.has_mass_values
            ? stored(layout.mass_format, count, spectrum.masses(), spectrum.storedMasses(), &masses)
            : nullptr;
        scan->intensity_values = stored(layout.intensity_format, count, spectrum.intensities(),
                                        spectrum.storedIntensities(), &intensities);
        times = layout.has_time_values ? spectrum.pointTimes().toVector() : std::vector<double>();
        for (double &time : times)
            time = ms_is_given(time) ? run.globals().time(time) : time;
        if (!isSorted && times.size() == count) {
            const std::vector<double> unordered = times;
            std::transform(order.begin(), order.end(), times.begin(),
                           [&unordered](std::size_t place) { return unordered[place]; });
        }
        if (layout.has_time_values) // whatever is written has all of its points
            times.resize(count, NC_FILL_DOUBLE);
        scan->time_values = times.empty() ? nullptr : times.data();
    }

    // Returns the numbers in the format of the file: as they are, or in `memory`.
    void *stored(qint32 format, std::size_t count, const double *numbers, const float *floats,
                 std::vector<double> *memory)
    {
        if (count == 0)
            return nullptr;
        if (isSorted && format == MsFloatFormat)
            return const_cast<float *>(floats); // the writer only reads
        memory->assign(numbers, numbers + count);
        if (!isSorted)
            std::transform(order.begin(), order.end(), memory->begin(),
                           [numbers](std::size_t place) { return numbers[place]; });
        if (format == MsFloatFormat) {
            auto *narrow =
                reinterpret_cast<float *>(memory->data()); // each behind the number it is made of
            std::vector<float> converted(memory->begin(), memory->end());
            std::copy(converted.begin(), converted.end(), narrow);
        }
        return memory->data();
    }

    // The numbers of flagged peaks hold for the points as they lay in the input.
    void takeFlags(MsScanRecord *scan)
    {
        if (scan->flag_count <= 0 || !scan->flagged_peaks || !scan->flag_values) {
            scan->flag_count = 0;
        } else if (survey.isLackingPoints || !isSorted) {
            log->lose(QStringLiteral(
                "Flags of peaks are left out where points were put in order or have no data."));
            scan->flag_count = 0;
        }
        if (scan->flag_count == 0) {
            scan->flagged_peaks = nullptr;
            scan->flag_values = nullptr;
        }
    }

    const MsRun &run;
    const Survey &survey;
    const MsFileLayout &layout;
    ConversionLog *log;
    qint32 written = 0;
    bool isSorted = true;
    std::vector<std::size_t> order; // of the points by their masses
    std::vector<double> masses;
    std::vector<double> intensities;
    std::vector<double> times;
};

MsFileLayout layoutFor(const MsRun &run, const Survey &known)
{
    MsFileLayout layout;
    layout.experiment_type = run.kind() == MsRun::Kind::Library ? qint32(MsLibrarySpectrum)
        : run.facts().spectra == MsRunFacts::Spectra::Profile   ? qint32(MsContinuumSpectrum)
                                                                : qint32(MsCentroidedSpectrum);
    layout.scan_count = known.scans;
    layout.mass_format = known.hasFloatMasses ? MsFloatFormat : MsDoubleFormat;
    layout.time_format = MsDoubleFormat;
    layout.intensity_format = known.hasFloatIntensities ? MsFloatFormat : MsDoubleFormat;
    layout.has_mass_values = run.kind() != MsRun::Kind::Trace;
    // The unit of all times belongs to this axis.
    layout.has_time_values = known.hasPointTimes || run.kind() == MsRun::Kind::Trace || !run.hasSeconds();
    return layout;
}

} // namespace

bool writeCdf(const MsRun &run, const QByteArray &path, ProgressBar *progress, ConversionLog *log)
{
    Survey known;
    if (!survey(run, progress, &known))
        return false;
    if (known.scans == 0)
        return log->fail(whyNoScan(run));
    if (known.hasWrongTotals)
        log->warn(
            QStringLiteral("The total intensities of the file aren't the sums of the scans; the sums "
                           "are written."));
    StatedGlobals globals = statedGlobals(run, log);
    const MsFileLayout layout = layoutFor(run, known);
    globals.admin.experiment_type = layout.experiment_type;
    if (run.hasSeconds())
        globals.raw.time_units = MsSeconds;
    else if (globals.raw.time_units == -1)
        globals.raw.time_units = ms_enum_code("Arbitrary Time Units");

    const std::vector<MsInstrument> instruments = run.instruments();
    const std::vector<MsGroup> groups = run.groups();
    CdfWriter::Head head{layout, &globals, {}, {}};
    for (const MsInstrument &instrument : instruments)
        head.instruments.push_back(&instrument);
    for (const MsGroup &group : groups)
        head.groups.push_back(&group);
    CdfWriter writer(path, head, log);
    CdfConversion conversion(run, known, layout, log);
    bool isWritten = writer.failure().isNull();
    const bool isWhole =
        isWritten && forEachScan(run, ScanWalk::Second, progress, [&](const MsSpectrum &spectrum) {
            isWritten = conversion.add(spectrum, &writer);
            return isWritten;
        });
    if (isWritten && !isWhole)
        return false;
    if (isWritten && conversion.count() < known.scans)
        return log->fail(whyScansWent());
    isWritten = isWritten && writer.finish();
    return isWritten || log->fail(writer.failure());
}
