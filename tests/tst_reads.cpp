// The system's reads of an import fail in turn. What is asked for comes right or is missing, and a failure
// is told.

#include "dvheader.h"
#include "dvimportreceiver.h"
#include "failingreads.h"
#include "filestate_p.h"
#include "messageredirection.h"
#include "msdoubts.h"
#include "msfile.h"
#include "mslook.h"
#include "plugin.h"
#include "program.h"
#include "rows.h"
#include "samplefile.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

namespace {

constexpr int scanCount = 300;
constexpr int pointCount = 20;

using Points = std::vector<std::pair<float, float>>; // mass and abundance

// What came of one import, and what was told of it.
struct Imported : DVImportReceiver {
    void analysisStarted(const DVHeader &header, const float *masses, int size) override
    {
        title = header.getExpName();
        table.assign(masses, masses + size);
    }
    void scanImported(int, double, double, int count, const float *abundances, const unsigned short *at) override
    {
        Points &points = scans.emplace_back();
        for (int i = 0; i < count; ++i)
            points.emplace_back(table[at[i]], abundances[i]);
    }
    void progressChanged(int, int) override { }

    // A scan is as in `whole`, or has no points.
    bool isPartOf(const Imported &whole) const
    {
        for (std::size_t i = 0; i < scans.size(); ++i) {
            if (!scans[i].empty() && scans[i] != whole.scans[i])
                return false;
        }
        return scans.empty() || title == whole.title;
    }
    int lost() const { return int(std::count(scans.begin(), scans.end(), Points())) + scanCount - int(scans.size()); }

    QString title;
    std::vector<float> table;
    std::vector<Points> scans;
    QString told;       // all messages
    bool isWell = true; // the run came to its end, and none of the doubts is a loss
};

struct Fault {
    ReadFault kind = ReadFault::Error;
    int error = 0;            // errno, which is told
    bool forGood = false;     // and all reads behind it
    bool isContinued = false; // nothing is missing
};

struct Change {
    void (*make)(const QString &path, const QByteArray &other) = nullptr;
    bool isPutBack = false; // with the time that it had, two reads later; what differed then isn't certain
};

struct Part {
    int first = 0; // byte of the counts that can't be had
    int size = 0;  // below 0: all behind it, too
    QByteArray said{};
};

bool writeOver(const QString &path, QIODevice::OpenMode mode, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(mode) && file.write(bytes) == bytes.size();
}

void makeOld(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1700000000), QFileDevice::FileModificationTime));
}

} // namespace

class TestReads : public QObject, private Plugin
{
    Q_OBJECT

    Imported importRun()
    {
        Imported result;
        const MessageRedirection redirection(
            [&result](MessageLoggerInterface::Level, const QString &text) { result.told += text + '\n'; });
        const Copy copy = copyFor(path);
        result.isWell = copy && import(copy.get(), &result);
        const QList<QVariant> doubts = copy ? copy->property("doubts").toList() : QList<QVariant>();
        for (const QVariant &doubt : doubts)
            result.isWell = result.isWell && !doubt.toMap().value("loss").toBool();
        return result;
    }

    // The file has an old time, so that any change is one of its time, too.
    void put(const QByteArray &bytes)
    {
        QVERIFY(writeFile(path, bytes));
        makeOld(path);
    }

    QByteArray sample(quint64 seed, bool isFixed) const
    {
        SampleOptions options;
        options.scans = scanCount;
        options.points = pointCount;
        options.seed = seed;
        const QString made = folder.filePath(QStringLiteral("made.cdf"));
        const QString copied = folder.filePath(QStringLiteral("copied.cdf"));
        // The title takes several of the library's blocks: zeros in one would still be a header.
        const QByteArray title(30000, 't');
        int id = -1;
        const bool isMade = writeSample(QFile::encodeName(made), options).isNull()
            && nc_open(QFile::encodeName(made).constData(), NC_WRITE, &id) == NC_NOERR && nc_redef(id) == NC_NOERR
            && nc_put_att_text(id, NC_GLOBAL, "experiment_title", std::size_t(title.size()), title.constData())
                == NC_NOERR
            && nc_enddef(id) == NC_NOERR && MsFile::adopt(id).finish()
            && runProgram(QStringLiteral("nccopy"), {QStringLiteral("-u"), made, copied}).code == 0;
        return isMade ? content(isFixed ? copied : made) : QByteArray();
    }

