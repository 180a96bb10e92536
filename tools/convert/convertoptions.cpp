#include "convertoptions.h"

#include "msmodulation.h"
#include "namecodec.h"
#include "standardoptions.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr int mostJobs = 1024;

// clang-format off
constexpr struct {
    const char *name;
    CsvTable table;
} tables[] = {
    {"trace",  CsvTable::Trace},
    {"scans",  CsvTable::Scans},
    {"points", CsvTable::Points},
    {"matrix", CsvTable::Matrix},
    {"map",    CsvTable::Map},
};
// clang-format on

QString tableNames()
{
    QStringList names;
    for (const auto &table : tables)
        names += QLatin1String(table.name);
    return names.join(QLatin1String(", "));
}

QString description()
{
    return QStringLiteral("Converts runs and libraries of mass spectra: .cdf files to .%1, where .cdf is "
                          "a clean one; .mzML and .mzXML files, packed (.gz) or not, to .cdf. The end of "
                          "a name says which format it is.\n"
                          "Exit code: 0, or 1 where a file can't be converted, or not in full, or 2 for "
                          "wrong usage.")
        .arg(writtenFormats().join(QLatin1String(", .")));
}

bool isWritten(FileFormat format)
{
    return writtenFormats().contains(endOfNames(format).mid(1));
}

struct Options {
    const QCommandLineOption output{
        {"o", "output"}, "The file to make; - for standard output.", "OUTPUT"};
    const QCommandLineOption to{
        "to", QStringLiteral("The format to make: %1.").arg(writtenFormats().join(", ")), "FORMAT"};
    const QCommandLineOption outDir{"out-dir", "The folder of the files to make, with --to.", "DIR", "."};
    const QCommandLineOption jobs{"jobs", "Convert N files at a time.", "N", "1"};
    const QCommandLineOption force = forceOption();
    const QCommandLineOption quiet{"quiet", "Show errors only."};
    const QCommandLineOption verbose{"verbose", "Show the toolkit's messages about the files, too."};
    const QCommandLineOption strict{
        "strict", "End with status 1 for a warning, too, not only where something is lost."};
    const QCommandLineOption noCompression{"no-compression", "mzML: leave the numbers uncompressed."};
    const QCommandLineOption inMinutes{"minutes",
                                       "mzML: write times in minutes, for readers that ignore units."};
    const QCommandLineOption csv{"csv", QStringLiteral("CSV: the table to make: %1.").arg(tableNames()),
                                 "TABLE", tables[0].name};
    const QCommandLineOption masses{"masses", "CSV trace: a column for each of these masses.", "M,M,..."};
    const QCommandLineOption bin{
        "bin", "CSV matrix: columns of that many mass units, in place of unit masses.", "WIDTH"};
    const QCommandLineOption delimiter{"delimiter", "CSV: what stands between columns; tab for a tab.",
                                       "CHARACTER", ","};
    const QCommandLineOption modulation{
        "modulation", "The length of a modulation in seconds, for the CSV map and for mzML.", "SECONDS"};
    const QCommandLineOption scan{"scan", "MSP: take scan N of a run, counted from 0.", "N"};
    const QCommandLineOption at{"at", "MSP: take the scan at that time.", "MINUTES"};
    const QCommandLineOption sum{"sum", "MSP: take the sum of the scans of a time range in minutes.",
                                 "FROM-TO"};
    const QCommandLineOption msLevel{"ms-level", "From mzML: take the spectra of this MS level.", "N"};
    const QCommandLineOption polarity{
        "polarity", "From mzML: take the spectra of this polarity: positive or negative.", "POLARITY"};
    QCommandLineOption part{"part", "Where a worker makes its file.", "FILE"};

    Options() { part.setFlags(QCommandLineOption::HiddenFromHelp); }

