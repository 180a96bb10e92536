// The file registry, and what it holds of each open file.

#include "filestate_p.h"

#include <QGlobalStatic>
#include <QHash>

#include <memory>

// The one mutable state of the process. It owns its records. It is null once the process has torn it
// down: a host may destroy its plugin objects, which close their files, after that.
using MsFileRegistry = QHash<qint32, MsFileState *>;
Q_GLOBAL_STATIC(MsFileRegistry, registry)

MsFileState::MsFileState(int id) : MsFileRecord(), data(id)
{
    ncid = id;
    experiment_type = MsCentroidedSpectrum;
    mass_format = MsShortFormat;
    time_format = MsShortFormat;
    intensity_format = MsLongFormat;
    for (MsDimension &dimension : dimensions)
        dimension = {-1, 0};
    for (qint32 &variable : variables)
        variable = -1;
}

void MsFileState::forget()
{
    data = MsFileData(ncid);
    columns = {};
    tally = MsTally();
}

bool ms_can_register()
{
    return registry() != nullptr;
}

MsFileState *ms_file_state(int ncid)
{
    ms_let_failures_return();
    const MsFileRegistry *files = registry();
    return files ? files->value(ncid, nullptr) : nullptr;
}

MsFileRecord *ms_file_record(int ncid)
{
    return ms_file_state(ncid);
}

quint64 ms_missing_bytes(int ncid)
{
    const MsFileState *file = ms_file_state(ncid);
    return file ? file->data.missing_bytes() : 0;
}

int ms_register_file(int ncid)
{
    MsFileRegistry *files = registry();
    if (!files || files->contains(ncid))
        return 0;

    auto file = std::make_unique<MsFileState>(ncid);
    files->insert(ncid, file.get());
    static_cast<void>(file.release());
    return 0;
}

int ms_unregister_file(int ncid)
{
    MsFileRegistry *files = registry();
    const std::unique_ptr<MsFileState> file(files ? files->take(ncid) : nullptr);
    return file ? 0 : -1;
}
