// What a run hands on.
#ifndef RECEIVER_H
#define RECEIVER_H

#include "dvheader.h"
#include "dvimportreceiver.h"

#include <QList>

#include <algorithm>
#include <functional>
#include <iterator>
#include <vector>

struct ReceivedScan {
    double time = 0;
    double total = 0;
    QList<float> abundances{}; // of the first 100 points, and their positions
    QList<int> positions{};
};

class Receiver : public DVImportReceiver
{
public:
    void analysisStarted(const DVHeader &header, const float *, int tableSize) override
    {
        scanCount = header.getNbScans();
        date = header.getDate();
        masses = tableSize;
    }
    void scanImported(int scan, double time, double total, int pointCount, const float *abundances,
                      const unsigned short *positions) override
    {
        points += pointCount;
        scans.push_back({time, total});
        const int kept = std::min(pointCount, 100);
        std::copy_n(abundances, kept, std::back_inserter(scans.back().abundances));
        std::copy_n(positions, kept, std::back_inserter(scans.back().positions));
        if (scan == 1 && atSecondScan)
            atSecondScan();
    }
    void progressChanged(int, int) override { }

    std::function<void()> atSecondScan;
    int scanCount = -1;
    quint32 date = 1;
    int masses = 0;
    int points = 0; // of all scans
    std::vector<ReceivedScan> scans;
};

#endif // RECEIVER_H