    QList<QCommandLineOption> all() const
    {
        return {output,    to,       outDir, jobs, force,     quiet,      verbose, strict, noCompression,
                inMinutes, csv,      masses, bin,  delimiter, modulation, scan,    at,     sum,
                msLevel,   polarity, part};
    }

    // Those that a worker is given as they are.
    QList<QCommandLineOption> passed() const
    {
        return {to,  force,     quiet,      verbose, strict, noCompression, inMinutes, csv,     masses,
                bin, delimiter, modulation, scan,    at,     sum,           msLevel,   polarity};
    }
};

// Reads the values of the options. The first mistake stays.
class Values
{
public:
    Values(const QCommandLineParser &commandLine, const Options &known)
        : parser(commandLine), options(known)
    {
    }

    void read(ConvertOptions *target)
    {
        ConversionOptions &conversion = target->conversion;
        conversion.quiet = parser.isSet(options.quiet);
        conversion.verbose = parser.isSet(options.verbose);
        conversion.strict = parser.isSet(options.strict);
        conversion.isCompressed = !parser.isSet(options.noCompression);
        conversion.inMinutes = parser.isSet(options.inMinutes);
        if (conversion.quiet && conversion.verbose)
            fail("The options --quiet and --verbose exclude each other.");
        if (parser.isSet(options.force))
            target->existing = OutputFile::Existing::Replace;
        target->jobs = int(number(options.jobs, parser.value(options.jobs), 1, mostJobs, true));
        target->part = parser.value(options.part);
        readTable(&conversion);
        readSpectra(&conversion);
        if (parser.isSet(options.modulation))
            conversion.modulation =
                number(options.modulation, parser.value(options.modulation), 0.0, MsLongestModulation);
        if (parser.isSet(options.msLevel))
            conversion.msLevel = int(number(options.msLevel, parser.value(options.msLevel), 1, 20, true));
        if (parser.isSet(options.polarity)) {
            const QString polarity = parser.value(options.polarity);
            conversion.isPositive = polarity == QLatin1String("positive");
            if (!*conversion.isPositive && polarity != QLatin1String("negative"))
                fail("The option --polarity takes positive or negative.");
        }
    }

    QString mistake() const { return mistake_; }

private:
    void fail(const QString &sentence)
    {
        if (mistake_.isNull())
            mistake_ = sentence;
    }

    // Returns the number of a text, from `least` to `most`.
    double number(const QCommandLineOption &option, const QString &text, double least, double most,
                  bool isWhole = false)
    {
        bool isNumber = false;
        const double value = text.toDouble(&isNumber);
        if (isNumber && value >= least && value <= most && (!isWhole || value == std::floor(value)))
            return value;
        fail(QStringLiteral("\"%1\" is no value of the option --%2, which takes a %3 from %4 to %5.")
                 .arg(text, option.names().last(),
                      isWhole ? QStringLiteral("whole number") : QStringLiteral("number"),
                      QString::number(least), QString::number(most, 'g', 10)));
        return least;
    }

    void readTable(ConversionOptions *conversion)
    {
        const QString name = parser.value(options.csv);
        const auto table = std::find_if(std::begin(tables), std::end(tables), [&name](const auto &row) {
            return name == QLatin1String(row.name);
        });
        if (table == std::end(tables))
            return fail(QStringLiteral("There is no CSV table \"%1\": the tables are %2.")
                            .arg(name, tableNames()));
        conversion->table = table->table;
        if (parser.isSet(options.masses)) {
            for (const QString &mass : parser.value(options.masses).split(QLatin1Char(',')))
                conversion->masses.push_back(number(options.masses, mass, 0.0, 1e6));
        }
        if (parser.isSet(options.bin))
            conversion->binWidth = number(options.bin, parser.value(options.bin), 1e-4, 1e4);
        const QString delimiter = parser.value(options.delimiter);
        const bool isTab = delimiter == QLatin1String("tab") || delimiter == QLatin1String("\\t");
        if (isTab)
            conversion->delimiter = '\t';
        else if (delimiter.size() == 1 && (QStringLiteral(",;:| \t").contains(delimiter)))
            conversion->delimiter = delimiter[0].toLatin1();
        else
            fail("The option --delimiter takes a comma, semicolon, colon, bar, blank or tab.");
    }

