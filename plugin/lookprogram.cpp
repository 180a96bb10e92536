#include "lookprogram.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

// The file that this very code was loaded from.
QString libraryFile()
{
    static const char inside = 0;
#ifdef Q_OS_WIN
    HMODULE library = nullptr;
    wchar_t path[MAX_PATH] = L"";
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS
                           | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t *>(&inside), &library);
    GetModuleFileNameW(library, path, MAX_PATH);
    return QString::fromWCharArray(path);
#else
    Dl_info library = {};
    return dladdr(&inside, &library) ? QFile::decodeName(library.dli_fname) : QString();
#endif
}

} // namespace

QString lookProgram()
{
    return QFileInfo(libraryFile()).absolutePath() + QStringLiteral("/" AIA_LOOK);
}
