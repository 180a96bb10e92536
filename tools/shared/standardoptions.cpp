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

StandardOptions::StandardOptions(QCommandLineParser *parser, const QStringList &lists)
    : lists_(lists),
      help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")),
      version({QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version."))
{
    parser->addOptions({help, version});
}

std::optional<int> StandardOptions::parse(const QStringList &arguments, QCommandLineParser *parser) const
{
    if (!parser->parse(arguments))
        return refuse(parser->errorText());
    if (answer(*parser))
        return flushOutput() ? Success : Failure;
    for (const QString &name : parser->optionNames()) {
        if (!lists_.contains(name) && parser->values(name).size() > 1)
            return refuse(QStringLiteral("The option %1%2 takes one value, and more are given.")
                              .arg(QLatin1String(name.size() > 1 ? "--" : "-"), name));
    }
    return std::nullopt;
}

// Prints help or version, if the line asks for one of them. Returns whether it did.
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

QString remarkOnTime(double minutes, qint32 scan, qint32 count, double found)
{
    const bool isOutside = (scan == 0 && minutes < found) || (scan == count - 1 && minutes > found);
    const auto text = [](double time) { return QString::number(time, 'f', 3); };
    return isOutside ? QStringLiteral("The run has no scan at %1 min; scan %2, at %3 min, is taken.")
                           .arg(text(minutes), QString::number(scan), text(found))
                     : QString();
}

QString readScanNumber(const QString &text, int *number)
{
    bool isNumber = false;
    *number = text.toInt(&isNumber);
    return isNumber && *number >= 0
        ? QString()
        : QStringLiteral("\"%1\" isn't the number of a scan: they are counted from 0.").arg(text);
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