    void readSpectra(ConversionOptions *conversion)
    {
        constexpr double most = 1e9;
        for (const QString &text : parser.values(options.scan))
            conversion->scans.push_back(int(number(options.scan, text, 0, most, true)));
        for (const QString &text : parser.values(options.at))
            conversion->minutes.push_back(number(options.at, text, 0, most));
        for (const QString &text : parser.values(options.sum)) {
            const QStringList ends = text.split(QLatin1Char('-'));
            if (ends.size() != 2)
                return fail(QStringLiteral("\"%1\" is no time range such as 3.5-3.7.").arg(text));
            const double from = number(options.sum, ends[0], 0, most);
            const double to = number(options.sum, ends[1], 0, most);
            if (to < from)
                fail(QStringLiteral("The time range \"%1\" ends before it begins.").arg(text));
            conversion->sums.push_back({from, to});
        }
    }

    const QCommandLineParser &parser;
    const Options &options;
    QString mistake_;
};

// Returns the sentence that says why the outputs can't be named, or a null text.
QString nameOutputs(const QStringList &inputs, const QCommandLineParser &parser, const Options &options,
                    std::vector<ConversionPair> *pairs)
{
    if (inputs.isEmpty())
        return QStringLiteral("No file is named.");
    FileFormat format = FileFormat::Unknown;
    if (parser.isSet(options.to)) {
        format = formatCalled(parser.value(options.to));
        if (!isWritten(format))
            return QStringLiteral("The option --to takes one of %1.").arg(writtenFormats().join(", "));
    }
    if (!parser.isSet(options.output)) {
        if (format == FileFormat::Unknown)
            return QStringLiteral(
                "Either -o and the file to make or --to and a format have to be given.");
        const QDir folder(parser.value(options.outDir));
        for (const QString &input : inputs)
            pairs->push_back({input, folder.filePath(baseName(input) + endOfNames(format)), format});
        return QString();
    }
    const QString output = parser.value(options.output);
    if (inputs.size() > 1)
        return QStringLiteral(
            "With -o, one file is converted. For several, --to and --out-dir are there.");
    if (output.isEmpty())
        return QStringLiteral("The file name after -o is empty.");
    if (parser.isSet(options.outDir))
        return QStringLiteral("The options -o and --out-dir exclude each other.");
    const FileFormat named = formatOfName(output);
    if (format == FileFormat::Unknown)
        format = named;
    else if (named != FileFormat::Unknown && named != format)
        return QStringLiteral("The name \"%1\" is that of another format than the one after --to.")
            .arg(output);
    if (!isWritten(format))
        return QStringLiteral(
                   "The end of the name \"%1\" is none of %2. The option --to can name the format.")
            .arg(output, QLatin1Char('.') + writtenFormats().join(", ."));
    pairs->push_back({inputs[0], output, format});
    return QString();
}

