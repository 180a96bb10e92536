#include "mzmlterms.h"

#include "mstoolkit.h"

#include <algorithm>
#include <iterator>

using namespace pwiz::cv;

namespace {

// clang-format off
constexpr struct {
    TermFamily family;
    const char *phrase; // of the template's vocabulary
    CVID term;
} terms[] = {
    {TermFamily::Ionisation,    "Electron Impact",                          MS_electron_ionization},
    {TermFamily::Ionisation,    "Atmospheric Pressure Chemical Ionization", MS_atmospheric_pressure_chemical_ionization},
    {TermFamily::Ionisation,    "Chemical Ionization",                      MS_chemical_ionization},
    {TermFamily::Ionisation,    "Fast Atom Bombardment",                    MS_fast_atom_bombardment_ionization},
    {TermFamily::Ionisation,    "Field Desorption",                         MS_field_desorption},
    {TermFamily::Ionisation,    "Field Ionization",                         MS_field_ionization},
    {TermFamily::Ionisation,    "Electrospray Ionization",                  MS_electrospray_ionization},
    {TermFamily::Ionisation,    "Plasma Desorption",                        MS_plasma_desorption_ionization},
    {TermFamily::Ionisation,    "Laser Desorption",                         MS_laser_desorption_ionization},
    {TermFamily::Ionisation,    "Spark Ionization",                         MS_spark_ionization},
    {TermFamily::Ionisation,    "Thermal Ionization",                       MS_thermal_ionization},
    {TermFamily::Detector,      "Conversion Dynode Electron Multiplier",    MS_conversion_dynode_electron_multiplier},
    {TermFamily::Detector,      "Conversion Dynode Photomultiplier",        MS_conversion_dynode_photomultiplier},
    {TermFamily::Detector,      "Electron Multiplier",                      MS_electron_multiplier},
    {TermFamily::Detector,      "Photomultiplier",                          MS_photomultiplier},
    {TermFamily::Detector,      "Focal Plane Array",                        MS_focal_plane_array},
    {TermFamily::Detector,      "Faraday Cup",                              MS_faraday_cup},
    {TermFamily::Detector,      "Multicollector",                           MS_multi_collector},
    {TermFamily::Inlet,         "Membrane Separator",                       MS_membrane_separator},
    {TermFamily::Inlet,         "Open Split",                               MS_open_split},
    {TermFamily::Inlet,         "Jet Separator",                            MS_jet_separator},
    {TermFamily::Inlet,         "Direct Inlet Probe",                       MS_direct_insertion_probe},
    {TermFamily::Inlet,         "Septum",                                   MS_septum},
    {TermFamily::Inlet,         "Particle Beam",                            MS_particle_beam},
    {TermFamily::Inlet,         "Reservoir",                                MS_reservoir},
    {TermFamily::Inlet,         "Moving Belt",                              MS_moving_belt},
    {TermFamily::Inlet,         "Flow Injection Analysis",                  MS_flow_injection_analysis},
    {TermFamily::Inlet,         "Electrospray Inlet",                       MS_electrospray_inlet},
    {TermFamily::Inlet,         "Infusion",                                 MS_infusion},
    {TermFamily::Inlet,         "Thermospray Inlet",                        MS_thermospray_inlet},
    {TermFamily::Separation,    "Gas-Liquid Chromatography",                MS_gas_chromatography_separation},
    {TermFamily::Separation,    "Gas-Solid Chromatography",                 MS_gas_chromatography_separation},
    {TermFamily::Separation,    "Gas-Liquid Chromatography",                MS_two_dimensional_gas_chromatography_with_fixed_modulation_time},
    {TermFamily::Separation,    "Other Liquid Chromatography",              MS_liquid_chromatography_separation},
    {TermFamily::Separation,    "Normal Phase Liquid Chromatography",       MS_liquid_chromatography_separation},
    {TermFamily::Separation,    "Reverse Phase Liquid Chromatography",      MS_liquid_chromatography_separation},
    {TermFamily::Separation,    "Ion Exchange Liquid Chromatography",       MS_liquid_chromatography_separation},
    {TermFamily::Separation,    "Size Exclusion Liquid Chromatography",     MS_liquid_chromatography_separation},
    {TermFamily::Separation,    "Ion Pair Liquid Chromatography",           MS_liquid_chromatography_separation},
    {TermFamily::SampleState,   "Gas",                                      MS_gaseous_sample_state},
    {TermFamily::SampleState,   "Liquid",                                   MS_liquid_sample_state},
    {TermFamily::SampleState,   "Solid",                                    MS_solid_sample_state},
    {TermFamily::IntensityUnit, "Total Counts",                             MS_number_of_detector_counts},
    {TermFamily::IntensityUnit, "Counts Per Second",                        MS_counts_per_second},
    {TermFamily::IntensityUnit, "Volts",                                    UO_volt},
    {TermFamily::IntensityUnit, "Current",                                  UO_ampere},
};
// clang-format on
static_assert(std::size(terms) == 46);

} // namespace

CVID mzmlTerm(TermFamily family, qint32 code)
{
    const auto row = std::find_if(std::begin(terms), std::end(terms), [family, code](const auto &one) {
        return one.family == family && ms_enum_code(one.phrase) == code;
    });
    return row == std::end(terms) ? CVID_Unknown : row->term;
}

qint32 templateCode(TermFamily family, const pwiz::data::ParamContainer &container)
{
    const auto row = std::find_if(std::begin(terms), std::end(terms), [&](const auto &one) {
        return one.family == family && container.hasCVParamChild(one.term);
    });
    return row == std::end(terms) ? -1 : ms_enum_code(row->phrase);
}
