// The import plugin for .cdf files of the AIA MS template.
#ifndef IMPORTAIAMS_H
#define IMPORTAIAMS_H

#include "dvimportanalysisinterface.h"
#include "dvimportparamtype.h"
#include "masspositions.h"
#include "mstoolkit.h"

#include <QByteArray>
#include <QSet>
#include <QString>

class MsScan;

class ImportAiaMs : public DVImportAnalysisInterface, public DVImportParamType
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "DV.DVImportInterface")

public:
    ImportAiaMs();
    ~ImportAiaMs() override;

    bool canImport(TFileBuffer *buffer, const QString &fileName, QString &text) override;
    int importQueryValue() override;

    // The steps of a run, called in this order. importHeader returns whether a file is open; if none is,
    // it reports an error.
    bool importHeader() override;
    unsigned short importMassTable(float **table) override;
    double importScan(int scan, double *time, int tableSize, float *table, int *pointCount,
                      float *abundances, unsigned short *positions) override;

    // Moves the open file and the answers to the copy, which the caller deletes. This object has no open
    // file afterwards.
    ImportAiaMs *clone() override;

    int pluginKind() override;
    bool reopenForFile(const QString &fileName) override;
    int askParameters(QWidget *parent) override;
    bool paramTypeFlag() override;

private:
    struct Placement;
    enum class DoubtStage { NotBegun, TableMade, AllRead };

    bool openFile(const QString &fileName);
    void releaseRecords();
    void releaseTotalIon();
    quint32 parseTimeStamp(const QString &text);
    void importTotalIon();
    // Returns the mass of a census key. Table and scans compute it here, so that they are equal to the
    // last bit and a look-up finds it.
    static float tableMass(int key, double factor) { return static_cast<float>(key / factor); }
    template <class Positions, class Mass, class Intensity>
    double placePoints(const Positions &known, const Mass *masses, const Intensity *intensities,
                       int count, Placement &place);
    QString traceFailure(int scan) const;
    QString scanFailure(const MsScan &scan) const;
    // Tells the host what is known by now to be doubtful, each doubt once for a file, and puts all of
    // them into the dynamic property "doubts": a list of maps with code, count, example, text and loss.
    void tellDoubts(DoubtStage stage);
    void tellRemainingDoubts() noexcept;
    void beginDoubts();  // of another run of the same file: what was told stays told
    void forgetDoubts(); // of the file
    // Called after each scan, with the reason why it couldn't be read, or null: the dynamic property
    // "scanFailure".
    void noteScan(const QString &failure);
    // Reads a global text attribute into a buffer of `size` bytes, cut to fit. Returns 1 on success, else
    // 0.
    int readGlobalTextAttribute(const char *name, char *buffer, int size);

    int fileId = -1;               // netCDF id; -1 means that no file is open
    double *ticValues = nullptr;   // total-ion path: total intensity of each scan, owned
    double *ticTimes = nullptr;    // total-ion path: stored time of each scan, owned
    double massFactor = 0.0;       // ten to the power of the table's decimals
    double timeDivisor = 1.0;      // turns stored times into the header's unit
    double samplingInterval = 0.0; // in the header's unit
    bool applyToAll = false;       // the user's answer holds for all later files
    MsAdminRecord admin;
    MsSampleRecord sample;
    MsTestRecord test;
    MsRawGlobalRecord raw;
    MassPositions massPositions; // of the table's masses
    QSet<QByteArray> toldDoubts; // codes
    DoubtStage doubtStage = DoubtStage::NotBegun;
    qint32 scansImported = 0;
    qint64 unplacedPoints = 0; // whose masses the table lacks
    int firstUnplacedScan = -1;
    bool hasScanFailure = false;
};

#endif // IMPORTAIAMS_H
