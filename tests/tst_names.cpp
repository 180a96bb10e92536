// The file that is opened is the one that is named: names in any script and coding, in any locale, and such
// that look like the address of a server.

#include "msfile.h"
#include "plugin.h"
#include "program.h"
#include "rows.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTextCodec>

#include <filesystem>
#include <netinet/in.h>
#include <optional>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A server on this machine that notices whether anybody asks it anything.
class Listener
{
public:
    Listener()
    {
        bind(handle, reinterpret_cast<sockaddr *>(&address), length);
        listen(handle, 8);
        getsockname(handle, reinterpret_cast<sockaddr *>(&address), &length);
    }
    ~Listener() { ::close(handle); }
    Q_DISABLE_COPY(Listener)

    QByteArray host() const { return "127.0.0.1:" + QByteArray::number(ntohs(address.sin_port)); }
    bool wasAsked() const { return accept(handle, nullptr, nullptr) != -1; }

private:
    const int handle = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t length = sizeof address;
};

struct Named {
    QByteArray name;
    QByteArray file{};    // that is there, if its name is another
    QByteArray refusal{}; // what is said where the file isn't the one that was named
};

struct HostsName {
    QByteArray codec; // of the locale
    QString name;
    QByteArray file; // that is there
    bool opens;
};

} // namespace

class TestNames : public QObject
{
    Q_OBJECT

    const Listener listener;
    std::optional<QTemporaryDir> folder; // the current one

    void makeFile(const QByteArray &name)
    {
        std::filesystem::copy_file(QFile::encodeName(fixture("gcgc")).constData(), name.constData());
    }

    // The shell makes the bytes of the name, which QProcess would encode.
    static Run run(const QByteArray &program, const QByteArray &locale, const QByteArray &name)
    {
        QByteArray octal;
        for (const char byte : name)
            octal += "\\" + QByteArray::number(uchar(byte), 8).rightJustified(3, '0');
        return runProgram("sh",
                          {"-c",
                           "LC_ALL=$1 exec $0 --json " + QString(program == "aia-import" ? "- " : "") + "\"$(printf '"
                               + octal + "')\"",
                           AIA_TOOLS "/" + program, locale});
    }

private slots:
    void init()
    {
        folder.emplace();
        QVERIFY(QDir::setCurrent(folder->path()));
    }

    // QTemporaryDir can't: some names make no sense to Qt.
    void cleanup() { std::filesystem::remove_all(QFile::encodeName(folder->path()).constData()); }

    void program_data()
    {
        const Rows<Named> row;
        row("ASCII") = {"x.cdf"};
        row("Greek") = {"\xCE\xA9.cdf"};
        row("emoji") = {"\xF0\x9F\x98\x80.cdf"};
        row("emoji that ends like a kept byte") = {"\xF0\x9F\x92\x80.cdf"};
        row("not UTF-8") = {"caf\xE9\x80.cdf"};
        row("half a pair") = {"\xED\xB2\x80.cdf"};
        row("byte order mark") = {"\xEF\xBB\xBFx.cdf"};
        row("line break") = {"x\ny.cdf"};
        row("blanks in front") = {"  x.cdf"};
        row("written in Latin-1") = {"\xC3\xA9.cdf", "\xE9.cdf"};
        row("question mark for it") = {"\xCE\xA9.cdf", "?.cdf", ".cdf"};
        row("it for question mark") = {"?.cdf", "\xCE\xA9.cdf", "?.cdf"};
        row("missing, not UTF-8") = {"\xE9.cdf", "?.cdf", "?.cdf"};
    }
    void program()
    {
        const Named &row = Rows<Named>::current();
        const QByteArray file = row.file.isEmpty() ? row.name : row.file;
        makeFile(file);
        for (const char *program : {"aia-import", "aia-info"}) {
            for (const char *locale : {"C", "C.UTF-8"}) {
                const Run result = run(program, locale, row.name);
                QVERIFY2(result.err.contains(row.refusal), result.err);
                const QJsonObject shown = QJsonDocument::fromJson(result.out).object();
                const bool isTaken = row.refusal.isEmpty();
                const bool isNamed = isTaken || program == QByteArray("aia-info");
                QCOMPARE(shown["complete"].toBool(), isTaken);
                QCOMPARE(shown["file"].toString(), isNamed ? QString::fromUtf8(isTaken ? file : row.name) : QString());
            }
        }
    }

    void plugin_data()
    {
        const Rows<HostsName> row;
        row("UTF-8") = {"UTF-8", QStringLiteral("\u03A9.cdf"), "\xCE\xA9.cdf", true};
        row("UTF-8 where Latin-1 has it, too") = {"UTF-8", QStringLiteral("\u00E9.cdf"), "\xC3\xA9.cdf", true};
        row("Latin-1 behind UTF-8") = {"UTF-8", QStringLiteral("\u00E9.cdf"), "\xE9.cdf", true};
        row("question mark for it") = {"UTF-8", QStringLiteral("\u03A9.cdf"), "?.cdf", false};
        row("Latin-1") = {"ISO-8859-1", QStringLiteral("\u00E9.cdf"), "\xE9.cdf", true};
        row("cut short") = {"UTF-8", QStringLiteral("x.cdf") + QChar(0) + QStringLiteral(".cdf"), "x.cdf", false};
    }
    void plugin()
    {
        const HostsName &row = Rows<HostsName>::current();
        makeFile(row.file);
        Plugin host;
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(row.codec));
        const bool opens = host.parameters()->reopenForFile(row.name);
        QTextCodec::setCodecForLocale(nullptr);
        delete host.prototype(); // closes
        QCOMPARE(opens, row.opens);
    }

    void address_data()
    {
        const Rows<QByteArray> row; // HOST stands for the listener, FOLDER for the current folder
        row("http") = "http://HOST/x.cdf";
        row("dods") = "dods://HOST/x.cdf";
        row("s3") = "s3://HOST/bucket/x.cdf";
        row("file") = "file:///HOST/x.cdf";
        row("mode in front") = "[mode=bytes]http://HOST/x.cdf";
        row("mode and address") = "http://HOST/x.cdf#mode=bytes";
        row("blanks in front") = "  http://HOST/x.cdf";
        row("absolute") = "FOLDER/http://HOST/x.cdf";
    }
    void address()
    {
        QByteArray path = Rows<QByteArray>::current();
        path.replace("HOST", listener.host()).replace("FOLDER", QFile::encodeName(folder->path()));
        const auto write = [&] { return MsFile::create(path, MsFileLayout()).isOpen(); };
        QVERIFY(!MsFile(path.constData()));
        QVERIFY(!write()); // into a folder that isn't there

        const QString name = QFile::decodeName(path);
        QVERIFY(QDir().mkpath(name.left(name.lastIndexOf(QLatin1Char('/')))));
        QVERIFY(write());
        QVERIFY(QFile::exists(name));
        QVERIFY(MsFile(path.constData()));
        QVERIFY(!listener.wasAsked());
    }
};

QTEST_GUILESS_MAIN(TestNames)
#include "tst_names.moc"
