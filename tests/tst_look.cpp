// The first look at files of the newer kinds: which files get one, and what comes of each way in which it can
// end. Shell scripts stand in for the program; the real one is there too, and files that it has to refuse.

#include "damagednewer.h"
#include "mslook.h"
#include "openfixture.h"
#include "plugin.h"
#include "rows.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

const QByteArray hdf5 = QByteArray::fromHex("894844460d0a1a0a");

struct Kind {
    QByteArray bytes;
    bool isLookedAt = false;
};

struct Ending {
    QByteArray script; // of the program; null: there is none
    QString said{};    // null for a file that may be opened
    int milliseconds = longestWait;
};

// A scan of 3 x 10^8 points, none of which was ever written, and two mebibytes of something else, so that the
// file's length doesn't give the claim away.
const char largeScan[] =
    "netcdf large { dimensions: scan_number = 1; point_number = 300000000; content = 2097152;"
    "variables: byte content(content); int scan_index(scan_number), point_count(scan_number);"
    "float intensity_values(point_number); data: content = 1; scan_index = 0; point_count = 300000000; }";

// More scans than can be read in the time of a look, none of which was ever written.
const char manyScans[] = "netcdf many { dimensions: scan_number = 2000000000;"
                         "variables: int scan_index(scan_number), point_count(scan_number); }";

} // namespace

class TestLook : public QObject, private OpenFixture
{
    Q_OBJECT

    QString write(const QString &name, const QByteArray &bytes)
    {
        const QString path = folder.filePath(name);
        if (!writeFile(path, bytes))
            qFatal("%s can't be written", qPrintable(path));
        return path;
    }
    QString writeProgram(const QByteArray &script)
    {
        const QString path = write(QStringLiteral("program"), "#!/bin/sh\n" + script + '\n');
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
        return path;
    }
    static int look(const QString &path, const QString &program, int milliseconds = longestWait)
    {
        return ms_look_first(QFile::encodeName(path).constData(), program, milliseconds);
    }

    QTemporaryDir folder;
    const QString realProgram = QStringLiteral(AIA_LOOK);

private slots:
    void initTestCase() { QVERIFY(folder.isValid()); }
    void init() { messages.clear(); }

    // By the places where netCDF searches for the signature.
    void kind_data()
    {
        const auto behind = [](int size) { return QByteArray(size, 'x') + hdf5; };
        const QByteArray classic = QByteArray("CDF\x01", 4);
        const Rows<Kind> row;
        row("at the beginning") = {hdf5, true};
        row("behind 512 bytes") = {behind(512), true};
        row("behind 8192 bytes") = {behind(8192), true};
        row("behind 1536 bytes") = {behind(1536)};
        row("cut off") = {hdf5.left(7)};
        row("empty") = {};
        row("classic") = {classic + QByteArray(508, 'x') + hdf5};
        row("CDF of no kind") = {"CDF\x03" + QByteArray(508, 'x') + hdf5, true};
    }
    void kind()
    {
        const Kind &row = Rows<Kind>::current();
        const QString failing = writeProgram("exit 1");
        QCOMPARE(look(write("kind.cdf", row.bytes), failing), row.isLookedAt ? -1 : 0);
        QCOMPARE(messages.size(), row.isLookedAt ? 1 : 0);
    }

    void neverWaitsForWhatIsNoFile()
    {
        const QString pipe = folder.filePath("pipe.cdf");
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        for (const QString &path : {pipe, folder.path(), folder.filePath("missing.cdf"), QString()})
            QCOMPARE(look(path, writeProgram("exit 1")), 0);
        QCOMPARE(ms_look_first(nullptr, QString()), 0);
    }

