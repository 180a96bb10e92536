// The header of an analysis, and with it the time scale of the run.

#include "importaiams.h"

#include "dvheader.h"
#include "messageloggerinterface.h"
#include "msrecords.h"
#include "ttestingmacros.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace {

template <class Number> void account(const char *text, Number number)
{
    testingMessageOutput(2, nullptr, QString::fromUtf8(text).arg(number));
}

void account(const char *text)
{
    testingMessageOutput(2, nullptr, QString::fromUtf8(text));
}

// `name` is that of the last file that was open; empty if none was.
void reportNoFile(const QString &name)
{
    MessageLoggerInterface::Error(
        name.isEmpty() ? QStringLiteral("No file is open, so none can be imported.")
                       : QStringLiteral("The file <b>%1</b> isn't open, so it can't be imported.")
                             .arg(name.toHtmlEscaped()),
        nullptr);
}

// Returns the time of a scan in the header's unit; `fallback` if it is missing or can't be read.
double scanTime(int fileId, qint32 scanNumber, double timeDivisor, double fallback)
{
    const MsScanHeader scan(fileId, scanNumber);
    return scan.isRead() && scan.scan_acquisition_time != MsMissingDouble
        ? scan.scan_acquisition_time / timeDivisor
        : fallback;
}

} // namespace

bool ImportAiaMs::importHeader()
{
    if (fileId == -1) {
        reportNoFile(fileName);
        return false;
    }
    header = new DVHeader; // the host's from here on
    header->setModulation(modulation);
    header->setNbScans(raw.scan_count);
    account("nb de scans : %1", header->getNbScans());
    header->setNbBitsAbund(28);
    account("codage de l'abondance : %1 bits", header->getNbBitsAbund());

    if (admin.experiment_date_time_stamp)
        header->setDate(parseTimeStamp(QString::fromLatin1(admin.experiment_date_time_stamp)));
    else
        header->setDate(QDateTime::currentDateTime().toTime_t());
    header->setDevice(admin.source_file_format);
    header->setExpName(admin.experiment_title);

    if (raw.time_units == MsSeconds)
        header->setRetentionUnit(QStringLiteral("seconds"));
    // The unit is read back, because a new header may have one of these texts by itself.
    const QByteArray unit = header->getRetentionUnit().toLatin1().toLower();
    if (unit == "seconds" || unit == "time in seconds") {
        account("Passage de seconds en minutes");
        timeDivisor = 60.0;
        header->setRetentionUnit(QStringLiteral("minutes"));
    }

    // If the last time is missing, the index of the last scan stands for it, in whatever unit.
    const double firstTime = scanTime(fileId, 0, timeDivisor, 0.0);
    const qint32 lastScan = raw.scan_count - 1;
    const double lastTime = scanTime(fileId, lastScan, timeDivisor, double(lastScan));

    header->setRunTimeLength(lastTime - firstTime);
    account("durée de l'expérience : %1", header->getRunTimeLength());
    header->setDelay(firstTime);
    account("délai : %1", header->getDelay());
    samplingInterval = (lastTime - firstTime) / (header->getNbScans() - 1.0);
    header->setSamplingInterval(samplingInterval);
    account("interval d'échantillonage : %1", header->getSamplingInterval());
    account("*** fin du chargement du header AIA MS ***");
    return true;
}

// Computes the date as the host does: from the epoch in local time, with the hours of the zone added and
// one hour subtracted.
quint32 ImportAiaMs::parseTimeStamp(const QString &text)
{
    const int year = text.mid(0, 4).toInt();
    const int month = text.mid(4, 2).toInt();
    const int day = text.mid(6, 2).toInt();
    const int hour = text.mid(8, 2).toInt();
    const int minute = text.mid(10, 2).toInt();
    const int second = text.mid(12, 2).toInt();
    const int zone = text.mid(14, 3).toInt();

    QDateTime date;
    date.setTime_t(0);
    date = date.addYears(year - 1970);
    date = date.addMonths(month - 1);
    date = date.addDays(day - 1);
    date = date.addSecs(((zone + hour) * 60 - 60 + minute) * 60 + second);
    return date.toTime_t();
}