    // Which scans have an element in the 512 bytes from `begin` on.
    static QSet<int> scansAt(const MsClassicLayout &layout, MsFileState *state, quint64 begin)
    {
        QSet<int> result;
        for (std::size_t id = 0; id < layout.variables.size(); ++id) {
            const MsVariableExtent &extent = layout.variables[id];
            MsShape shape;
            if (!state->data.ask_shape(int(id), &shape) || shape.rank() != 1)
                continue;
            const int each = shape.length[0] == scanCount ? 1 : pointCount;
            for (std::size_t i = 0; i < shape.length[0]; ++i) {
                const quint64 place = extent.begin + i * extent.stride;
                if (place < begin + 512 && place + extent.width > begin)
                    result += int(i) / each;
            }
        }
        return result;
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("run.cdf"));
    const QByteArray pathBytes = QFile::encodeName(path);
    QByteArray runs[2]; // as records of an unlimited dimension, and in the fixed layout
    QByteArray others[2];

private slots:
    void initTestCase()
    {
        for (const bool isFixed : {false, true}) {
            runs[isFixed] = sample(1, isFixed);
            others[isFixed] = sample(2, isFixed);
            QVERIFY(!runs[isFixed].isEmpty() && runs[isFixed].size() == others[isFixed].size());
        }
        put(runs[0]);
        importRun(); // what a first import reads besides
    }
    void cleanup() { reads = {}; }

    void tellsFailures_data()
    {
        const Rows<Fault> row;
        row("an error once") = {ReadFault::Error, EIO, false, true};
        row("errors for good") = {ReadFault::Error, EIO, true};
        row("a lost connection") = {ReadFault::Error, ESTALE, true};
        row("an early end once") = {ReadFault::End, 0, false, true};
        row("early ends for good") = {ReadFault::End, 0, true};
        row("an interruption") = {ReadFault::Interrupted, 0, false, true};
        row("a short read") = {ReadFault::Short, 0, false, true};
        row("short reads for good") = {ReadFault::Short, 0, true};
    }
    void tellsFailures()
    {
        const Fault &row = Rows<Fault>::current();
        for (const QByteArray &bytes : runs) {
            put(bytes);
            reads = {};
            reads.path = pathBytes.constData();
            const Imported whole = importRun();
            QVERIFY2(whole.isWell && whole.lost() == 0, qPrintable(whole.told));
            const int made = reads.made;
            reads.made = 0;
            ms_close(ms_open_read(pathBytes.constData()));
            const int opening = reads.made;
            QVERIFY(opening > 2 && made > opening + 6);
            for (int n = 1; n <= made; ++n) {
                reads = {pathBytes.constData(), n, row.forGood, row.kind, row.error};
                const Imported result = importRun();
                const QByteArray what = QByteArray::number(n) + ": " + result.told.toUtf8();
                QVERIFY2(reads.failed > 0, what);
                QVERIFY2(result.isPartOf(whole), what);
                QVERIFY2(!row.isContinued || result.lost() == 0, what);
                // What comes short to the library, which opens the file, isn't continued.
                const bool isQuiet =
                    row.kind == ReadFault::Interrupted || (row.kind == ReadFault::Short && n > opening);
                QVERIFY2(!isQuiet || (result.isWell && result.told == whole.told), what);
                if (row.error != 0)
                    QVERIFY2(result.told.contains(QString::fromLocal8Bit(std::strerror(row.error))), what);
                // A refusal is told even where a second attempt went well.
                const bool isRefusal = row.kind == ReadFault::Error || row.kind == ReadFault::End;
                QVERIFY2(!result.isWell || result.lost() == 0, what);
                QVERIFY2((result.isWell && !isRefusal) || result.told.contains("he system "), what);
            }
        }
    }

    // Each sector in turn can't be read: only scans with numbers in it are lost. The library reads more than
    // the header, in its blocks.
    void losesNoMoreThanASector()
    {
        for (const QByteArray &bytes : runs) {
            put(bytes);
            const Imported whole = importRun();
            const MsFile file(pathBytes.constData());
            MsFileState *const state = ms_file_state(file.id());
            const MsClassicLayout &layout = *state->data.classic_layout();
            int lost = 0;
            for (quint64 bad = (layout.header + 2 * 8192) / 512 * 512; bad < quint64(bytes.size()); bad += 512) {
                reads = {pathBytes.constData(), 0, false, ReadFault::Error, EIO, qint64(bad), qint64(bad) + 512};
                const Imported result = importRun();
                const QByteArray what = QByteArray::number(bad) + ": " + result.told.toUtf8();
                QVERIFY2(result.isWell == (reads.failed == 0) && result.isPartOf(whole), what);
                QVERIFY2(int(result.scans.size()) == scanCount, what);
                const QSet<int> there = scansAt(layout, state, bad);
                for (int scan = 0; scan < scanCount; ++scan)
                    QVERIFY2(!result.scans[std::size_t(scan)].empty() || there.contains(scan), what);
                lost += result.lost();
            }
            QVERIFY(lost > scanCount);
        }
    }

