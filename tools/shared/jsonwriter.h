// What an import hands out, as JSON: an object a file, one a line, written as the scans come. Every
// number reads back to the same bits.
#ifndef JSONWRITER_H
#define JSONWRITER_H

#include <QFile>

#include <cstddef>
#include <vector>

class DVHeader;

class JsonWriter
{
public:
    JsonWriter();

    // Opens `name`, "-" for standard output. A failure stays, here and below: nothing more is written.
    bool open(const QString &name);

    void beginFile(const QString &name, const DVHeader &header, const float *table, int tableSize);
    void addScan(double time, double total, int pointCount, const float *abundances,
                 const unsigned short *positions);
    void endFile();

    // Writes out what is left and closes.
    bool finish();

    bool hasFailed() const { return failed; }
    QString errorText() const { return error; }

private:
    void room(std::size_t count);
    void flush();
    void fail();

    void put(const char *text);
    void character(char one) { buffer[used++] = one; } // after room()
    void integer(qint64 value);
    void real(double value);
    void string(const QString &text);
    void latin1(const char *text);
    void headerRecord(const DVHeader &header);

    // Writes the elements with commas between them, each by `write`.
    template <class Number, class Write> void array(const Number *values, int count, Write write);

    QFile file;
    std::vector<char> buffer;
    std::size_t used = 0;
    bool firstScan = true;
    bool failed = false;
    QString error;
};

#endif // JSONWRITER_H
