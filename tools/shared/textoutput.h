// Text that goes to a file through a buffer, so that writing a number costs next to nothing.
#ifndef TEXTOUTPUT_H
#define TEXTOUTPUT_H

#include "outputfile.h"

#include <cstddef>
#include <vector>

class TextOutput
{
public:
    // Writes to `output`, which has to be open and to outlive this object. Its failure stays: nothing
    // more is written.
    explicit TextOutput(OutputFile &file) : output(file), buffer(bufferSize) { }

    // Writes out what is left in memory. Returns false if anything wasn't written.
    bool finish();

    bool hasFailed() const { return output.hasFailed(); }

    void put(const char *text); // as it is, up to its NUL
    void put(const char *text, std::size_t count);
    void put(char one);
    void integer(qint64 value);

    // Writes a number in the fewest digits that read back to the same double, with a decimal point in any
    // locale. Very large and small ones have an exponent. NaN is "nan", an infinity "inf".
    void real(double value);

    // Writes a number in plain decimals, never with an exponent. One that is exactly a float has the
    // fewest digits that read back to that float, any other those of the double. Wants a finite number.
    void plainReal(double value);

private:
    static constexpr std::size_t bufferSize = 1 << 20;

    // Makes room for that many characters more, at most a whole buffer. Returns where they belong.
    char *room(std::size_t count);
    void flush();
    template <class... Arguments> void number(std::size_t longest, Arguments... arguments);

    OutputFile &output;
    std::vector<char> buffer;
    std::size_t used = 0;
};

inline void TextOutput::put(char one)
{
    *room(1) = one;
    ++used;
}

inline char *TextOutput::room(std::size_t count)
{
    if (buffer.size() - used < count)
        flush();
    return buffer.data() + used;
}

#endif // TEXTOUTPUT_H
