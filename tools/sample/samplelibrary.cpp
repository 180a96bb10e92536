// The entries of a sample library.

#include "samplelibrary.h"

#include "samplechromatogram.h"
#include "samplecompounds.h"
#include "samplerun.h"

#include <QByteArray>

#include <cstring>

namespace {

constexpr const char *referenceName = "Hexadecane";

int referenceCompound()
{
    int place = 0;
    while (std::strcmp(sampleCompounds.first[place].name, referenceName) != 0)
        ++place;
    return place;
}

} // namespace

MsLibraryDraft sampleLibraryEntry(int index, SampleTexts *texts)
{
    const int place = index % sampleCompounds.count;
    const int replicate = index / sampleCompounds.count + 1;
    const SampleCompound &compound = sampleCompounds.first[place];
    const SampleStructure &structure = sampleStructures.first[place];
    const SampleNames &names = sampleNames.first[place];
    const int reference = referenceCompound();
    const double retention = sampleRetentionTime(sampleReferenceClock(), place);
    const double referenceRetention = sampleRetentionTime(sampleReferenceClock(), reference);

    MsLibraryDraft entry(index);
    entry.entry_name = texts->keep(compound.name);
    entry.entry_id = texts->keep("MIX-" + QByteArray::number(index + 1).rightJustified(6, '0'));
    entry.entry_number = index + 1;
    entry.source_data_file_reference = texts->keep("gcms.cdf");
    entry.CAS_name = texts->keep(names.indexName);
    entry.CAS_number = compound.casNumber;
    entry.other_name_0 = texts->keep(names.others[0]);
    entry.other_name_1 = texts->keep(names.others[1]);
    entry.other_name_2 = texts->keep(names.others[2]);
    entry.other_name_3 = texts->keep(names.others[3]);
    entry.chemical_formula = texts->keep(compound.formula);
    entry.smiles = texts->keep(structure.smiles);
    entry.wiswesser = texts->keep(structure.wiswesser);
    entry.molfile_reference = texts->keep(QByteArray::number(compound.casNumber) + ".mol");
    entry.other_structure = texts->keep(structure.condensed);
    entry.retention_index = compound.retentionIndex;
    entry.retention_type = texts->keep("Linear retention index");
    entry.absolute_retention = retention;
    entry.relative_retention = onGrid(retention / referenceRetention, 10000.0);
    entry.retention_reference_name = texts->keep(referenceName);
    entry.retention_reference_CAS = sampleCompounds.first[reference].casNumber;
    entry.melting_point = compound.meltingPoint;
    entry.boiling_point = compound.boilingPoint;
    entry.chemical_mass = compound.chemicalMass;
    entry.nominal_mass = compound.nominalMass;
    entry.accurate_mass = compound.accurateMass;
    entry.entry_other_information =
        texts->keep("Electron impact, 70 eV, main peaks; replicate " + QByteArray::number(replicate));
    return entry;
}
