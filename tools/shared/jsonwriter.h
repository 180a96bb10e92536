// JSON written as it comes, without a document in memory. Every number reads back to the same bits.
#ifndef JSONWRITER_H
#define JSONWRITER_H

#include "outputfile.h"

#include <QString>

#include <cstddef>
#include <vector>

// The caller puts the parts in their order; the writer doesn't check that they make up right JSON.
class JsonWriter
{
public:
    // Writes to `output`, which has to be open and to outlive the writer. Its failure stays: nothing more
    // is written.
    explicit JsonWriter(OutputFile &file) : output(file), buffer(bufferSize) { }

    // Writes out what is left in memory. Returns false if anything wasn't written.
    bool finish();

    bool hasFailed() const { return output.hasFailed(); }

    void put(const char *text); // punctuation and keys, as they are
    void string(const QString &text);
    void integer(qint64 value);
    void real(double value); // NaN, which JSON lacks, becomes null, an infinity 1e999

    // Writes `count` values in brackets, with commas between them, each by a call of `write`.
    template <class Value, class Write> void array(const Value *values, int count, Write write);

private:
    void character(char one);
    void room(std::size_t count);
    void flush();

    static constexpr std::size_t bufferSize = 1 << 20;

    OutputFile &output;
    std::vector<char> buffer;
    std::size_t used = 0;
};

template <class Value, class Write> void JsonWriter::array(const Value *values, int count, Write write)
{
    put("[");
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            character(',');
        write(values[i]);
    }
    put("]");
}

inline void JsonWriter::character(char one)
{
    room(1);
    buffer[used++] = one;
}

// Makes room for that many characters more, at most a whole buffer.
inline void JsonWriter::room(std::size_t count)
{
    if (buffer.size() - used < count)
        flush();
}

#endif // JSONWRITER_H
