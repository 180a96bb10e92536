#include "fileconversion.h"

#include "interruption.h"
#include "messagelist.h"
#include "messageredirection.h"
#include "msdoubts.h"
#include "msfile.h"
#include "msinput.h"
#include "mzmlreader.h"
#include "mzmlwriter.h"
#include "runtocdf.h"
#include "runtocsv.h"
#include "runtomsp.h"
#include "terminaltext.h"

#include <QFile>

#include <new>

namespace {

class FileConversion
{
public:
    FileConversion(const ConversionPair &files, const ConvertOptions &commandLine)
        : pair(files), options(commandLine), output(files.output, commandLine.existing),
          messages(files.input), progress(commandLine.conversion.quiet ? ProgressBar::Mode::Hidden
                                                                       : ProgressBar::Mode::OnTerminal)
    {
        if (!options.part.isEmpty())
            output.useTemporary(QFile::encodeName(options.part));
    }

    bool run()
    {
        const MessageRedirection collection(
            [this](MessageList::Level level, const QString &text) { messages.add(level, text); });
        bool isWritten = false;
        try {
            isWritten = convert() && output.commit();
        } catch (const std::bad_alloc &) {
            log.fail(QStringLiteral("there isn't enough memory"));
        }
        progress.clear();
        return judge(isWritten);
    }

private:
    bool convert()
    {
        const QString obstacle = whyUnreadable(pair.input);
        if (!obstacle.isNull()) {
            sentence = obstacle;
            return false;
        }
        const bool isMzMl = isMzMlOrMzXml(formatOfName(pair.input));
        if (isMzMl && pair.format != FileFormat::Cdf)
            return log.fail(QStringLiteral("such files become .cdf files, which become all the others"));
        if (isMzMl)
            return output.open()
                && convertToCdf(pair.input, output.path(), options.conversion, &progress, &log)
                && judgeMade();

        const MsRun source(pair.input);
        if (!source.isOpen()) {
            sentence = source.error();
            return false;
        }
        const bool isWritten = output.open() && writeRun(source);
        const qint64 points = source.positionCount();
        if (source.kind() == MsRun::Kind::Trace && points > source.size())
            log.lose(QStringLiteral("It has no masses, so its %1 points are left out, and the totals of "
                                    "the scans are taken.")
                         .arg(points));
        takeDoubts(source.doubts());
        return isWritten;
    }

    // Takes what a reader of the run that was made will be told of it: mzML may say anything.
    bool judgeMade()
    {
        const MsFile made(output.path().constData());
        const MsGlobals globals = made.globals(); // which doubts are judged by
        ms_read_other_scans(made.id());
        takeDoubts(ms_list_doubts(made.id(), pair.output));
        return true;
    }

    void takeDoubts(const QList<MsDoubt> &doubts)
    {
        for (const MsDoubt &doubt : doubts) {
            messages.drop(doubt.text); // which is said here
            doubt.isLoss ? log.lose(doubt.text) : log.warn(doubt.text);
        }
        messages.dropCutOff(); // a doubt says it
    }

    bool writeRun(const MsRun &source)
    {
        const ConversionOptions &wanted = options.conversion;
        switch (pair.format) {
        case FileFormat::MzMl:
            return writeMzMl(source, &output, Packing::Plain, wanted, &progress, &log);
        case FileFormat::MzMlGz:
            return writeMzMl(source, &output, Packing::Gzip, wanted, &progress, &log);
        case FileFormat::Csv:
            return writeCsv(source, &output, wanted, &progress, &log);
        case FileFormat::Msp:
            return writeMsp(source, &output, wanted, &progress, &log);
        case FileFormat::Cdf:
            return writeCdf(source, output.path(), &progress, &log);
        case FileFormat::MzXml: // is only read
        case FileFormat::Unknown:
            break;
        }
        return false;
    }

    void say(const QString &text) const
    {
        report(text.contains(QLatin1Char('"') + pair.input + QLatin1Char('"'))
                   ? text
                   : QStringLiteral("\"%1\": %2").arg(pair.input, text));
    }

    // Says what came of it, and returns whether that will do.
    bool judge(bool isWritten)
    {
        const ConversionOptions &wanted = options.conversion;
        if (!isWritten && output.hasFailed())
            sentence = output.errorText();
        else if (!isWritten && sentence.isNull() && (isInterrupted() || !log.failure().isNull()))
            sentence = whyNotConverted(pair.input, log.failure());
        if (isWritten || sentence.isNull()) {
            for (const QString &text : log.losses())
                say(text);
            for (const QString &text : log.notes()) {
                if (!wanted.quiet)
                    say(text);
            }
            for (const QString &text : log.warnings()) {
                if (!wanted.quiet || wanted.strict)
                    say(text);
            }
        }
        if (wanted.verbose)
            messages.reportAll(MessageList::Level::Debug);
        else if (!isWritten && sentence.isNull())
            messages.reportAll(MessageList::Level::Error);
        if (!isWritten) {
            if (!sentence.isNull())
                report(sentence);
            return false;
        }
        if (!log.losses().isEmpty()) {
            report(QStringLiteral("The file \"%1\" was not converted in full.").arg(pair.input));
            return false;
        }
        const bool isStrictlyBad = wanted.strict && !log.warnings().isEmpty();
        if (isStrictlyBad)
            report(QStringLiteral("The file \"%1\" has warnings, and the option --strict is set.")
                       .arg(pair.input));
        return !isStrictlyBad;
    }

    const ConversionPair &pair;
    const ConvertOptions &options;
    OutputFile output;
    MessageList messages;
    ProgressBar progress;
    ConversionLog log;
    QString sentence; // why there is no output
};

} // namespace

QString whyNotConverted(const QString &input, const QString &reason)
{
    return withFullStop(QStringLiteral("The file \"%1\" can't be converted: %2")
                            .arg(input, isInterrupted() ? QStringLiteral("it was interrupted") : reason));
}

bool convertFile(const ConversionPair &pair, const ConvertOptions &options)
{
    FileConversion conversion(pair, options);
    return conversion.run();
}
