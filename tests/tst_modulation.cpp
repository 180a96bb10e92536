// The guess of a modulation length: what made traces of known length, and traces without one, come to.

#include "msrun.h"
#include "program.h"
#include "rows.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <random>

namespace {

struct Made {
    double length = 0.0;  // of a modulation in seconds, 0 for a plain run
    double rate = 50.0;   // scans a second
    int peaks = 150;      // a tenth of a second wide, in a modulated trace over a few modulations
    double noise = 100.0; // the largest peaks have a million
    double drift = 0.0;   // over the run
    double wander = 0.0;  // seconds from one modulation to the next
    double wave = 0.0;    // of this height, every three seconds
    double pause = 0.0;   // seconds without a scan in the middle
    double every = 0.0;   // seconds between plain peaks; 0 for any
    double twin = 0.0;    // seconds from each plain peak to a second one; 0: there is none
    double second = 1.0;  // the height of every second peak of a modulated trace, by that of the others
    int seed = 1;
};

struct Trace {
    std::vector<double> times;
    std::vector<double> totals;

    void addPeak(double at, double width, double height, double rate)
    {
        const auto first = std::max(0, int((at - 5 * width) * rate));
        const auto last = std::min(int(totals.size()) - 1, int((at + 5 * width) * rate));
        for (int i = first; i <= last; ++i)
            totals[std::size_t(i)] += height * std::exp(-0.5 * std::pow((i / rate - at) / width, 2));
    }
};

Trace trace(const Made &made)
{
    constexpr double span = 900.0;
    std::mt19937 generator{unsigned(made.seed)};
    const auto from = [&](double least, double most) {
        return std::uniform_real_distribution<double>(least, most)(generator);
    };
    std::normal_distribution<double> normal;
    Trace result;
    result.totals.resize(std::size_t(span * made.rate));
    std::vector<double> offset(1000);
    for (std::size_t i = 1; i < offset.size(); ++i)
        offset[i] = offset[i - 1] + made.wander * normal(generator);
    for (int peak = 0; peak < made.peaks; ++peak) {
        const double height = std::pow(10.0, from(3.0, 6.0));
        const double centre = made.every > 0.0 ? made.every * (peak + 1) * (1 + peak / 2000.0) : from(10, span - 10);
        if (made.length == 0.0) {
            const double width = from(0.8, 2.0);
            result.addPeak(centre, width, height, made.rate);
            if (made.twin > 0.0)
                result.addPeak(centre + made.twin, width, height, made.rate);
            continue;
        }
        const double second = from(0.0, 0.7 * made.length);
        const double width = 0.9 * made.length; // in the first dimension
        for (int i = int((centre - 3 * width) / made.length); i * made.length < centre + 3 * width; ++i)
            result.addPeak(i * made.length + second + offset[std::size_t(std::max(i, 0))], from(0.04, 0.1),
                           (i % 2 == 0 ? height : made.second * height)
                               * std::exp(-0.5 * std::pow((i * made.length - centre) / width, 2)),
                           made.rate);
    }
    for (std::size_t i = 0; i < result.totals.size(); ++i) {
        const double time = double(i) / made.rate;
        result.times.push_back(300.0 + time + (time > span / 2 ? made.pause : 0.0));
        result.totals[i] += 1e4 + made.drift * time / span + made.noise * normal(generator)
            + made.wave * std::sin(time * 2 * 3.14159265 / 3);
    }
    return result;
}

} // namespace