    void noticesChanges_data()
    {
        const Rows<Change> row;
        row("cut").make = [](const QString &name, const QByteArray &) {
            QFile::resize(name, QFileInfo(name).size() / 2);
            makeOld(name); // its length alone tells
        };
        row("grown").make = [](const QString &name, const QByteArray &other) {
            QVERIFY(writeOver(name, QIODevice::Append, other));
            makeOld(name);
        };
        const auto over = [](const QString &name, const QByteArray &other) {
            QVERIFY(writeOver(name, QIODevice::ReadWrite, other));
        };
        row("written over") = {over};
        row("put back") = {over, true};
        row("emptied and written").make = [](const QString &name, const QByteArray &other) {
            QVERIFY(writeFile(name, other));
        };
        row("replaced").make = [](const QString &name, const QByteArray &other) { // by one as long and as old
            const QString moved = name + QStringLiteral(".new");
            QVERIFY(writeFile(moved, other));
            makeOld(moved);
            QCOMPARE(std::rename(QFile::encodeName(moved).constData(), QFile::encodeName(name).constData()), 0);
        };
    }
    void noticesChanges()
    {
        const Change &change = Rows<Change>::current();
        for (const int i : {0, 1}) {
            reads = {};
            put(others[i]);
            const Imported other = importRun();
            put(runs[i]);
            reads.path = pathBytes.constData();
            const Imported whole = importRun();
            const int made = reads.made;
            for (int n = 1; n <= made; ++n) {
                put(runs[i]);
                reads = {pathBytes.constData(), n, change.isPutBack};
                reads.before = [&] {
                    if (reads.made == n)
                        change.make(path, others[i]);
                    if (reads.made == n + 2) {
                        QVERIFY(writeOver(path, QIODevice::ReadWrite, runs[i]));
                        makeOld(path);
                    }
                };
                const Imported result = importRun();
                // All of it old or all of it new, or it is told.
                const bool isOfOneFile = result.isPartOf(whole) || result.isPartOf(other);
                const QString what = QStringLiteral("%1: %2").arg(n).arg(result.told);
                const bool isNamed = what.contains("changed") || what.contains("cut off");
                const bool isTold = change.isPutBack ? !result.told.isEmpty() : isNamed;
                QVERIFY2(result.isWell ? isOfOneFile && result.lost() == 0 : isTold, qPrintable(what));
                QVERIFY2(change.isPutBack || !what.contains("he system "), qPrintable(what));
            }
        }
    }

    // A system that interrupts for ever is one that refuses.
    void endsInterruptions()
    {
        put(runs[1]);
        MsClassicBytes bytes;
        QVERIFY(bytes.open(pathBytes.constData()));
        reads = {pathBytes.constData(), 1, true, ReadFault::Interrupted};
        char first = '\0';
        QVERIFY(bytes.read_bytes(0, 1, &first) == MsClassicBytes::Result::Failed);
        QCOMPARE(bytes.first_error(), EINTR);
    }

