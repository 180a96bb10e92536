// Names of files between the bytes that the system has and the texts that Qt has.
#ifndef NAMECODEC_H
#define NAMECODEC_H

#include <QByteArray>
#include <QString>
#include <QStringList>

class QTextCodec;

// Makes Qt take names of files, and the arguments of the command line, for UTF-8 in every locale, and
// keep each byte that isn't UTF-8: it becomes the code unit U+DC00 + byte, and that byte again when the
// name is encoded. So any name that comes in leads back to the very file. Call this before an
// application object is made.
void keepBytesOfNames();

// Does the same for names of files as long as the object lives, and leaves the locale as it is: for a
// library in a process that isn't its own. One object at a time.
class KeptNames
{
public:
    KeptNames();
    ~KeptNames();

private:
    Q_DISABLE_COPY(KeptNames)

    QTextCodec *before;
};

// Returns the names of the files that ms_path_of finds. A name under which it finds none stays as it is.
QStringList namesOfFiles(const QStringList &names);

// Returns the name for messages and documents, with U+FFFD for each byte that was kept.
QString shownName(const QString &name);

// Returns the text in the coding of the terminal, which is the locale's. A character that the coding
// lacks becomes a question mark.
QByteArray terminalBytes(const QString &text);

#endif // NAMECODEC_H
