// A file that a program writes. It is made beside its place and moved there when it is whole, so that
// nothing short of that, such as a full disk or a kill, touches what is there.
#ifndef OUTPUTFILE_H
#define OUTPUTFILE_H

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>

class OutputFile
{
public:
    // What becomes of a file that is at the place already.
    enum class Existing { Keep, Replace };

    // "-" is standard output. It, pipes and devices have no place beside them and are written directly.
    // Behind symbolic links, the file that they lead to is meant.
    OutputFile(const QString &file, Existing policy);
    // Removes what wasn't moved to its place.
    ~OutputFile();
    Q_DISABLE_COPY(OutputFile)

    // How the file is written: from its beginning to its end, or here and there by a library that has
    // its path().
    enum class Order { FrontToBack, Any };

    // Why the file mustn't be written, as a sentence: it is there already, or is one of the `inputs`, by
    // whatever name, or is none that can be written in that order. Null where there is no objection.
    QString objection(const QStringList &inputs = {}, Order order = Order::FrontToBack) const;

    bool isDirect() const { return direct; }
    bool isStandardOutput() const { return name == QLatin1String("-"); }

    // The name of the file, behind all symbolic links.
    QString place() const;

    // Returns the name of a new file beside the place; empty for direct ones. For who starts another
    // process that writes this file, and has to remove what it leaves behind.
    QByteArray makeTemporaryName() const;
    // Has the file made under such a name.
    void useTemporary(const QByteArray &path) { wantedTemporary = path; }

    // Begins the file. Of this and the calls below, the first failure stays: they all return false from
    // then on, and errorText() says why.
    bool open();
    bool write(const char *bytes, std::size_t count);

    // Where the file is until it is moved, for a library that writes it by its path. Not for direct ones.
    const QByteArray &path() const { return temporary; }

    // Ends the file and moves it to its place. A file that came there meanwhile stays there, too.
    bool commit();

    // Has the file fail for a reason that only the caller knows.
    bool fail(const QString &reason);

    bool hasFailed() const { return !error.isNull(); }

    // A sentence with the file's name and the system's reason; null without a failure.
    QString errorText() const { return error; }

    // Removes the file that was begun last. For a signal handler that ends the process.
    static void removeUnfinished();

private:
    bool failOfSystem();
    bool close();
    bool move();
    void letGo();

    const QString name;
    const Existing existing;
    QByteArray target;
    QByteArray temporary;
    QByteArray wantedTemporary;
    bool direct = false;
    int handle = -1;
    QString error;
};

#endif // OUTPUTFILE_H
