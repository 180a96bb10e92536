#include "errors.h"

#include "texts.h"

namespace {

[[noreturn]] void throwNamed(const char *name, const QString &sentence)
{
    const py::object type = py::module_::import("aiams.errors").attr(name);
    PyErr_SetObject(type.ptr(), pythonText(sentence).ptr());
    throw py::error_already_set();
}

} // namespace

void throwReadError(const QString &sentence)
{
    throwNamed("ReadError", sentence);
}

void throwWriteError(const QString &sentence)
{
    throwNamed("WriteError", sentence);
}

void throwClosedError(const QString &sentence)
{
    throwNamed("ClosedError", sentence);
}
