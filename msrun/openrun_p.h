// Private: a run that is open, and what was judged of it on opening.
#ifndef OPENRUN_P_H
#define OPENRUN_P_H

#include "msrun.h"

#include "msfile.h"
#include "scanplaces_p.h"
#include "scantimes_p.h"

#include <optional>

class MsRun::Private
{
public:
    Private(const QString &fileName, const MsRunOptions &options) : name(fileName) { open(options); }

    QString name;
    QString error;
    MsFile file;
    Kind kind = Kind::Trace;
    qint32 size = 0;
    MsGlobals globals;
    MsRunFacts facts;
    MsScales scales;
    bool hasSeconds = false;
    std::optional<ScanPlaces> places;
    std::optional<ScanTimes> times;

    MsSpectrum spectrum(qint32 index);
    QList<MsDoubt> ownDoubts() const;
    bool hasOtherUnit() const { return !hasSeconds && kind != Kind::Library; } // of times

private:
    void open(const MsRunOptions &options);
    QString fault(const MsRunOptions &options);
    void judgeScales();

    bool hasIgnoredFactor = false;
    qint32 claimed = 0; // scans by the file
};

#endif // OPENRUN_P_H
