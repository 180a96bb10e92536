// JSON written as it comes, without a document in memory. Every number reads back to the same bits.
#ifndef JSONWRITER_H
#define JSONWRITER_H

#include <QFile>

#include <cstddef>
#include <vector>

// The caller puts the parts in their order; the writer doesn't check that they make up right JSON.
class JsonWriter
{
public:
    JsonWriter();

    // Opens the file `name` over what it holds, "-" for standard output. Returns false where that fails.
    // A failure stays, here and below: nothing more is written.
    bool open(const QString &name);

    // Writes out what is left in memory and closes the file. Returns false if anything wasn't written.
    bool finish();

    bool hasFailed() const { return failed; }
    QString errorText() const { return error; } // the system's reason for the failure

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
    void fail();

    QFile file;
    std::vector<char> buffer;
    std::size_t used = 0;
    bool failed = false;
    QString error;
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
