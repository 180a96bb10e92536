// The floor of writing mzML: how long the library's own writer takes for spectra that are in memory.
//
//     bench_mzml INPUT.mzML OUTPUT.mzML none|zlib
//
// Prints seconds of the processor, of all threads, without the reading.

#include <cstdio>
#include <ctime>
#include <exception>
#include <string>

#include <boost/make_shared.hpp>
#include <pwiz/data/msdata/MSDataFile.hpp>

using namespace pwiz::msdata;

int main(int argc, char **argv)
{
    if (argc != 4)
        return 2;
    try {
        MSDataFile run(argv[1]);
        const auto spectra = boost::make_shared<SpectrumListSimple>();
        for (std::size_t i = 0; i < run.run.spectrumListPtr->size(); ++i)
            spectra->spectra.push_back(run.run.spectrumListPtr->spectrum(i, true));
        spectra->dp = run.dataProcessingPtrs.at(0);
        run.run.spectrumListPtr = spectra;
        MSDataFile::WriteConfig config;
        config.binaryDataEncoderConfig.precision = BinaryDataEncoder::Precision_32;
        if (std::string(argv[3]) == "zlib")
            config.binaryDataEncoderConfig.compression = BinaryDataEncoder::Compression_Zlib;
        const std::clock_t start = std::clock();
        MSDataFile::write(run, argv[2], config);
        std::printf("%.4f\n", double(std::clock() - start) / CLOCKS_PER_SEC);
    } catch (const std::exception &reason) {
        std::fprintf(stderr, "%s\n", reason.what());
        return 1;
    }
}
