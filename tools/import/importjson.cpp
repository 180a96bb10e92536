#include "importjson.h"

#include "dvheader.h"
#include "namecodec.h"

namespace {

constexpr int jsonVersion = 1; // docs/json.md

} // namespace

void ImportJson::beginFile(const QString &name, const DVHeader &header, const float *table, int tableSize)
{
    put("{\"version\":");
    integer(jsonVersion);
    put(",\"file\":");
    string(shownName(name));
    put(",\"header\":");
    headerRecord(header);
    put(",\"massTable\":");
    array(table, tableSize, [this](float mass) { real(double(mass)); });
    put(",\"scans\":[");
    inFile = firstScan = true;
    ++fileCount;
}

void ImportJson::addScan(double time, double total, int pointCount, const float *abundances,
                         const unsigned short *positions, const QString &failure)
{
    put(firstScan ? "{\"time\":" : ",{\"time\":");
    firstScan = false;
    real(time);
    put(",\"total\":");
    real(total);
    put(",\"positions\":");
    array(positions, pointCount, [this](unsigned short position) { integer(position); });
    put(",\"abundances\":");
    array(abundances, pointCount, [this](float abundance) { real(double(abundance)); });
    if (!failure.isNull()) {
        put(",\"read\":false,\"reason\":");
        string(failure);
    }
    put("}");
}

void ImportJson::endFile(bool complete, const std::vector<RunDoubt> &doubts)
{
    if (!inFile)
        return;
    put(complete ? "],\"complete\":true,\"doubts\":" : "],\"complete\":false,\"doubts\":");
    array(doubts.data(), int(doubts.size()), [this](const RunDoubt &doubt) { doubtRecord(doubt); });
    put("}\n");
    inFile = false;
}

void ImportJson::doubtRecord(const RunDoubt &doubt)
{
    put("{\"code\":");
    string(doubt.code);
    put(",\"count\":");
    integer(doubt.count);
    put(",\"example\":");
    string(doubt.example);
    put(",\"text\":");
    string(doubt.text);
    put(doubt.isLoss ? ",\"loss\":true}" : ",\"loss\":false}");
}

void ImportJson::headerRecord(const DVHeader &header)
{
    const auto number = [&](const char *key, DVHeader::Value value, auto write) {
        put(key);
        header.isSet(value) ? write() : put("null");
    };
    // clang-format off
    number("{\"scanCount\":",           DVHeader::NbScans,     [&] { integer(header.getNbScans()); });
    number(",\"modulation\":",          DVHeader::Modulation,  [&] { real(double(header.getModulation())); });
    number(",\"abundanceBits\":",       DVHeader::NbBitsAbund, [&] { integer(header.getNbBitsAbund()); });
    number(",\"abundanceCoefficient\":", DVHeader::CoeffAbund, [&] { integer(header.getCoeffAbund()); });
    number(",\"date\":",                DVHeader::Date,        [&] { integer(header.getDate()); });
    put(",\"device\":");
    latin1(header.getDevice());
    put(",\"experimentName\":");
    latin1(header.getExpName());
    put(",\"retentionUnit\":");
    string(header.getRetentionUnit());
    number(",\"runLength\":",        DVHeader::RunTimeLength,    [&] { real(header.getRunTimeLength()); });
    number(",\"delay\":",            DVHeader::Delay,            [&] { real(header.getDelay()); });
    number(",\"samplingInterval\":", DVHeader::SamplingInterval, [&] { real(header.getSamplingInterval()); });
    number(",\"detectorType\":",     DVHeader::DetectorType,     [&] { integer(header.getDetectorType()); });
    // clang-format on
    put("}");
}

// A text of the header, or null.
void ImportJson::latin1(const char *text)
{
    text ? string(QString::fromLatin1(text)) : put("null");
}
