#include "standardoptions.h"

#include "terminaltext.h"

#include <QCommandLineParser>

#include <cstdio>

StandardOptions::StandardOptions(QCommandLineParser *parser)
    : help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")),
      version({QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version."))
{
    parser->addOptions({help, version});
}

bool StandardOptions::answer(const QCommandLineParser &parser) const
{
    if (parser.isSet(help)) {
        std::fputs(parser.helpText().toLocal8Bit().constData(), stdout);
        return true;
    }
    if (parser.isSet(version)) {
        std::fputs(AIA_PROGRAM " " AIA_VERSION "\n", stdout);
        return true;
    }
    return false;
}

int refuse(const QString &why)
{
    report(why);
    report(QStringLiteral("--help shows how it is used."));
    return WrongUsage;
}
