// How the plugin recognises and opens a file, moves it to a working copy, and closes it.

#include "importaiams.h"

#include "lookprogram.h"
#include "mslook.h"

#include "messageloggerinterface.h"
#include "msfile.h"

#include <utility>

namespace {

// No file where a first look at it goes wrong.
MsFile openAfterLook(const QString &name)
{
    const QByteArray path = ms_path_of(name);
    return ms_look_first(path.constData(), lookProgram()) == 0 ? MsFile(path.constData()) : MsFile();
}

} // namespace

ImportAiaMs::ImportAiaMs() : DVImportParamType(QString())
{
    extensionList.append(QStringLiteral(".cdf"));
    ms_init_global(0, &admin, &sample, &test, &raw);
    typeText = QStringLiteral("AiaMS");
}

ImportAiaMs::~ImportAiaMs()
{
    tellRemainingDoubts();
    releaseRecords();
    ms_close(fileId);
    releaseTotalIon();
}

void ImportAiaMs::releaseRecords()
{
    ms_init_global(1, &admin, &sample, &test, &raw);
    ms_free(std::exchange(admin.error_log, nullptr)); // no row of the tables clears it
}

void ImportAiaMs::releaseTotalIon()
{
    ms_free(std::exchange(ticTimes, nullptr));
    ms_free(std::exchange(ticValues, nullptr));
}

bool ImportAiaMs::canImport(TFileBuffer *buffer, const QString &name, QString &text)
{
    if (!DVImportInterface::canImport(buffer, name, text))
        return false;
    if (!openFile(name))
        return false;
    int dimension = -1;
    return nc_inq_dimid(fileId, "scan_number", &dimension) == NC_NOERR;
}

int ImportAiaMs::importQueryValue()
{
    return 0;
}

int ImportAiaMs::pluginKind()
{
    return 5;
}

bool ImportAiaMs::openFile(const QString &name)
{
    if (fileId != -1)
        return true;

    MsFile file = openAfterLook(name);
    if (!file) {
        MessageLoggerInterface::Debug(QStringLiteral("ms_open_read failed!"), nullptr);
        return false;
    }

    releaseRecords();
    if (ms_read_global(file.id(), &admin, &sample, &test, &raw) == -1) {
        MessageLoggerInterface::Debug(QStringLiteral("ms_read_global failed!"), nullptr);
        releaseRecords();
        return false;
    }
    fileId = file.release();

    for (double *factor : {&raw.mass_scale_factor, &raw.intensity_scale_factor, &raw.time_scale_factor})
        *factor = ms_given(*factor, 1.0);
    raw.intensity_add_offset = ms_given(raw.intensity_add_offset, 0.0);
    fileName = name;
    return true;
}

bool ImportAiaMs::reopenForFile(const QString &name)
{
    if (!matchExtension(name))
        return false;
    tellRemainingDoubts();
    forgetDoubts();
    releaseRecords();
    ms_close(fileId);
    fileId = -1;
    return openFile(name);
}

ImportAiaMs *ImportAiaMs::clone()
{
    tellRemainingDoubts();
    auto *copy = new ImportAiaMs;
    copy->toldDoubts = toldDoubts;
    forgetDoubts();
    copy->copyInterface(this);
    copy->applyToAll = applyToAll;
    copy->fileId = std::exchange(fileId, -1);
    copy->timeDivisor = timeDivisor;

    // The copy takes over the texts with the pointers, so they aren't freed here.
    copy->admin = admin;
    copy->sample = sample;
    copy->test = test;
    copy->raw = raw;
    ms_init_global(0, &admin, &sample, &test, &raw);
    admin.error_log = nullptr;

    copy->modulation = modulation;
    if (!applyToAll)
        modulation = 0;
    return copy;
}
