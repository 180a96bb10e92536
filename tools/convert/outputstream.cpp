#include "outputstream.h"

#include <algorithm>
#include <new>

namespace {

constexpr int gzipWindow = 15 + 16; // the largest window, and gzip's header

} // namespace

OutputBuffer::OutputBuffer(OutputFile *file, Packing packing)
    : file_(file), bytes(bufferSize), isPacking(packing == Packing::Gzip)
{
    if (isPacking) {
        packed.resize(bufferSize);
        constexpr int usualMemory = 8;
        if (deflateInit2(&packer, Z_DEFAULT_COMPRESSION, Z_DEFLATED, gzipWindow, usualMemory,
                         Z_DEFAULT_STRATEGY)
            != Z_OK)
            throw std::bad_alloc(); // the only reason
    }
    setp(bytes.data(), bytes.data() + bytes.size());
}

OutputBuffer::~OutputBuffer()
{
    if (isPacking)
        deflateEnd(&packer);
}

bool OutputBuffer::drain(int flush)
{
    const auto count = std::size_t(pptr() - pbase());
    drained += qint64(count);
    setp(bytes.data(), bytes.data() + bytes.size());
    if (!isPacking)
        return file_->write(bytes.data(), count);
    packer.next_in = reinterpret_cast<Bytef *>(bytes.data());
    packer.avail_in = uInt(count);
    do {
        packer.next_out = reinterpret_cast<Bytef *>(packed.data());
        packer.avail_out = uInt(packed.size());
        deflate(&packer, flush);
        if (!file_->write(packed.data(), packed.size() - packer.avail_out))
            return false;
    } while (packer.avail_out == 0);
    return true;
}

bool OutputBuffer::finish()
{
    return drain(Z_FINISH) && !file_->hasFailed();
}

OutputBuffer::int_type OutputBuffer::overflow(int_type character)
{
    if (!drain(Z_NO_FLUSH))
        return traits_type::eof();
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        sputc(traits_type::to_char_type(character));
    return traits_type::not_eof(character);
}

OutputBuffer::pos_type OutputBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                             std::ios_base::openmode)
{
    const bool isQuestion = offset == 0 && from == std::ios_base::cur;
    return isQuestion ? pos_type(drained + (pptr() - pbase())) : pos_type(off_type(-1));
}
