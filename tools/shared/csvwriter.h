// Tables as text, a row a line, with the quoting that spreadsheets and statistics programs agree on.
#ifndef CSVWRITER_H
#define CSVWRITER_H

#include "textoutput.h"

#include <QString>

class CsvWriter : public TextOutput
{
public:
    // Columns are told apart by `delimiter`, an ASCII character.
    CsvWriter(OutputFile &file, char delimiter) : TextOutput(file), delimiter_(delimiter) { }

    // Write the next cell of the row. A text is UTF-8, in quotes where it has to be. NaN is an empty
    // cell.
    void text(const QString &cell);
    void number(double cell);
    void whole(qint64 cell);

    void endRow();

private:
    void separate();

    const char delimiter_;
    bool inRow = false;
};

#endif // CSVWRITER_H
