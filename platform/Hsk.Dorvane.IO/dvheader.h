// The record of one analysis.
#ifndef DVHEADER_H
#define DVHEADER_H

#include <QByteArray>
#include <QString>
#include <QtGlobal>

class DVHeader
{
public:
    enum Value {
        Modulation = 1 << 0,
        NbScans = 1 << 1,
        NbBitsAbund = 1 << 2,
        CoeffAbund = 1 << 3,
        Date = 1 << 4,
        RunTimeLength = 1 << 5,
        Delay = 1 << 6,
        SamplingInterval = 1 << 7,
        DetectorType = 1 << 8
    };

    // A new header has no number set (each reads as 0), no texts, and "minutes" as its retention unit.
    DVHeader() = default;
    virtual ~DVHeader();

    // Returns whether the number's setter was called.
    bool isSet(Value value) const;

    // Length of a modulation of a GCxGC run; 0 for other runs.
    void setModulation(float length);
    float getModulation() const { return modulation; }

    void setNbScans(int count);
    int getNbScans() const { return nbScans; }

    // Bits of an abundance value, and its coefficient.
    void setNbBitsAbund(int bits);
    int getNbBitsAbund() const { return nbBitsAbund; }
    void setCoeffAbund(int coefficient);
    int getCoeffAbund() const { return coeffAbund; }

    // Date of the experiment in seconds since 1970.
    void setDate(quint32 seconds);
    quint32 getDate() const { return date; }

    // The setters copy their Latin-1 text. Null stands for an absent text and is returned as null.
    void setDevice(char *text);
    const char *getDevice() const;
    void setExpName(char *text);
    const char *getExpName() const;

    // Unit of all times of the analysis.
    void setRetentionUnit(const QString &unit);
    QString getRetentionUnit() const { return retentionUnit; }

    // In the retention unit: length of the run, time of the first scan, time between two scans.
    void setRunTimeLength(double length);
    double getRunTimeLength() const { return runTimeLength; }
    void setDelay(double time);
    double getDelay() const { return delay; }
    void setSamplingInterval(double interval);
    double getSamplingInterval() const { return samplingInterval; }

    // 256 for total ion, 512 for mass spectra; 1792 and 2048 for the same in a GCxGC run.
    void setDetectorType(int code);
    int getDetectorType() const { return detectorType; }

private:
    Q_DISABLE_COPY(DVHeader)

    int setValues = 0;
    float modulation = 0;
    int nbScans = 0;
    int nbBitsAbund = 0;
    int coeffAbund = 0;
    quint32 date = 0;
    QByteArray device;
    QByteArray expName;
    QString retentionUnit = QStringLiteral("minutes");
    double runTimeLength = 0;
    double delay = 0;
    double samplingInterval = 0;
    int detectorType = 0;
};

#endif // DVHEADER_H
