#include "openrun_p.h"

#include "heldmessages_p.h"
#include "msinput.h"
#include "msrunlimit.h"

#include <QFileInfo>
#include <QList>
#include <QString>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// A factor of the file. One that can't be a factor counts as none.
double factorOf(double stored, bool *isIgnored)
{
    if (stored == MsMissingDouble)
        return 1.0;
    constexpr double largest = 1e30;
    const bool isFactor = std::abs(stored) <= largest && std::abs(stored) >= 1.0 / largest;
    *isIgnored = *isIgnored || !isFactor;
    return isFactor ? stored : 1.0;
}

} // namespace

void MsRun::Private::open(const MsRunOptions &options)
{
    error = fault(options);
    if (error.isNull())
        return;
    file.close();
    size = 0;
    globals = MsGlobals();
    facts = MsRunFacts();
}

// Opens the file, and returns the sentence that says why that can't be done; null if it could.
QString MsRun::Private::fault(const MsRunOptions &options)
{
    QString obstacle = whyUnreadable(name);
    if (!obstacle.isNull())
        return obstacle;
    const auto refusal = [this](const QString &why) {
        return QStringLiteral("The file \"%1\" can't be read: %2.").arg(name, why);
    };
    HeldMessages messages;
    file = openInput(name, options.lookProgram);
    if (!file)
        return whyNotOpened(name, messages.takeErrors());
    if (file.record()->dimensions[MsDim_scan_number].id == -1)
        return refusal(
            QStringLiteral("it has no dimension \"scan_number\", so it isn't a mass spectrometry "
                           "file of the AIA MS template"));
    globals = file.globals();
    if (!globals.isRead()) {
        const QString why = messages.takeErrors();
        const QString refused = refusal(QStringLiteral("its global attributes can't be read"));
        return why.isEmpty() ? refused : refused + QLatin1Char(' ') + why;
    }

    // A scan takes a byte at least, so a file that has more scans than this only claims them.
    constexpr qint64 always = 1 << 20;
    const qint64 bytes = QFileInfo(name).size();
    claimed = file.scanCount();
    size = qint32(std::min<qint64>(claimed, std::max(always, bytes)));
    facts = ms_read_run_facts(file, globals);
    hasSeconds = globals.raw.time_units == MsSeconds;
    if (file.isLibrary())
        kind = Kind::Library;
    else if (file.record()->has_mass_values && ms_count_positions(file.id()) > 0)
        kind = Kind::Spectra;
    judgeScales();

    MsDoubtOptions settled;
    settled.settledOnly = true;
    const QList<MsDoubt> found = ms_list_doubts(file.id(), name, settled);
    times.emplace(file, globals, size, found);
    if (kind != Kind::Trace) {
        places.emplace(file, size, found);
        if (places->points() > mostPointsOf(file, bytes))
            return refusal(QStringLiteral("its scans have more points than the file can hold"));
    }
    return QString();
}

void MsRun::Private::judgeScales()
{
    const MsRawGlobalRecord &raw = globals.raw;
    scales.mass = factorOf(raw.mass_scale_factor, &hasIgnoredFactor);
    scales.intensity = factorOf(raw.intensity_scale_factor, &hasIgnoredFactor);
    scales.offset = raw.intensity_add_offset == MsMissingDouble ? 0.0 : raw.intensity_add_offset;
    if (!(std::abs(scales.offset) < NC_FILL_DOUBLE)) {
        scales.offset = 0.0;
        hasIgnoredFactor = true;
    }
}

MsSpectrum MsRun::Private::spectrum(qint32 index)
{
    if (index < 0 || index >= size)
        return MsSpectrum();
    QString failure;
    if (places) {
        MsScan scan = places->read(index, &failure);
        const double time = times->of(scan);
        return MsSpectrum(std::move(scan), scales, time, failure);
    }
    MsScan scan; // without points
    const MsScanHeader header = file.scanHeader(index);
    static_cast<MsScanRecord &>(scan) = header;
    scan.point_count = 0;
    scan.flag_count = 0;
    if (!header.isRead())
        failure = QStringLiteral("its numbers can't be read");
    return MsSpectrum(std::move(scan), scales, times->of(header), failure);
}

QList<MsDoubt> MsRun::Private::ownDoubts() const
{
    QList<MsDoubt> doubts;
    if (places)
        doubts += places->doubts(name);
    doubts += times->doubts(name);
    if (hasOtherUnit()) {
        doubts +=
            {"time-units",
             1,
             facts.timeUnits.text,
             QStringLiteral("In \"%1\", the unit of times is \"%2\" and not \"Seconds\"; times are as "
                            "stored.")
                 .arg(name, facts.timeUnits.text),
             false,
             false};
    }
    if (hasIgnoredFactor) {
        doubts +=
            {"ignored-factor",
             1,
             QString(),
             QStringLiteral("In \"%1\", a scale_factor or add_offset that can't be right is left out.")
                 .arg(name),
             false,
             false};
    }
    if (size < claimed) {
        doubts += {"claimed-scans",
                   claimed - size,
                   QString(),
                   QStringLiteral("\"%1\" claims %2 scans, more than it can hold; only the first %3 are "
                                  "read.")
                       .arg(name, QString::number(claimed), QString::number(size)),
                   true,
                   false};
    }
    return doubts;
}
