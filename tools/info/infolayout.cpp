#include "infolayout.h"

#include "msfile.h"

#include <QString>
#include <QVariant>

#include <utility>

namespace {

using Kind = InfoNode::Kind;

// Parts of the template without which an import is impossible or incomplete.
struct Need {
    enum class Of { Dimension, Variable } of;
    int slot;
    const char *lack;
};

constexpr Need needs[] = {
    // clang-format off
    {Need::Of::Dimension, MsDim_scan_number,            "dimension scan_number: there are no scans"},
    {Need::Of::Dimension, MsDim_point_number,           "dimension point_number: there are no points"},
    {Need::Of::Variable,  MsVar_scan_index,             "variable scan_index: where a scan begins isn't known"},
    {Need::Of::Variable,  MsVar_point_count,            "variable point_count: how long a scan is isn't known"},
    {Need::Of::Variable,  MsVar_intensity_values,       "variable intensity_values: there are no spectra"},
    {Need::Of::Variable,  MsVar_mass_values,            "variable mass_values: points have no masses"},
    {Need::Of::Variable,  MsVar_total_intensity,        "variable total_intensity: there is no total-ion trace"},
    {Need::Of::Variable,  MsVar_scan_acquisition_time,  "variable scan_acquisition_time: scans have no times"},
    // clang-format on
};

struct NamedSlot {
    int slot;
    const char *name;
};

constexpr NamedSlot countingDimensions[] = {
    {MsDim_scan_number, "scan_number"},
    {MsDim_point_number, "point_number"},
    {MsDim_instrument_number, "instrument_number"},
    {MsDim_group_number, "group_number"},
    {MsDim_group_max_masses, "group_max_masses"},
    {MsDim_error_number, "error_number"},
};

constexpr NamedSlot vectors[] = {
    {MsVar_mass_values, "mass_values"},
    {MsVar_time_values, "time_values"},
    {MsVar_intensity_values, "intensity_values"},
};

QString kindOfFile(int ncid)
{
    int kind = 0;
    nc_inq_format(ncid, &kind);
    switch (kind) {
    case NC_FORMAT_CLASSIC:
        return QStringLiteral("netCDF classic");
    case NC_FORMAT_64BIT_OFFSET:
        return QStringLiteral("netCDF classic with 64-bit offsets");
    case NC_FORMAT_64BIT_DATA:
        return QStringLiteral("netCDF classic with 64-bit data");
    case NC_FORMAT_NETCDF4:
    case NC_FORMAT_NETCDF4_CLASSIC:
        return QStringLiteral("netCDF-4");
    default:
        return QStringLiteral("netCDF of another kind");
    }
}

// Returns the type of a variable. It may be one that isn't a data format of the template.
QString storedType(int ncid, int varid)
{
    nc_type type = NC_NAT;
    nc_inq_vartype(ncid, varid, &type);
    const qint32 format = ms_format_of_nc_type(type, -1);
    if (format != -1)
        return phraseOf(format);
    char name[NC_MAX_NAME + 1] = "";
    if (nc_inq_type(ncid, type, name, nullptr) != NC_NOERR)
        return QStringLiteral("unknown");
    return QString::fromUtf8(name) + QLatin1String(" (no data format of the template)");
}

bool hasDimension(const MsFile &file, int slot)
{
    return file.record()->dimensions[slot].id != -1;
}

bool hasVariable(const MsFile &file, int slot)
{
    return file.record()->variables[slot] != -1;
}

void addTemplate(const MsFile &file, InfoNode *report)
{
    const bool isOurs =
        hasDimension(file, MsDim_scan_number) && hasVariable(file, MsVar_intensity_values);
    int unused = 0;
    const bool isChromatogram =
        !isOurs && nc_inq_attid(file.id(), NC_GLOBAL, "aia_template_revision", &unused) == NC_NOERR;
    report->addValue(QStringLiteral("template"),
                     isOurs               ? QStringLiteral("AIA MS")
                         : isChromatogram ? QStringLiteral("not AIA MS, but AIA for chromatography")
                                          : QStringLiteral("not AIA MS"));

    InfoNode lacks;
    lacks.kind = Kind::List;
    lacks.name = QStringLiteral("lacks");
    for (const Need &need : needs) {
        const bool there =
            need.of == Need::Of::Dimension ? hasDimension(file, need.slot) : hasVariable(file, need.slot);
        if (!there)
            lacks.addValue(QString::number(lacks.children.size()), QString::fromLatin1(need.lack));
    }
    if (!lacks.children.empty())
        report->children.push_back(std::move(lacks));
}

void addDimensions(const MsFile &file, Lacking lacking, InfoNode *report)
{
    InfoNode &section = report->add(Kind::Section, QStringLiteral("dimensions"));
    for (const NamedSlot &dimension : countingDimensions) {
        const bool isThere = hasDimension(file, dimension.slot);
        if (isThere || lacking == Lacking::Listed)
            section.addValue(QString::fromLatin1(dimension.name),
                             isThere ? QVariant(file.record()->dimensions[dimension.slot].size)
                                     : QVariant());
    }
}

void addStoredTypes(const MsFile &file, InfoNode *report)
{
    InfoNode &section = report->add(Kind::Section, QStringLiteral("stored_as"));
    for (const NamedSlot &vector : vectors) {
        if (hasVariable(file, vector.slot))
            section.addValue(QString::fromLatin1(vector.name),
                             storedType(file.id(), file.record()->variables[vector.slot]));
    }
}

} // namespace

void addLayout(const MsFile &file, Lacking lacking, InfoNode *report)
{
    report->addValue(QStringLiteral("kind"), kindOfFile(file.id()));
    addTemplate(file, report);
    addDimensions(file, lacking, report);
    addStoredTypes(file, report);
}