class TestModulation : public QObject
{
    Q_OBJECT

private slots:
    void guesses_data()
    {
        const Rows<Made> row;
        row("3 s") = {3.0};
        row("5 s, 200 scans a second") = {5.0, 200.0};
        row("10 s, 20 scans a second") = {10.0, 20.0};
        row("no round number") = {4.37};
        row("noise") = {6.0, 100.0, 150, 3000.0};
        row("drift") = {4.0, 50.0, 150, 100.0, 1e6};
        row("wandering phase") = {8.0, 100.0, 150, 100.0, 0.0, 0.02};
        Made &pause = row("pause");
        pause.length = 4.0;
        pause.pause = 17.3;
        Made &uneven = row("every second peak lower");
        uneven.length = 5.0;
        uneven.second = 0.015;
        row("plain") = {0.0};
        row("plain, few scans a second") = {0.0, 3.0};
        row("plain, drift") = {0.0, 10.0, 100, 100.0, 1e6};
        row("noise alone") = {0.0, 50.0, 0, 1000.0};
        row("drift alone") = {0.0, 50.0, 0, 0.0, 1e6};
        row("nothing") = {0.0, 50.0, 0, 0.0};
        Made &wave = row("a wave of a pump");
        wave.wave = 5000.0;
        Made &homologues = row("homologues");
        homologues.every = 12.0;
        homologues.peaks = 60;
        Made &pairs = row("pairs of peaks");
        pairs.twin = 20.0;
        pairs.peaks = 40;
        pairs.noise = 1000.0;
    }
    void guesses()
    {
        Made made = Rows<Made>::current();
        for (made.seed = 1; made.seed <= 3; ++made.seed) {
            const Trace one = trace(made);
            const MsModulation found = ms_guess_modulation(one.times, one.totals);
            QVERIFY2(found.isConfident == (made.length > 0.0), qPrintable(QString::number(found.confidence)));
            if (made.length > 0.0)
                QVERIFY2(std::abs(found.seconds - made.length) < 0.004 * made.length,
                         qPrintable(QString::number(found.seconds)));
        }
    }

    // Of times that a file may claim.
    void survivesOddTimes()
    {
        const Trace right = trace({5.0});
        const double huge = 1e300;
        for (const double odd : {double(NAN), double(INFINITY), huge, -huge, 0.0, 1e-300}) {
            Trace one = right;
            one.times[20000] = odd;
            one.totals[100] = odd;
            ms_guess_modulation(one.times, one.totals);
            std::fill(one.times.begin(), one.times.end(), odd);
            QVERIFY(std::isnan(ms_guess_modulation(one.times, right.totals).seconds));
        }
        QVERIFY(std::isnan(ms_guess_modulation({}, {}).seconds));
        Trace twice = right; // two scans at one time
        twice.times[1] = twice.times[0];
        QVERIFY(ms_guess_modulation(twice.times, twice.totals).isConfident);
        Trace shortest = right; // of a run
        for (double &time : shortest.times)
            time = (time - 300.0) * 1e-290;
        QVERIFY(std::isnan(ms_guess_modulation(shortest.times, shortest.totals).seconds));
    }

    // In a file, in its two programs.
    void isTakenFromFiles()
    {
        const QTemporaryDir folder;
        for (const char *kind : {"gcxgc", "gcms"}) {
            const QStringList sample = {"--seed", "5", kind, kind + QStringLiteral(".cdf")};
            QCOMPARE(runProgram(AIA_TOOLS "/aia-sample", sample, folder.path()).code, 0);
        }
        const Run found = runProgram(AIA_TOOLS "/aia-import", {"--gcxgc", "auto", "gcxgc.cdf"}, folder.path());
        QVERIFY2(found.code == 0 && found.out.contains("Modulation length:      4 s\n"), found.out + found.err);
        const Run refused = runProgram(AIA_TOOLS "/aia-import", {"--gcxgc", "auto", "gcms.cdf"}, folder.path());
        QCOMPARE(refused.err,
                 QByteArray("aia-import: The file \"gcms.cdf\" was not imported: its trace shows no modulation. Name "
                            "the length after --gcxgc.\n"));
        QCOMPARE(refused.code, 1);
        const QByteArray shown = runProgram(AIA_TOOLS "/aia-info", {"gcxgc.cdf"}, folder.path()).out;
        QVERIFY2(shown.contains("guessed_modulation:\n  seconds: 4\n"), shown);
        QVERIFY(!runProgram(AIA_TOOLS "/aia-info", {"gcms.cdf"}, folder.path()).out.contains("guessed"));

        // Where most totals are missing, those of the points are taken.
        const QString path = folder.filePath(QStringLiteral("gcxgc.cdf"));
        int id = -1;
        int totals = -1;
        QCOMPARE(nc_open(QFile::encodeName(path).constData(), NC_WRITE, &id), NC_NOERR);
        QCOMPARE(nc_inq_varid(id, "total_intensity", &totals), NC_NOERR);
        const std::size_t first = 0;
        const std::vector<double> missing(14000, MsMissingDouble); // of 24,000
        const std::size_t count = missing.size();
        nc_put_vara_double(id, totals, &first, &count, missing.data());
        nc_close(id);
        QCOMPARE(MsRun(path).modulation().seconds, 4.0);
    }
};

QTEST_GUILESS_MAIN(TestModulation)
#include "tst_modulation.moc"