// Returns the sentence that says which option has no effect on what is made, or a null text. All outputs
// are of one format.
QString idleOption(const QCommandLineParser &parser, const Options &options, const ConvertOptions &target)
{
    const FileFormat made = target.pairs.front().format;
    const bool isMzMl = made == FileFormat::MzMl || made == FileFormat::MzMlGz;
    const bool isCsv = made == FileFormat::Csv;
    const bool isMsp = made == FileFormat::Msp;
    const auto isTable = [&](CsvTable table) { return isCsv && target.conversion.table == table; };
    const bool isFromMzMl =
        std::any_of(target.pairs.begin(), target.pairs.end(),
                    [](const ConversionPair &pair) { return isMzMlOrMzXml(formatOfName(pair.input)); });
    // clang-format off
    const struct {
        const QCommandLineOption &option;
        bool isOfUse;
        const char *with;
    } rows[] = {
        {options.noCompression, isMzMl,                             "mzML"},
        {options.inMinutes,     isMzMl,                             "mzML"},
        {options.csv,           isCsv,                              "CSV"},
        {options.delimiter,     isCsv,                              "CSV"},
        {options.masses,        isTable(CsvTable::Trace),           "the CSV table trace"},
        {options.bin,           isTable(CsvTable::Matrix),          "the CSV table matrix"},
        {options.modulation,    isMzMl || isTable(CsvTable::Map),   "mzML and the CSV table map"},
        {options.scan,          isMsp,                              "MSP"},
        {options.at,            isMsp,                              "MSP"},
        {options.sum,           isMsp,                              "MSP"},
        {options.msLevel,       isFromMzMl,                         "inputs that are mzML or mzXML"},
        {options.polarity,      isFromMzMl,                         "inputs that are mzML or mzXML"},
    };
    // clang-format on
    for (const auto &row : rows) {
        if (parser.isSet(row.option) && !row.isOfUse)
            return QStringLiteral("The option --%1 goes with %2 only.")
                .arg(row.option.names().last(), QLatin1String(row.with));
    }
    if (isTable(CsvTable::Map) && target.conversion.modulation == 0.0)
        return QStringLiteral("With --modulation 0, a run isn't modulated, so there is no map of it.");
    return QString();
}

// Returns the sentence that says why an output mustn't be written, or a null text.
QString objectionTo(const ConvertOptions &options, const QStringList &inputs)
{
    QHash<QString, QString> inputOfPlace;
    for (const ConversionPair &pair : options.pairs) {
        const OutputFile output(pair.output, options.existing);
        const QString objection = output.objection(
            inputs,
            pair.format == FileFormat::Cdf ? OutputFile::Order::Any : OutputFile::Order::FrontToBack);
        if (!objection.isNull())
            return objection;
        if (output.isDirect())
            continue;
        const QFileInfo place(output.place());
        const QString key = QDir(place.path()).canonicalPath() + QLatin1Char('/') + place.fileName();
        if (inputOfPlace.contains(key))
            return QStringLiteral("The files \"%1\" and \"%2\" would both become \"%3\".")
                .arg(inputOfPlace.value(key), pair.input, pair.output);
        inputOfPlace.insert(key, pair.input);
    }
    return QString();
}

} // namespace

std::optional<int> parseCommandLine(const QStringList &arguments, ConvertOptions *target)
{
    const Options options;
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    parser.addOptions(options.all());
    const StandardOptions standard(&parser, {"scan", "at", "sum"});
    parser.addPositionalArgument(QStringLiteral("INPUT"), QStringLiteral("A file to convert."),
                                 QStringLiteral("INPUT..."));
    if (const std::optional<int> code = standard.parse(arguments, &parser))
        return code;

    Values values(parser, options);
    values.read(target);
    if (!values.mistake().isNull())
        return refuse(values.mistake());
    const QStringList inputs = namesOfFiles(parser.positionalArguments());
    QString mistake = nameOutputs(inputs, parser, options, &target->pairs);
    if (mistake.isNull() && !parser.isSet(options.part)) // a worker has one file and the options of all
        mistake = idleOption(parser, options, *target);
    if (!mistake.isNull())
        return refuse(mistake);
    const QString objection = objectionTo(*target, inputs);
    if (!objection.isNull())
        return refuseOutput(objection);
    for (const QCommandLineOption &option : options.passed()) {
        const QString name = QStringLiteral("--") + option.names().last();
        if (parser.isSet(option) && option.valueName().isEmpty())
            target->passedOptions += name;
        else if (parser.isSet(option))
            for (const QString &value : parser.values(option))
                target->passedOptions += name + QLatin1Char('=') + value;
    }
    return std::nullopt;
}
