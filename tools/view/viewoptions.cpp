#include "viewoptions.h"

#include "msmodulation.h"
#include "namecodec.h"
#include "plotimage.h"
#include "standardoptions.h"

#include <QCommandLineParser>

#include <cmath>

namespace {

constexpr int leastSide = 100;
constexpr int mostSide = 10000;

// Reads a size such as 1200x600.
bool readSize(const QString &text, ImageRequest *image)
{
    const QStringList sides = text.split(QLatin1Char('x'));
    bool isWidth = false;
    bool isHeight = false;
    image->width = sides.value(0).toInt(&isWidth);
    image->height = sides.value(1).toInt(&isHeight);
    const auto fits = [](int side) { return side >= leastSide && side <= mostSide; };
    return sides.size() == 2 && isWidth && isHeight && fits(image->width) && fits(image->height);
}

} // namespace

ViewCommand parseViewCommand(const QStringList &arguments)
{
    const QCommandLineOption imageOption(
        QStringLiteral("image"),
        QStringLiteral("Draw the run to OUT (.png, .pdf or .svg) and show no window."),
        QStringLiteral("OUT"));
    const QCommandLineOption trace(QStringLiteral("trace"),
                                   QStringLiteral("Draw the trace; so without any of these."));
    const QCommandLineOption map(QStringLiteral("map"), QStringLiteral("Draw the map of a GCxGC run."));
    const QCommandLineOption gcxgc(
        QStringLiteral("gcxgc"),
        QStringLiteral("Take LENGTH seconds for the modulation; else it is guessed from the trace."),
        QStringLiteral("LENGTH"));
    const QCommandLineOption scan(QStringLiteral("scan"),
                                  QStringLiteral("Draw the spectrum of scan N, counted from 0."),
                                  QStringLiteral("N"));
    const QCommandLineOption at(QStringLiteral("at"), QStringLiteral("Draw the spectrum at MIN minutes."),
                                QStringLiteral("MIN"));
    const QCommandLineOption size(
        QStringLiteral("size"),
        QStringLiteral("Size of the image in pixels, such as 1200x600, which it is else."),
        QStringLiteral("WIDTHxHEIGHT"));
    const QCommandLineOption force = forceOption();
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Shows runs and libraries of AIA MS files in a window. Exit code: 0, or 1 where an "
        "image can't be drawn, or not in full, or 2 for wrong usage."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Files to show, each in a tab."),
                                 QStringLiteral("[FILE...]"));
    parser.addOptions({gcxgc, imageOption, trace, map, scan, at, size, force});
    const StandardOptions standard(&parser);
    ViewCommand command;
    command.exitStatus = standard.parse(arguments, &parser);
    if (command.exitStatus)
        return command;
    const auto refused = [&command](const QString &why) {
        command.exitStatus = refuse(why);
        return command;
    };
    bool isNumber = true;
    if (parser.isSet(gcxgc)) {
        command.modulation = parser.value(gcxgc).toDouble(&isNumber);
        constexpr double shortest = 0.001; // which the map's field can hold
        if (!isNumber || !(command.modulation >= shortest && command.modulation <= MsLongestModulation))
            return refused(
                QStringLiteral("\"%1\" isn't a modulation length: a number from 0.001 to 100 is needed.")
                    .arg(parser.value(gcxgc)));
    }
    command.files = namesOfFiles(parser.positionalArguments());
    const int kinds = parser.isSet(trace) + parser.isSet(map) + parser.isSet(scan) + parser.isSet(at);
    if (!parser.isSet(imageOption)) {
        for (const QCommandLineOption &option : {trace, map, scan, at, size, force}) {
            if (parser.isSet(option))
                return refused(
                    QStringLiteral("--%1 goes with --image only.").arg(option.names().constFirst()));
        }
        return command;
    }

    ImageRequest image;
    image.output = parser.value(imageOption);
    if (!isImageName(image.output))
        return refused(QStringLiteral("The name of the image \"%1\" has to end in .png, .pdf or .svg.")
                           .arg(image.output));
    if (command.files.size() != 1)
        return refused(QStringLiteral("The option --image takes one file."));
    if (kinds > 1)
        return refused(QStringLiteral("Only one of --trace, --map, --scan and --at can be drawn."));
    if (parser.isSet(size) && !readSize(parser.value(size), &image))
        return refused(
            QStringLiteral("\"%1\" isn't a size: two numbers from %2 to %3 are needed, such as 1200x600.")
                .arg(parser.value(size))
                .arg(leastSide)
                .arg(mostSide));
    if (parser.isSet(map))
        image.what = ImageRequest::What::Map;
    if (parser.isSet(scan)) {
        image.what = ImageRequest::What::Scan;
        const QString mistake = readScanNumber(parser.value(scan), &image.scan);
        if (!mistake.isNull())
            return refused(mistake);
    }
    if (parser.isSet(at)) {
        image.what = ImageRequest::What::Time;
        image.minutes = parser.value(at).toDouble(&isNumber);
        if (!isNumber || !std::isfinite(image.minutes))
            return refused(QStringLiteral("\"%1\" isn't a time in minutes.").arg(parser.value(at)));
    }
    if (parser.isSet(force))
        image.existing = OutputFile::Existing::Replace;
    command.image = image;
    return command;
}
