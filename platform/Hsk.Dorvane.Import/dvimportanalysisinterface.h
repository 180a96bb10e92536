// An import plugin for whole analyses: header, table of masses, scans. The order of the virtual
// operations is fixed.
#ifndef DVIMPORTANALYSISINTERFACE_H
#define DVIMPORTANALYSISINTERFACE_H

#include "dvimportinterface.h"

class DVHeader;
class DVImportReceiver;

class DVImportAnalysisInterface : public DVImportInterface
{
    // No Q_OBJECT: the plugin's meta-object has DVImportInterface as its super class.

public:
    // Points for which the arrays of importScan have room, whatever the scan.
    static constexpr int scanCapacity = 1 << 24;

    DVImportAnalysisInterface();
    ~DVImportAnalysisInterface() override;

    // The run on an open file: importHeader, importMassTable, then importScan for each scan of the
    // header, each scan handed on to the receiver and none kept. The header is freed at the end.
    // Returns false if importHeader does or the run was cancelled, and, with an error message that names
    // `fileName`, if memory runs out. The run has no limit: a receiver that takes files from strangers
    // has to cancel one that claims scans without end. `title`, `path` and `buffer` aren't used.
    bool import(const QString &fileName, const QString &title, const QString &path,
                TFileBuffer *buffer) override;

    // Length of a modulation of a GCxGC run; 0 for other runs.
    virtual float modulationPeriod();

    // Makes `header`. Returns false if there is nothing to import.
    virtual bool importHeader() = 0;

    // Returns the number of masses and sets `*table` to their ascending array, which the caller frees
    // with delete[]; 0 and null for a run without a table.
    virtual unsigned short importMassTable(float **table) = 0;

    // Returns the total abundance of scan `scan`, from 0. Fills `*time`, in the header's retention unit,
    // and the first `*pointCount` elements of the two arrays, which have room for scanCapacity points. A
    // scan that can't be read has no points and a total of 0. In a total-ion run a missing total comes as
    // -9999, and a missing time as -9999 divided like any other time: -166.65 where seconds become
    // minutes.
    virtual double importScan(int scan, double *time, int tableSize, float *table, int *pointCount,
                              float *abundances, unsigned short *positions) = 0;

    DVImportAnalysisInterface *clone() override = 0;

    // Sets the receiver of what `import` reads; null for none. The caller keeps it and lets it live until
    // the run ends.
    void setReceiver(DVImportReceiver *receiver);

    // Sets the modulation length, for a program that needn't ask the user; 0 for a plain run. Call it
    // before `clone`.
    void setModulation(float length);

protected:
    void copyInterface(PluginInterface *source) override;

    // Looks `mass` up in the ascending `table` of `size` entries. On a hit it sets `*found` to true and
    // returns the index of the first entry that equals `mass`; on a miss it sets `*found` to false and
    // returns 0.
    unsigned short findTablePosition(float mass, float *table, int size, bool *found);

    DVHeader *header = nullptr; // of the current run
    float modulation = 0;

private:
    bool run();

    DVImportReceiver *receiver = nullptr;
};

#endif // DVIMPORTANALYSISINTERFACE_H
