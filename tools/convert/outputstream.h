// An output file as a stream of the standard library, packed or not.
#ifndef OUTPUTSTREAM_H
#define OUTPUTSTREAM_H

#include "outputfile.h"

#include <streambuf>
#include <vector>

#include <zlib.h>

class OutputBuffer : public std::streambuf
{
public:
    enum class Packing { Plain, Gzip };

    // Writes to `file`, which has to be open and to outlive the buffer.
    OutputBuffer(OutputFile *file, Packing packing);
    ~OutputBuffer() override;

    // Writes out what is left in memory. Returns false if anything wasn't written; the file says why.
    bool finish();

protected:
    int_type overflow(int_type character) override;
    // Only tells the position, which counts bytes before they are packed.
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode which) override;
    int sync() override { return 0; } // finish() ends it; packing would suffer from more

private:
    Q_DISABLE_COPY(OutputBuffer)

    bool drain(int flush);

    static constexpr std::size_t bufferSize = 1 << 18;

    OutputFile *file_;
    std::vector<char> bytes;
    std::vector<char> packed;
    z_stream packer = {};
    bool isPacking;
    qint64 drained = 0; // bytes before those in the buffer
};

#endif // OUTPUTSTREAM_H
