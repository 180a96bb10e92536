#include "mscompound.h"

#include "numbers_p.h"

MsCompound::MsCompound(const MsLibraryRecord &entry)
{
    const auto numberOf = [](qint32 stored) { return ms_is_given(stored) ? stored : -1; };
    casName = textOf(entry.CAS_name);
    name = textOf(entry.entry_name);
    if (name.isNull())
        name = casName;
    for (const char *other :
         {entry.other_name_0, entry.other_name_1, entry.other_name_2, entry.other_name_3})
        otherNames += textOf(other);
    otherNames.removeAll(QString());
    id = textOf(entry.entry_id);
    number = numberOf(entry.entry_number);
    formula = textOf(entry.chemical_formula);
    casNumber = numberOf(entry.CAS_number);
    smiles = textOf(entry.smiles);
    wiswesser = textOf(entry.wiswesser);
    source = textOf(entry.source_data_file_reference);
    molfile = textOf(entry.molfile_reference);
    structure = textOf(entry.other_structure);
    information = textOf(entry.entry_other_information);
    retentionIndex = known(entry.retention_index);
    retentionType = textOf(entry.retention_type);
    absoluteRetention = known(entry.absolute_retention);
    relativeRetention = known(entry.relative_retention);
    retentionReference = textOf(entry.retention_reference_name);
    retentionReferenceNumber = numberOf(entry.retention_reference_CAS);
    meltingPoint = known(double(entry.melting_point));
    boilingPoint = known(double(entry.boiling_point));
    chemicalMass = known(entry.chemical_mass);
    nominalMass = numberOf(entry.nominal_mass);
    accurateMass = known(entry.accurate_mass);
}
