#include "standardoptions.h"

#include "interruption.h"
#include "namecodec.h"
#include "terminaltext.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

void setProgram(const char *name, const char *version)
{
    keepStandardStreams();
    keepBytesOfNames();
    survivePipesAndLimits();
    QCoreApplication::setApplicationName(QLatin1String(name));
    QCoreApplication::setApplicationVersion(QLatin1String(version));
}

StandardOptions::StandardOptions(QCommandLineParser *parser)
    : help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")),
      version({QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version."))
{
    parser->addOptions({help, version});
}

bool StandardOptions::answer(const QCommandLineParser &parser) const
{
    if (parser.isSet(help)) {
        writeBytes(stdout, terminalBytes(parser.helpText()));
        return true;
    }
    if (parser.isSet(version)) {
        writeLine(stdout,
                  QStringLiteral("%1 %2").arg(QCoreApplication::applicationName(),
                                              QCoreApplication::applicationVersion()));
        return true;
    }
    return false;
}

QCommandLineOption forceOption()
{
    return {QStringLiteral("force"),
            QStringLiteral("Write over a file that exists; never over one that is read.")};
}

int refuseOutput(const QString &objection)
{
    report(objection);
    return WrongUsage;
}

int refuse(const QString &why)
{
    report(withFullStop(why));
    report(QStringLiteral("The option --help shows how the program is used."));
    return WrongUsage;
}
