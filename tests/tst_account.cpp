// The running account of an import: where a line goes, and the attributes that are read for one.

#include "debugger.h"
#include "importaiams.h"
#include "logger.h"
#include "messageloggerinterface.h"
#include "program.h"
#include "rows.h"
#include "ttestingmacros.h"

#include <QTemporaryFile>

#include <algorithm>
#include <cstdio>
#include <unistd.h>
#include <vector>

// An explicit instantiation may name a private member, and so hand it to a test.
template <auto member> struct Opened {
    friend int readGlobalTextAttribute(ImportAiaMs &plugin, const char *name, char *buffer, int size)
    {
        return (plugin.*member)(name, buffer, size);
    }
};
template struct Opened<&ImportAiaMs::readGlobalTextAttribute>;
int readGlobalTextAttribute(ImportAiaMs &plugin, const char *name, char *buffer, int size);

namespace {

// Returns what `write` sends to standard error.
template <class Write> QByteArray standardError(Write write)
{
    QTemporaryFile file;
    file.open();
    const int before = dup(STDERR_FILENO);
    dup2(file.handle(), STDERR_FILENO);
    write();
    dup2(before, STDERR_FILENO);
    ::close(before);
    return content(file.fileName());
}

struct Level {
    int level = 0;
    int loggerLevel = 0;
    int line = 0;
    QByteArray label{}; // what a debugger sees in front of the message
};

struct Attribute {
    QString fixture;
    const char *name = nullptr;
    int size = 100; // of the buffer
    int result = 0;
    QByteArray text{};
};

} // namespace

class TestAccount : public QObject
{
    Q_OBJECT

private slots:
    void writesALine_data()
    {
        const Rows<Level> row;
        row("debug") = {0, 100, 49, "Debug: "};
        row("warning") = {1, 300, 53, "Warning: "};
        row("plain") = {2, 200, 61};
        row("fatal") = {3, 500, 57, "Fatal: "};
        row("any other") = {4, 200, 61};
    }
    void writesALine()
    {
        const Level &row = Rows<Level>::current();
        // No place for an argument, and a character beyond 16 bits.
        const QString message = QString::fromUtf8("d\xC3\xA9lai : %1 \xF0\x9F\x98\x80");
        const auto write = [&] { testingMessageOutput(row.level, nullptr, message); };
        QCOMPARE(standardError(write), message.toUtf8() + '\n'); // without a logger
        Logger logger;
        QCOMPARE(standardError(write), message.toUtf8() + '\n');
        QCOMPARE(logger.level, row.loggerLevel);
        QCOMPARE(logger.file, QStringLiteral("libraries\\internal\\common\\include\\ttestingmacros"));
        QCOMPARE(logger.line, row.line);
        QCOMPARE(logger.messages, QStringList(message));
        QCOMPARE(logger.flushed, 1);

        QString seen;
        const Debugger::Receiver before = Debugger::setReceiver([&](const QString &text) { seen += text; });
        const QByteArray printed = standardError(write);
        Debugger::setReceiver(before);
        QCOMPARE(printed, QByteArray());
        QCOMPARE(seen, QString::fromUtf8(row.label) + message + '\n');
        QCOMPARE(logger.flushed, 2);
    }

    void writesMessages()
    {
        const auto write = [] { MessageLoggerInterface::Warning(QString::fromUtf8("d\xC3\xA9lai"), nullptr); };
        QCOMPARE(standardError(write), QByteArray("Warning: d\xC3\xA9lai\n"));
    }

    void readsAnAttribute_data()
    {
        const Rows<Attribute> row;
        row("whole") = {"text-attributes", "operator_name", 11, 1, "trailing  "};
        row("cut") = {"text-attributes", "operator_name", 10, 1, "trailing "};
        row("no room") = {"text-attributes", "operator_name", 1, 1, ""};
        row("up to a NUL") = {"text-attributes", "source_file_format", 100, 1, "one"};
        row("Latin-1") = {"text-attributes", "dataset_origin", 100, 1, "bad \xE9 byte"};
        row("empty") = {"empty-attributes", "experiment_title", 100, 1, ""};
        row("absent") = {"empty-attributes", "operator_name"};
        row("a number") = {"wrong-attribute-types", "experiment_title"};
        row("no name") = {"text-attributes", nullptr};
    }
    void readsAnAttribute()
    {
        const Attribute &row = Rows<Attribute>::current();
        ImportAiaMs plugin;
        QVERIFY(plugin.reopenForFile(fixture(row.fixture)));
        Logger logger;
        std::vector<char> buffer(std::size_t(row.size), 'x');
        QCOMPARE(readGlobalTextAttribute(plugin, row.name, buffer.data(), row.size), row.result);
        QVERIFY(std::find(buffer.begin(), buffer.end(), '\0') != buffer.end());
        QCOMPARE(QByteArray(buffer.data()), row.text);
        QStringList expected;
        if (row.result == 1)
            expected += QStringLiteral("%1 = %2").arg(row.name, QString::fromLatin1(row.text));
        QCOMPARE(logger.messages, expected);
        buffer[0] = 'x';
        QCOMPARE(readGlobalTextAttribute(plugin, row.name, nullptr, row.size), 0);
        QCOMPARE(readGlobalTextAttribute(plugin, row.name, buffer.data(), 0), 0);
        QCOMPARE(buffer[0], 'x');
    }
};

QTEST_GUILESS_MAIN(TestAccount)
#include "tst_account.moc"
