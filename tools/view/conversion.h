// The whole run to another format, by the program aia-convert beside this one.
#ifndef CONVERSION_H
#define CONVERSION_H

#include <QObject>

class QProcess;

class Conversion : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    // Ends what is under way, which leaves no file then.
    ~Conversion() override;

    // Begins to make the file `output` of `input`. A file that is there is written over.
    void start(const QString &input, const QString &output);

signals:
    // How it goes and how it went, as sentences for the user.
    void said(const QString &sentence);

private:
    void finish(const QString &output, bool isDone);

    QProcess *process_ = nullptr;
};

#endif // CONVERSION_H
