// JSON written as it comes, without a document in memory. Every number reads back to the same bits.
#ifndef JSONWRITER_H
#define JSONWRITER_H

#include "textoutput.h"

#include <QString>

// The caller puts the parts in their order; the writer doesn't check that they make up right JSON.
class JsonWriter : public TextOutput
{
public:
    using TextOutput::TextOutput;

    void string(const QString &text);
    void real(double value); // NaN, which JSON lacks, becomes null, an infinity 1e999

    // Writes `count` values in brackets, with commas between them, each by a call of `write`.
    template <class Value, class Write> void array(const Value *values, int count, Write write);
};

template <class Value, class Write> void JsonWriter::array(const Value *values, int count, Write write)
{
    put('[');
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            put(',');
        write(values[i]);
    }
    put(']');
}

#endif // JSONWRITER_H
