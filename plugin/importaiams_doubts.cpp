// What can't be right about a run, told to the host: what is known once the table of masses is made, and
// the rest once all scans have been read.

#include "importaiams.h"

#include "messageloggerinterface.h"
#include "msdoubts.h"

#include <QFileInfo>
#include <QString>
#include <QVariant>

#include <new>

namespace {

// For a program that wants more than sentences.
QVariant toVariant(const MsDoubt &doubt)
{
    return QVariantMap{{QStringLiteral("code"), QLatin1String(doubt.code)},
                       {QStringLiteral("count"), doubt.count},
                       {QStringLiteral("example"), doubt.example},
                       {QStringLiteral("text"), doubt.text},
                       {QStringLiteral("loss"), doubt.isLoss}};
}

void tell(const MsDoubt &doubt)
{
    const QString text = doubt.text.toHtmlEscaped();
    if (doubt.isSystemError)
        MessageLoggerInterface::Error(text, nullptr);
    else
        MessageLoggerInterface::Warning(text, nullptr);
}

} // namespace

void ImportAiaMs::beginDoubts()
{
    doubtStage = DoubtStage::NotBegun;
    scansImported = 0;
    unplacedPoints = 0;
    firstUnplacedScan = -1;
    setProperty("doubts", QVariant());
}

void ImportAiaMs::forgetDoubts()
{
    beginDoubts();
    toldDoubts.clear();
}

void ImportAiaMs::tellDoubts(DoubtStage stage)
{
    MsDoubtOptions options;
    options.modulation = double(modulation);
    options.unplacedPoints = unplacedPoints;
    options.firstUnplacedScan = firstUnplacedScan;
    options.settledOnly = stage == DoubtStage::TableMade;
    QVariantList known;
    for (const MsDoubt &doubt : ms_list_doubts(fileId, QFileInfo(fileName).fileName(), options)) {
        known.append(toVariant(doubt));
        if (toldDoubts.contains(doubt.code))
            continue;
        toldDoubts.insert(doubt.code);
        tell(doubt);
    }
    doubtStage = stage;
    setProperty("doubts", known);
}

// Tells what is left if the host stopped early or read the scans in another order.
void ImportAiaMs::tellRemainingDoubts() noexcept
{
    if (doubtStage != DoubtStage::TableMade)
        return;
    try {
        tellDoubts(DoubtStage::AllRead);
    } catch (const std::bad_alloc &) {
        // Nobody is left who could do something about it.
    }
}

void ImportAiaMs::noteScan(const QString &failure)
{
    // Most runs have no such scan, and then no property.
    if (!failure.isNull() || hasScanFailure)
        setProperty("scanFailure", failure.isNull() ? QVariant() : QVariant(failure));
    hasScanFailure = !failure.isNull();
    ++scansImported;
    if (doubtStage == DoubtStage::TableMade && scansImported >= raw.scan_count
        && ms_count_unread_scans(fileId) == 0)
        tellDoubts(DoubtStage::AllRead);
}
