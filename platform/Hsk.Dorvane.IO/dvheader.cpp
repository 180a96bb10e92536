#include "dvheader.h"

namespace {

// A null text is returned as null, an empty one as empty.
const char *textOf(const QByteArray &text)
{
    return text.isNull() ? nullptr : text.constData();
}

} // namespace

DVHeader::~DVHeader() = default;

bool DVHeader::isSet(Value value) const
{
    return (setValues & value) != 0;
}

void DVHeader::setModulation(float length)
{
    modulation = length;
    setValues |= Modulation;
}

void DVHeader::setNbScans(int count)
{
    nbScans = count;
    setValues |= NbScans;
}

void DVHeader::setNbBitsAbund(int bits)
{
    nbBitsAbund = bits;
    setValues |= NbBitsAbund;
}

void DVHeader::setCoeffAbund(int coefficient)
{
    coeffAbund = coefficient;
    setValues |= CoeffAbund;
}

void DVHeader::setDate(quint32 seconds)
{
    date = seconds;
    setValues |= Date;
}

void DVHeader::setDevice(char *text)
{
    device = QByteArray(text);
}

const char *DVHeader::getDevice() const
{
    return textOf(device);
}

void DVHeader::setExpName(char *text)
{
    expName = QByteArray(text);
}

const char *DVHeader::getExpName() const
{
    return textOf(expName);
}

void DVHeader::setRetentionUnit(const QString &unit)
{
    retentionUnit = unit;
}

void DVHeader::setRunTimeLength(double length)
{
    runTimeLength = length;
    setValues |= RunTimeLength;
}

void DVHeader::setDelay(double time)
{
    delay = time;
    setValues |= Delay;
}

void DVHeader::setSamplingInterval(double interval)
{
    samplingInterval = interval;
    setValues |= SamplingInterval;
}

void DVHeader::setDetectorType(int code)
{
    detectorType = code;
    setValues |= DetectorType;
}
