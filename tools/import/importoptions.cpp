#include "importoptions.h"

#include "msmodulation.h"
#include "namecodec.h"
#include "standardoptions.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

namespace {

// Returns the sentence that says why the JSON mustn't be written, or a null text.
QString objectionToJson(const ImportOptions &options)
{
    const OutputFile output(options.json, options.existing);
    for (const QString &name : {options.json, output.place()}) {
        if (name.endsWith(QLatin1String(".cdf"), Qt::CaseInsensitive))
            return QStringLiteral("\"%1\" is the name of a data file, so no JSON is written to it.")
                .arg(name);
    }
    return output.objection(options.files);
}

std::optional<float> modulationLength(const QString &text)
{
    bool isNumber = false;
    const double length = text.toDouble(&isNumber);
    if (!isNumber || !(length >= 0.0 && length <= MsLongestModulation))
        return std::nullopt;
    return float(length);
}

CommandLine refused(const QString &why)
{
    return {refuse(why), {}};
}

} // namespace

CommandLine parseCommandLine(const QStringList &arguments)
{
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Write all that is imported to FILE, - for standard "
                                                 "output, as JSON: an object for each file, on a line."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption quiet(QStringLiteral("quiet"), QStringLiteral("Show errors only."));
    const QCommandLineOption verbose(
        QStringLiteral("verbose"),
        QStringLiteral("Show also the running account of the import, which is in French, and the header "
                       "as the host gets it."));
    const QCommandLineOption strict(
        QStringLiteral("strict"),
        QStringLiteral(
            "End with status 1 for a warning about a run, too, not only where something of it is "
            "lost."));
    const QCommandLineOption gcxgc(
        QStringLiteral("gcxgc"),
        QStringLiteral("Import GCxGC runs, with modulations of LENGTH seconds: "
                       "0 to 100, 0 for a plain run. With auto, the length is found from the trace of "
                       "each file, and a file that shows none isn't imported."),
        QStringLiteral("LENGTH"));
    const QCommandLineOption ask(QStringLiteral("ask"),
                                 QStringLiteral("Ask for the parameters of each file in a dialog."));
    const QCommandLineOption force = forceOption();
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Imports .cdf files of the AIA MS template. Exit code: 0, or 1 where a file can't "
                       "be imported, or not "
                       "in full, or 2 for wrong usage."));
    parser.addOptions({json, force, quiet, verbose, strict, gcxgc, ask});
    const StandardOptions standard(&parser);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("A file to import."),
                                 QStringLiteral("FILE..."));

    if (const std::optional<int> code = standard.parse(arguments, &parser))
        return {code, {}};

    ImportOptions options;
    options.files = namesOfFiles(parser.positionalArguments());
    options.json = parser.value(json);
    if (options.json == QLatin1String("/dev/stdout"))
        options.json = QStringLiteral("-");
    if (parser.isSet(force))
        options.existing = OutputFile::Existing::Replace;
    options.quiet = parser.isSet(quiet);
    options.strict = parser.isSet(strict);
    options.verbose = parser.isSet(verbose);
    options.ask = parser.isSet(ask);
    if (options.files.isEmpty())
        return refused(QStringLiteral("No file is named."));
    if (parser.isSet(json) && options.json.isEmpty())
        return refused(QStringLiteral("The file name after --json is empty."));
    const QString objection = options.json.isEmpty() ? QString() : objectionToJson(options);
    if (!objection.isNull())
        return {refuseOutput(objection), {}};
    if (options.quiet && options.verbose)
        return refused(QStringLiteral("The options --quiet and --verbose exclude each other."));
    if (options.ask && parser.isSet(gcxgc))
        return refused(QStringLiteral("The options --ask and --gcxgc exclude each other."));
    options.guessModulation = parser.value(gcxgc) == QLatin1String("auto");
    if (parser.isSet(gcxgc) && !options.guessModulation) {
        options.modulation = modulationLength(parser.value(gcxgc));
        if (!options.modulation)
            return refused(
                QStringLiteral(
                    "\"%1\" isn't a modulation length: a number from 0 to 100 is needed, or auto.")
                    .arg(parser.value(gcxgc)));
    }
    return {std::nullopt, options};
}