    // The system refuses part of the counts, or the file is cut in them. Of two that are missing, one lies
    // behind: it is found unless it was cut off, and nothing is said of what couldn't be read.
    void keepsTheRestOfTheDoubts_data()
    {
        const Rows<Part> row;
        row("whole") = {0, 0, "bad-counts 2, unowned-points 2"};
        row("a sector") = {512, 512, "bad-counts 2"};
        row("a sector further on") = {16384, 512, "bad-counts 2"};
        row("a whole stretch") = {0, 8192, "bad-counts 1"};
        row("cut") = {8192, -1, "changed-file 1, bad-counts 1"};
    }
    void keepsTheRestOfTheDoubts()
    {
        const Part &row = Rows<Part>::current();
        SampleOptions options;
        options.scans = 5000;
        options.points = 1;
        QVERIFY(writeSample(pathBytes, options).isNull());
        int id = -1;
        int counts = -1;
        nc_open(pathBytes.constData(), NC_WRITE, &id);
        nc_inq_varid(id, "point_count", &counts);
        for (const std::size_t scan : {std::size_t(5), std::size_t(4500)}) {
            const int missing = -9999;
            nc_put_var1_int(id, counts, &scan, &missing);
        }
        QVERIFY(MsFile::adopt(id).finish());

        const MsFile file(pathBytes.constData());
        const MsFileState *const state = ms_file_state(file.id());
        const auto begin = state->data.classic_layout()->variables[std::size_t(counts)].begin;
        const auto first = qint64(begin) + row.first;
        if (row.size < 0)
            QVERIFY(QFile::resize(path, first));
        else
            reads = {pathBytes.constData(), 0, false, ReadFault::Error, EIO, first, first + row.size};
        QByteArrayList found;
        for (const MsDoubt &doubt : ms_list_doubts(file.id(), QString())) {
            if (QByteArray(doubt.code) != "read-failed" && QByteArray(doubt.code) != "cut-off")
                found += QByteArray(doubt.code) + ' ' + QByteArray::number(doubt.count);
        }
        QCOMPARE(found.join(", "), row.said);
    }

    // All masses that are counted at once are refused: those behind them count.
    void keepsTheRestOfTheCensus()
    {
        SampleOptions options;
        options.scans = 5000;
        options.points = 14;
        QVERIFY(writeSample(pathBytes, options).isNull());
        const MsFile file(pathBytes.constData());
        const MsClassicLayout &layout = *ms_file_state(file.id())->data.classic_layout();
        const auto begin = qint64(layout.record_begin);
        const auto size = qint64(layout.record_size) << 16;
        reads = {pathBytes.constData(), 0, false, ReadFault::Error, EIO, begin, begin + size};
        const MsCensus census = file.census(2, 1.0);
        QVERIFY(reads.failed > 0 && census.isRead() && !census.keys.isEmpty());
    }

    // Also where a second attempt goes well.
    void tellsRefusalsBeforeALook()
    {
        for (const bool forGood : {false, true}) {
            put(QByteArray::fromHex("894844460d0a1a0a"));
            reads = {pathBytes.constData(), 1, forGood, ReadFault::Error, EIO};
            QString told;
            const MessageRedirection redirection(
                [&told](MessageLoggerInterface::Level, const QString &text) { told += text + '\n'; });
            QCOMPARE(ms_look_first(pathBytes.constData(), QStringLiteral("/bin/true")), forGood ? -1 : 0);
            QVERIFY2(told.contains(QString::fromLocal8Bit(std::strerror(EIO))), qPrintable(told));
        }
    }

    // A trace goes on behind what can't be read, and goes up to the end of a file that is cut meanwhile.
    void keepsTheRestOfATrace()
    {
        for (const bool isCut : {false, true}) {
            put(runs[1]);
            const MsFile file(pathBytes.constData());
            const MsTrace whole = file.trace();
            MsFileState *const state = ms_file_state(file.id());
            const auto variable = std::size_t(state->variables[MsVar_total_intensity]);
            const quint64 begin = state->data.classic_layout()->variables[variable].begin;
            const quint64 bad = begin / 512 * 512 + 512;
            if (isCut)
                QVERIFY(QFile::resize(path, qint64(bad)));
            else
                reads = {pathBytes.constData(), 0, false, ReadFault::Error, EIO, qint64(bad), qint64(bad) + 512};
            const MsTrace trace = file.trace();
            QVERIFY(trace.isRead());
            int missing = 0;
            for (int scan = 0; scan < scanCount; ++scan) {
                missing += trace.totalIntensities()[scan] == MsMissingDouble;
                QVERIFY(trace.totalIntensities()[scan] == whole.totalIntensities()[scan]
                        || trace.totalIntensities()[scan] == MsMissingDouble);
            }
            reads = {pathBytes.constData(), 0, false, ReadFault::Error, EIO, qint64(begin), qint64(begin) + 512 * 8};
            QVERIFY(!file.trace().isRead());
            reads = {};
            const int behind = scanCount - int((bad - begin) / sizeof(double));
            QVERIFY(isCut ? missing == behind : missing > 60 && missing < 67);
        }
    }
};

QTEST_GUILESS_MAIN(TestReads)
#include "tst_reads.moc"
