// Numbers and texts of Python, as a file that is written takes them.
#ifndef GIVENVALUES_H
#define GIVENVALUES_H

#include "msfile.h"
#include "msspectrum.h"

#include <pybind11/numpy.h>

#include <QByteArray>
#include <QString>

#include <optional>

namespace py = pybind11;

// Returns the whole number that 32 bits hold, if it is one.
std::optional<qint32> wholeNumber(const py::handle &value);

// Stores a number in the record's field of that type. Returns false where it isn't one that the type
// holds and a reader would take for one.
bool storeNumber(const py::handle &value, qint32 type, std::size_t field, void *record);

// Returns the variable of that name; null for none.
const MsVariableRow *rowOf(const MsTable<MsVariableRow> &table, const QByteArray &name);

// Returns the text in UTF-8. Throws WriteError for one that would come back in another form.
QByteArray bytesOf(const py::handle &text);

// Returns the text as the variable has it, if that holds it.
std::optional<QByteArray> latin1Of(const py::handle &text, const MsVariableRow &row);

// Returns the object as text for messages.
QString shown(const py::handle &object);

// Returns why the variable doesn't take the value, as the rest of a sentence.
QString refusal(const MsVariableRow &row, const py::handle &value);

template <class Number> using Numbers = py::array_t<Number, py::array::c_style | py::array::forcecast>;

bool areNumbers(const py::array &array);

// Whether double has each of the whole numbers: from 2^53 it rounds. Others are as good as double has
// them.
bool areExact(const py::array &array);

// Masses or intensities as the file has them.
class Vector
{
public:
    Vector(const py::array &numbers, bool asFloat);

    // The first number; null for none.
    void *data() const;

    // Whether a reader would take each number for one.
    bool areData() const;

    double sum() const;

    // The lowest and the highest number, where there are any.
    std::optional<MsInterval> range() const;

private:
    template <class Use> auto with(const Use &use) const;

    py::array array;
    bool isFloat;
};

#endif // GIVENVALUES_H
