// The entries of a sample library.

#include "samplelibrary.h"

#include "samplechromatogram.h"
#include "samplecompounds.h"
#include "samplerun.h"

#include <cstring>

namespace {

constexpr const char *reference_name = "Hexadecane";

int reference_compound()
{
    int place = 0;
    while (std::strcmp(sample_compounds.first[place].name, reference_name) != 0)
        ++place;
    return place;
}

} // namespace

MsLibraryRecord sample_library_entry(int index, SampleTexts *texts)
{
    const int place = index % sample_compounds.count;
    const int replicate = index / sample_compounds.count + 1;
    const SampleCompound &compound = sample_compounds.first[place];
    const SampleStructure &structure = sample_structures.first[place];
    const SampleNames &names = sample_names.first[place];
    const int reference = reference_compound();
    const double retention = sample_retention_time(sample_reference_clock(), place);
    const double reference_retention = sample_retention_time(sample_reference_clock(), reference);

    MsLibraryRecord entry;
    ms_init_per_scan(0, nullptr, &entry);
    entry.entry_index = index;
    entry.entry_name = texts->keep(compound.name);
    entry.entry_id = texts->keep("MIX-" + QByteArray::number(index + 1).rightJustified(6, '0'));
    entry.entry_number = index + 1;
    entry.source_data_file_reference = texts->keep("gcms.cdf");
    entry.CAS_name = texts->keep(names.index_name);
    entry.CAS_number = compound.cas_number;
    entry.other_name_0 = texts->keep(names.others[0]);
    entry.other_name_1 = texts->keep(names.others[1]);
    entry.other_name_2 = texts->keep(names.others[2]);
    entry.other_name_3 = texts->keep(names.others[3]);
    entry.chemical_formula = texts->keep(compound.formula);
    entry.smiles = texts->keep(structure.smiles);
    entry.wiswesser = texts->keep(structure.wiswesser);
    entry.molfile_reference = texts->keep(QByteArray::number(compound.cas_number) + ".mol");
    entry.other_structure = texts->keep(structure.condensed);
    entry.retention_index = compound.retention_index;
    entry.retention_type = texts->keep("Linear retention index");
    entry.absolute_retention = retention;
    entry.relative_retention = on_grid(retention / reference_retention, 10000.0);
    entry.retention_reference_name = texts->keep(reference_name);
    entry.retention_reference_CAS = sample_compounds.first[reference].cas_number;
    entry.melting_point = compound.melting_point;
    entry.boiling_point = compound.boiling_point;
    entry.chemical_mass = compound.chemical_mass;
    entry.nominal_mass = compound.nominal_mass;
    entry.accurate_mass = compound.accurate_mass;
    entry.entry_other_information =
        texts->keep("Electron impact, 70 eV, main peaks; replicate " + QByteArray::number(replicate));
    return entry;
}
