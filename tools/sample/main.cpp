// Makes sample files: what an instrument could have measured, the same for the same seed.

#include "fileformat.h"
#include "interruption.h"
#include "outputfile.h"
#include "samplefile.h"
#include "sampleoptions.h"
#include "samplerun.h"
#include "samplespectrum.h"
#include "standardoptions.h"
#include "terminaltext.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QString>

#include <algorithm>
#include <iterator>
#include <new>
#include <optional>

namespace {

struct CommandLine {
    SampleOptions sample;
    QString path;
    OutputFile::Existing existing = OutputFile::Existing::Keep;
};

// clang-format off
constexpr struct {
    const char *name;
    SampleKind kind;
    const char *what;
} kinds[] = {
    {"gcms",    SampleKind::Gcms,    "a GC-MS run, centroided"},
    {"gcxgc",   SampleKind::Gcxgc,   "a GCxGC-MS run, modulated every 4 s, with 100 scans a second"},
    {"tic",     SampleKind::Tic,     "a total ion chromatogram: a time axis and no masses"},
    {"library", SampleKind::Library, "a library of spectra, each with its compound"},
    {"sim",     SampleKind::Sim,     "a run of selected ions in groups, saturated peaks flagged"},
};

constexpr struct {
    const char *name;
    qint32 format;
} formats[] = {
    {"short",  MsShortFormat},
    {"long",   MsLongFormat},
    {"float",  MsFloatFormat},
    {"double", MsDoubleFormat},
};

constexpr struct {
    const char *option;
    qint32 SampleOptions::*field;
} formatOptions[] = {
    {"mass-format",      &SampleOptions::massFormat},
    {"time-format",      &SampleOptions::timeFormat},
    {"intensity-format", &SampleOptions::intensityFormat},
};
// clang-format on

template <class Table> auto findName(const Table &table, const QString &name)
{
    return std::find_if(std::begin(table), std::end(table),
                        [&name](const auto &row) { return name == QLatin1String(row.name); });
}

QString description()
{
    QString text = QStringLiteral("Makes a .cdf file with mass spectra that an instrument could have "
                                  "measured. The same arguments give the same file. KIND is one of\n");
    for (const auto &kind : kinds)
        text +=
            QStringLiteral("  %1 %2\n").arg(QLatin1String(kind.name), -8).arg(QLatin1String(kind.what));
    return text
        + QStringLiteral("Exit code: 0, or 1 where the file can't be written, or 2 for wrong usage.");
}

void addOptions(QCommandLineParser *parser)
{
    parser->setApplicationDescription(description());
    parser->addOptions({
        {QStringLiteral("scans"), QStringLiteral("Number of scans."), QStringLiteral("N")},
        {QStringLiteral("points"),
         QStringLiteral("Points of each scan, or masses of each group of a sim run. Without it, as the "
                        "signal has them."),
         QStringLiteral("N")},
        {QStringLiteral("seed"), QStringLiteral("Seed of the noise and the amounts."),
         QStringLiteral("N"), QStringLiteral("1")},
    });
    for (const auto &row : formatOptions) {
        parser->addOption({QLatin1String(row.option),
                           QStringLiteral("How these numbers are stored: short, long, float or double."),
                           QStringLiteral("FORMAT"), QStringLiteral("float")});
    }
    parser->addOption(forceOption());
    parser->addPositionalArgument(QStringLiteral("kind"), QStringLiteral("What to make."),
                                  QStringLiteral("KIND"));
    parser->addPositionalArgument(QStringLiteral("output"), QStringLiteral("The file to make."),
                                  QStringLiteral("OUTPUT.cdf"));
}

// Returns the number of `option`, from 1 to `limit`, or `fallback` without the option; -1 for any other
// text.
int numberOf(const QCommandLineParser &parser, const char *option, qint64 limit, int fallback)
{
    if (!parser.isSet(QLatin1String(option)))
        return fallback;
    bool isNumber = false;
    const int number = parser.value(QLatin1String(option)).toInt(&isNumber);
    return isNumber && number >= 1 && number <= limit ? number : -1;
}

QString listOfKinds()
{
    QStringList names;
    for (const auto &kind : kinds)
        names += QLatin1String(kind.name);
    return names.join(QLatin1String(", "));
}

// Returns how many points a scan can have at most.
qint64 mostPoints(const SampleOptions &sample)
{
    if (sample.points != 0)
        return sample.points;
    return sample.kind == SampleKind::Tic ? 1 : sampleMassCount;
}

// Reads the counts and formats. Returns the sentence that says what is wrong with them, or a null text.
QString readOptions(const QCommandLineParser &parser, SampleOptions *sample)
{
    const int pointsLimit = sample->kind == SampleKind::Sim ? sampleMassCount : maxPointsPerScan;
    sample->scans = numberOf(parser, "scans", maxSamplePoints, defaultSampleScans(sample->kind));
    if (sample->scans == -1)
        return QStringLiteral("The option --scans takes a number from 1 to %1.").arg(maxSamplePoints);
    sample->points = numberOf(parser, "points", pointsLimit, 0);
    if (sample->points == -1)
        return QStringLiteral("The option --points takes a number from 1 to %1 for such a run.")
            .arg(pointsLimit);
    if (sample->scans * mostPoints(*sample) > maxSamplePoints)
        return QStringLiteral("The scans would have more than %1 points together.").arg(maxSamplePoints);

    bool isNumber = false;
    sample->seed = parser.value(QStringLiteral("seed")).toULongLong(&isNumber);
    if (!isNumber)
        return QStringLiteral("The option --seed takes a number from 0 on.");
    for (const auto &row : formatOptions) {
        const auto format = findName(formats, parser.value(QLatin1String(row.option)));
        if (format == std::end(formats))
            return QStringLiteral("The option --%1 takes short, long, float or double.")
                .arg(QLatin1String(row.option));
        sample->*row.field = format->format;
    }
    return QString();
}

// Returns the exit code where there is nothing to make, else -1.
int parse(const QStringList &arguments, CommandLine *line)
{
    QCommandLineParser parser;
    addOptions(&parser);
    const StandardOptions standard(&parser);
    if (const std::optional<int> code = standard.parse(arguments, &parser))
        return *code;

    const QStringList words = parser.positionalArguments();
    if (words.size() != 2 || words[1].isEmpty())
        return refuse(QStringLiteral("One kind and one file have to be named."));
    const auto kind = findName(kinds, words[0]);
    if (kind == std::end(kinds))
        return refuse(
            QStringLiteral("There is no kind \"%1\": the kinds are %2.").arg(words[0], listOfKinds()));
    line->sample.kind = kind->kind;
    line->path = words[1];
    const FileFormat named = formatOfName(line->path);
    if (named != FileFormat::Cdf && named != FileFormat::Unknown)
        return refuse(
            QStringLiteral("A sample is a .cdf file, and the name \"%1\" is that of another kind. "
                           "The program aia-convert makes others of it.")
                .arg(line->path));
    const QString wrong = readOptions(parser, &line->sample);
    if (!wrong.isNull())
        return refuse(wrong);
    if (parser.isSet(forceOption()))
        line->existing = OutputFile::Existing::Replace;
    const OutputFile output(line->path, line->existing);
    const QString objection = output.objection({}, OutputFile::Order::Any);
    return objection.isNull() ? -1 : refuseOutput(objection);
}

int make(const CommandLine &line)
{
    OutputFile output(line.path, line.existing);
    if (output.open()) {
        try {
            const QString wrong = writeSample(output.path(), line.sample);
            if (!wrong.isNull())
                output.fail(wrong);
        } catch (const std::bad_alloc &) {
            output.fail(QStringLiteral("there isn't enough memory"));
        }
    }
    if (output.commit())
        return Success;
    report(output.errorText());
    return Failure;
}

} // namespace

int main(int argc, char **argv)
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    const QCoreApplication application(argc, argv);
    CommandLine line;
    const int early = parse(QCoreApplication::arguments(), &line);
    if (early != -1)
        return early;
    watchInterruptions();
    return make(line);
}