    void ending_data()
    {
        const Rows<Ending> row;
        row("well") = {"exit 0"};
        row("crash") = {"kill -SEGV $$", "a first look at it crashed; it is most likely damaged"};
        row("memory") = {"exit 4", "a first look at it took too much memory; it is most likely damaged"};
        row("time of the processor") = {"exit 3", "a first look at it came to no end; it is most likely damaged"};
        row("time by the clock") = {"exec sleep 1000", "a first look at it took more than 0.2 s", 200};
        row("failure") = {"exit 1", "a first look at it failed with status 1"};
        row("one argument") = {"test $# = 1", {}};
        row("no such program") = {{}, "program is missing, which looks at such files first"};
        row("program that can't be run") = {"", "can't be run: "};
    }
    void ending()
    {
        const Ending &row = Rows<Ending>::current();
        const QString path = write("ending<1>.cdf", hdf5 + QTest::currentDataTag());
        const QString program = writeProgram(row.script);
        if (row.script.isNull())
            QFile::remove(program);
        if (row.script.isEmpty())
            QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner);
        const int before = openFiles();
        QCOMPARE(look(path, program, row.milliseconds), row.said.isNull() ? 0 : -1);
        QCOMPARE(openFiles(), before);
        QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
        QCOMPARE(errno, ECHILD);
        QCOMPARE(messages.size(), row.said.isNull() ? 0 : 1);
        const QString start = "E The file " + path.toHtmlEscaped() + " wasn't opened: ";
        const QString message = messages.join('\n');
        QVERIFY2(row.said.isNull() || (message.startsWith(start) && message.contains(row.said)), qPrintable(message));
    }

    void worksInAProcessThatIgnoresItsChildren()
    {
        const auto before = std::signal(SIGCHLD, SIG_IGN);
        const int well = look(write("ignored.cdf", hdf5), writeProgram("exit 0"));
        const auto after = std::signal(SIGCHLD, before);
        QCOMPARE(well, 0);
        QVERIFY(after == SIG_IGN);
    }

    // And again once its length, its time or its name is another.
    void readsAWellFileOnce()
    {
        const QString path = write("once.cdf", hdf5);
        const std::pair<QString, std::function<void()>> files[] = {
            {path, [] {}},
            {path, [&] { write("once.cdf", hdf5 + "longer"); }},
            {path,
             [&] {
                 QFile changed(path);
                 QVERIFY(changed.open(QIODevice::ReadWrite));
                 changed.setFileTime(QDateTime::fromSecsSinceEpoch(1), QFileDevice::FileModificationTime);
             }},
            {folder.filePath("other.cdf"), [&] { write("other.cdf", hdf5 + "longer"); }}};
        for (const auto &[name, change] : files) {
            change();
            const std::pair<int, int> looks[] = {{1, -1}, {1, -1}, {0, 0}, {1, 0}}; // a refusal isn't kept
            for (const auto &[status, expected] : looks)
                QCOMPARE(look(name, writeProgram("exit " + QByteArray::number(status))), expected);
        }
    }

    // Not the odd ones either, nor those that claim what they don't have.
    void takesRightFiles()
    {
        int count = 0;
        for (const QString &name : QDir(QStringLiteral(AIA_FIXTURES)).entryList({"*.cdf"})) {
            const QString path = QStringLiteral(AIA_FIXTURES "/") + name;
            QVERIFY2(look(path, realProgram) == 0, qPrintable(name + messages.join('\n')));
            count += content(path).startsWith(hdf5);
        }
        QVERIFY(count >= 5);
    }

    void takesScansWithoutEnd()
    {
        const QString path = folder.filePath("many.cdf");
        QVERIFY(makeNetcdf(path, "nc4", manyScans));
        QVERIFY2(look(path, realProgram) == 0, qPrintable(messages.join('\n')));
    }

    // The places of a variable's parts are damaged, which ends the process that reads it.
    void readsAllThatProgramsRead_data()
    {
        const Rows<QByteArray> row;
        row("instruments") = "instrument_number = 2; _32_byte_string = 32;"
                             "variables: char instrument_name(instrument_number, _32_byte_string);"
                             "instrument_name:_ChunkSizes = 1, 32; data: instrument_name = \"one\", \"two\"; }";
        row("groups") = "group_number = 2; group_max_masses = 2; variables: int group_mass_count(group_number);"
                        "double group_masses(group_number, group_max_masses); group_masses:_ChunkSizes = 1, 2;"
                        "data: group_mass_count = 2, 2; group_masses = 1, 2, 3, 4; }";
        row("entries") = "_255_byte_string = 32; variables: :experiment_type = \"library mass spectrum\";"
                         "char entry_name(scan_number, _255_byte_string); entry_name:_ChunkSizes = 1, 32;"
                         "data: entry_name = \"one\", \"two\"; }";
    }
    void readsAllThatProgramsRead()
    {
        const QString path = folder.filePath("parts.cdf");
        QVERIFY(makeNetcdf(path, "nc4", "netcdf parts { dimensions: scan_number = 2;" + Rows<QByteArray>::current()));
        QByteArray bytes = content(path);
        const int node = bytes.indexOf(QByteArray("TREE\x01\0", 6));
        QVERIFY(node > 0);
        bytes[node + 5] = 1; // a node of nodes, the first of which is itself
        qToLittleEndian<qint64>(node, bytes.data() + node + 56);
        QCOMPARE(look(write("parts.cdf", bytes), realProgram), -1);
        QVERIFY2(messages.join('\n').contains("a first look at it "), qPrintable(messages.join('\n')));
    }

    // In a folder whose name has to reach the program as it is.
    void refusesToFillTheMemory()
    {
        const QByteArray odd = QFile::encodeName(folder.path()) + "/\xe4 %41&\"$x";
        QCOMPARE(mkdir(odd.constData(), 0700), 0);
        const QString large = folder.filePath("large.cdf");
        QVERIFY(makeNetcdf(large, "nc4", largeScan));
        const QByteArray path = odd + "/large.cdf";
        QCOMPARE(std::rename(QFile::encodeName(large).constData(), path.constData()), 0);
        QCOMPARE(ms_look_first(path.constData(), realProgram, longestWait), -1);
        QVERIFY2(messages.join('\n').contains("took too much memory"), qPrintable(messages.join('\n')));
        std::filesystem::remove_all(odd.toStdString()); // Qt can't spell that name
    }

    void endsItselfWhenTheLibraryHangs()
    {
        const QString path = write("hanging.cdf", damagedNewer(hangingDamage));
        QCOMPARE(runProgram(realProgram, {path}).code, int(MsLookTooLong));
    }

    // Whichever allocation fails.
    void endsWithoutMemory()
    {
        const QString path = write("right.cdf", content(fixture("wide-values")));
        int refused = 0;
        for (int n = 1; n < 100; n += n / 4 + 1) {
            const QByteArray program = "LD_PRELOAD=" AIA_FAILING_MEMORY " FAILING_ALLOCATION=" + QByteArray::number(n)
                + " ASAN_OPTIONS=verify_asan_link_order=0 exec '" + QFile::encodeName(realProgram) + "' \"$1\"";
            messages.clear();
            const bool isRefused = look(path, writeProgram(program)) == -1;
            QVERIFY2(!isRefused || messages.join('\n').contains("took too much memory"),
                     qPrintable(messages.join('\n')));
            refused += isRefused;
        }
        QVERIFY(refused > 0);
    }

    // In a process as young as the look's that often goes well, in an older one it doesn't.
    void refusesWhatFreesUnwrittenMemory()
    {
        QCOMPARE(look(write("unfilled.cdf", damagedNewer(unfilledDamage)), realProgram), -1);
        QVERIFY2(messages.join('\n').contains("a first look at it "), qPrintable(messages.join('\n')));
    }

    // The damaged file would end this process.
    void keepsTheHostAlive()
    {
        Plugin plugin;
        const int before = openFiles();
        QVERIFY(!plugin.canImport(write("damaged.cdf", damagedNewer(crashingDamage))));
        QCOMPARE(openFiles(), before);
        QCOMPARE(messages.size(), 2);
        QVERIFY2(messages.first().contains("damaged.cdf wasn't opened: a first look at it "),
                 qPrintable(messages.first()));
        QCOMPARE(messages.last(), QStringLiteral("W ms_open_read failed!"));
        const Plugin::Copy copy = plugin.copyFor(fixture("wide-values"));
        QVERIFY(copy && Plugin::import(copy.get(), nullptr));
    }

    void findsTheProgramBesideThePlugin()
    {
        const QString path = write("right.cdf", content(fixture("wide-values")));
        const QString moved = folder.filePath("moved.so");
        QVERIFY(QFile::copy(QStringLiteral(AIA_PLUGIN), moved));
        Plugin plugin;
        plugin.loader.setFileName(moved);
        QVERIFY(!plugin.canImport(path));
        const QString program = folder.filePath(QFileInfo(realProgram).fileName());
        QVERIFY2(messages.first().contains(program + " is missing"), qPrintable(messages.first()));
        QVERIFY(plugin.canImport(fixture("two-scans")));
        delete plugin.prototype()->clone();

        QVERIFY(QFile::copy(realProgram, program));
        QVERIFY(plugin.canImport(path));
        delete plugin.prototype();
    }
};

QTEST_GUILESS_MAIN(TestLook)
#include "tst_look.moc"
