// Where an import run hands on what it reads. The program that drives the run implements it.
#ifndef DVIMPORTRECEIVER_H
#define DVIMPORTRECEIVER_H

class DVHeader;

class DVImportReceiver
{
public:
    virtual ~DVImportReceiver();

    // The run's header and its ascending table of masses; `tableSize` is 0 and `table` null for a
    // total-ion run. Both live until the run ends.
    virtual void analysisStarted(const DVHeader &header, const float *table, int tableSize) = 0;

    // One scan: its time in the header's unit, its total abundance, and `pointCount` abundances with
    // their positions in the table. The arrays live for this call only.
    virtual void scanImported(int scan, double time, double total, int pointCount,
                              const float *abundances, const unsigned short *positions) = 0;

    // `done` of `count` scans have been handed on. Called at most a hundred times in a run.
    virtual void progressChanged(int done, int count) = 0;
};

#endif // DVIMPORTRECEIVER_H
