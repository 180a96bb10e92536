// Names that look like something else than the name of a file.

#include "mstoolkit.h"
#include "program.h"
#include "rows.h"

#include <QTemporaryDir>

#include <netinet/in.h>
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

struct Address {
    QByteArray path; // HOST stands for the listener, FOLDER for the current folder
};

} // namespace

class TestNames : public QObject
{
    Q_OBJECT

    const Listener listener;

private slots:
    void address_data()
    {
        const Rows<Address> row;
        row("http") = {"http://HOST/x.cdf"};
        row("https") = {"https://HOST/x.cdf"};
        row("dods") = {"dods://HOST/x.cdf"};
        row("s3") = {"s3://HOST/bucket/x.cdf"};
        row("file") = {"file:///HOST/x.cdf"};
        row("mode in front") = {"[mode=bytes]http://HOST/x.cdf"};
        row("mode behind") = {"HOST/x.cdf#mode=bytes"};
        row("mode and address") = {"http://HOST/x.cdf#mode=bytes"};
        row("blanks in front") = {"  http://HOST/x.cdf"};
        row("absolute") = {"FOLDER/http://HOST/x.cdf"};
    }
    void address()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        QByteArray path = Rows<Address>::current().path;
        path.replace("HOST", listener.host()).replace("FOLDER", QFile::encodeName(folder.path()));
        const auto write = [&] { return ms_open_write(path, 0, 1, 0, 76, 76, 76, 1, 0); };
        QCOMPARE(ms_open_read(path), -1);
        QCOMPARE(write(), -1); // into a folder that isn't there

        const QString name = QFile::decodeName(path);
        QVERIFY(QDir().mkpath(name.left(name.lastIndexOf(QLatin1Char('/')))));
        QCOMPARE(ms_close(write()), 0);
        QVERIFY(QFile::exists(name));
        QCOMPARE(ms_close(ms_open_read(path)), 0);
        QVERIFY(!listener.wasAsked());
    }
};

QTEST_GUILESS_MAIN(TestNames)
#include "tst_names.moc"
