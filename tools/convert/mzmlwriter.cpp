#include "mzmlwriter.h"

#include "interruption.h"
#include "mzmldescription.h"
#include "mzmldocument.h"
#include "mzmlspectra.h"
#include "mzmlsurvey.h"
#include "mzmltrace.h"
#include "outputstream.h"
#include "scanwalk.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <cstddef>
#include <map>
#include <new>
#include <vector>

#include <boost/make_shared.hpp>
#include <pwiz/utility/misc/IterationListener.hpp>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

QByteArray checksum(const QString &name)
{
    QFile file(name);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex() : QByteArray();
}

class Listener : public pwiz::util::IterationListener
{
public:
    Listener(const RunSpectra *list, OutputFile *file, ProgressBar *bar)
        : spectra(list), output(file), progress(bar)
    {
    }

    Status update(const UpdateMessage &message) override
    {
        const auto count = int(message.iterationCount);
        progress->show(count / 2 + int(message.iterationIndex / 2), count);
        const bool isVain = isInterrupted() || output->hasFailed()
            || (spectra && (spectra->isExhausted() || spectra->isLacking()));
        return isVain ? Status_Cancel : Status_Ok;
    }

private:
    const RunSpectra *spectra;
    OutputFile *output;
    ProgressBar *progress;
};

class MzMlWriter
{
public:
    MzMlWriter(const MsRun &source, const ConversionOptions &wanted, ProgressBar *bar,
               ConversionLog *messages)
        : run(source), options(wanted), progress(bar), log(messages)
    {
    }

    bool write(OutputFile *output, OutputBuffer::Packing packing)
    {
        if (!surveyRun(run, options, progress, &survey, log))
            return false;
        if (survey.facts.scans.empty())
            return log->fail(whyNoScan(run));
        const QByteArray sha1 = checksum(run.name());
        if (sha1.isEmpty())
            return log->fail(QStringLiteral("it can't be read anew for its checksum"));
        describeRun(run, options, sha1.toStdString(), &survey, &data, log);
        addLists();
        OutputBuffer buffer(output, packing);
        std::ostream stream(&buffer);
        writeDocument(stream, output);
        if (spectra && spectra->hasSorted())
            log->warn(QStringLiteral("The points of some scans are put in the order of their masses."));
        if (spectra && spectra->isExhausted())
            throw std::bad_alloc();
        if (spectra && spectra->isLacking())
            return log->fail(whyScansWent());
        return !isInterrupted() && buffer.finish();
    }

private:
    void addLists()
    {
        const DataProcessingPtr &processing = data.dataProcessingPtrs.front();
        if (run.kind() != MsRun::Kind::Trace) {
            spectra = boost::make_shared<RunSpectra>(run, survey.facts);
            spectra->setDataProcessingPtr(processing);
            data.run.spectrumListPtr = spectra;
        }
        auto trace = boost::make_shared<RunTrace>(survey.facts, &encoding);
        trace->dp = processing;
        data.run.chromatogramListPtr = trace;
    }

    void writeDocument(std::ostream &stream, OutputFile *output)
    {
        encoding.precision = BinaryDataEncoder::Precision_64;
        encoding.compression = options.isCompressed ? BinaryDataEncoder::Compression_Zlib
                                                    : BinaryDataEncoder::Compression_None;
        if (survey.isFloatMasses)
            encoding.precisionOverrides[MS_m_z_array] = BinaryDataEncoder::Precision_32;
        if (survey.isFloatIntensities)
            encoding.precisionOverrides[MS_intensity_array] = BinaryDataEncoder::Precision_32;
        pwiz::util::IterationListenerRegistry listeners;
        const std::size_t period = std::max<std::size_t>(survey.facts.scans.size() / 100, 1);
        listeners.addListener(boost::make_shared<Listener>(spectra.get(), output, progress), period);
        writeMzMlDocument(data, encoding, listeners, stream);
    }

    const MsRun &run;
    const ConversionOptions &options;
    ProgressBar *progress;
    ConversionLog *log;
    MzMlSurvey survey;
    MSData data;
    BinaryDataEncoder::Config encoding;
    boost::shared_ptr<RunSpectra> spectra; // null for a trace
};

} // namespace

bool writeMzMl(const MsRun &run, OutputFile *output, Packing packing, const ConversionOptions &options,
               ProgressBar *progress, ConversionLog *log)
{
    MzMlWriter writer(run, options, progress, log);
    return writer.write(
        output, packing == Packing::Gzip ? OutputBuffer::Packing::Gzip : OutputBuffer::Packing::Plain);
}
