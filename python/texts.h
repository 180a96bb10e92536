// Texts, names of files and classes between C++ and Python.
#ifndef TEXTS_H
#define TEXTS_H

#include "namecodec.h"

#include <pybind11/pybind11.h>

#include <QFile>
#include <QString>

namespace py = pybind11;

// Returns the text as a str. A byte of a file's name that isn't UTF-8 is the same lone surrogate in both.
inline py::str pythonText(const QString &text)
{
    int order = 0; // of this machine, and a mark at the beginning is text
    const QChar *units = text.constData();
    constexpr int little = -1;
    constexpr int big = 1;
    order = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? little : big;
    PyObject *object = PyUnicode_DecodeUTF16(reinterpret_cast<const char *>(units),
                                             2 * Py_ssize_t(text.size()), "surrogatepass", &order);
    if (!object)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(object);
}

// The same for a text that may be null, which is None.
inline py::object pythonTextOrNone(const QString &text)
{
    return text.isNull() ? py::object(py::none()) : py::object(pythonText(text));
}

// Returns the name of the file that Python knows by that path: a str, bytes, or os.PathLike. It leads
// back to the file while an object KeptNames lives. Throws ValueError for one with a NUL, where the
// system would take the beginning for the name.
inline QString fileName(const py::object &path)
{
    const py::bytes bytes = py::module_::import("os").attr("fsencode")(path);
    const QByteArray name = QByteArray::fromStdString(std::string(bytes));
    if (name.contains('\0'))
        throw py::value_error("The name of a file can't have a NUL.");
    return QFile::decodeName(name);
}

// Leaves it to C++ to make objects of a class: Python would make some that have no content.
inline void forbidNew(const py::handle &type)
{
    reinterpret_cast<PyTypeObject *>(type.ptr())->tp_new = nullptr;
}

#endif // TEXTS_H
