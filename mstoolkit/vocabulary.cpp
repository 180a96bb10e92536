// The vocabulary of enumerated attributes.

#include "mstoolkit.h"

#include <iterator>

namespace {

// Phrases of the enumerated attributes and their codes. The codes run in families, one for each kind of
// attribute; a look-up doesn't ask for the family:
//    0 experiment type    3 sample state      9 separation        23 inlet       39 ionization mode
//   52 polarity          54 detector         62 resolution type   64 scan function
//   67 scan direction    70 scan law         74 data format       78 mass units
//   81 time units        84 intensity units
// The search halves: rows ascend by their lower-cased texts.
// clang-format off
constexpr MsVocabularyRow vocabulary_rows[] = {
    {"Arbitrary Intensity Units",                      88},
    {"Arbitrary Mass Units",                           79},
    {"Arbitrary Time Units",                           82},
    {"Atmospheric Pressure Chemical Ionization",       46},
    {"Atmospheric Pressure Chemical Ionization Inlet", 32},
    {"Capillary Direct",                               24},
    {"Capillary Zone Electrophoresis",                 20},
    {"Centroided Mass Spectrum",                        0},
    {"Chemical Ionization",                            40},
    {"Constant Resolution",                            62},
    {"Continuum Mass Spectrum",                         1},
    {"Conversion Dynode Electron Multiplier",          58},
    {"Conversion Dynode Photomultiplier",              59},
    {"Counts Per Second",                              85},
    {"Current",                                        87},
    {"Direct Inlet Probe",                             27},
    {"Double",                                         77},
    {"Down",                                           68},
    {"Electron Impact",                                39},
    {"Electron Multiplier",                            54},
    {"Electrospray Inlet",                             34},
    {"Electrospray Ionization",                        44},
    {"Exponential",                                    71},
    {"Faraday Cup",                                    57},
    {"Fast Atom Bombardment",                          41},
    {"Field Desorption",                               42},
    {"Field Flow Fractionation",                       19},
    {"Field Ionization",                               43},
    {"Float",                                          76},
    {"Flow Injection Analysis",                        33},
    {"Focal Plane Array",                              56},
    {"Gas",                                             5},
    {"Gas-Liquid Chromatography",                       9},
    {"Gas-Solid Chromatography",                       10},
    {"Infusion",                                       35},
    {"Ion Exchange Liquid Chromatography",             13},
    {"Ion Pair Liquid Chromatography",                 15},
    {"Jet Separator",                                  26},
    {"Laser Desorption",                               48},
    {"Library Mass Spectrum",                           2},
    {"Linear",                                         70},
    {"Liquid",                                          4},
    {"Long",                                           75},
    {"M/Z",                                            78},
    {"Mass Scan",                                      64},
    {"Membrane Separator",                             23},
    {"Moving Belt",                                    31},
    {"Multicollector",                                 60},
    {"Negative Polarity",                              53},
    {"No Chromatography",                              22},
    {"Normal Phase Liquid Chromatography",             11},
    {"Open Split",                                     25},
    {"Other Chromatography",                           21},
    {"Other Detector",                                 61},
    {"Other Direction",                                69},
    {"Other Function",                                 66},
    {"Other Inlet",                                    38},
    {"Other Intensity",                                89},
    {"Other Ionization",                               51},
    {"Other Law",                                      73},
    {"Other Liquid Chromatography",                    16},
    {"Other Mass",                                     80},
    {"Other Probe",                                    37},
    {"Other State",                                     8},
    {"Other Time",                                     83},
    {"Particle Beam",                                  29},
    {"Photomultiplier",                                55},
    {"Plasma",                                          7},
    {"Plasma Desorption",                              47},
    {"Positive Polarity",                              52},
    {"Proportional Resolution",                        63},
    {"Quadratic",                                      72},
    {"Reservoir",                                      30},
    {"Reverse Phase Liquid Chromatography",            12},
    {"Seconds",                                        81},
    {"Selected Ion Detection",                         65},
    {"Septum",                                         28},
    {"Short",                                          74},
    {"Size Exclusion Liquid Chromatography",           14},
    {"Solid",                                           3},
    {"Spark Ionization",                               49},
    {"Supercritical Fluid",                             6},
    {"Supercritical Fluid Chromatography",             17},
    {"Thermal Ionization",                             50},
    {"Thermospray Inlet",                              36},
    {"Thermospray Ionization",                         45},
    {"Thin Layer Chromatography",                      18},
    {"Total Counts",                                   84},
    {"Up",                                             67},
    {"Volts",                                          86},
};
// clang-format on
static_assert(std::size(vocabulary_rows) == 90);

// As tolower does in the "C" locale. In others, an "I" may have another small letter.
int lower(char character)
{
    return character >= 'A' && character <= 'Z' ? character - 'A' + 'a'
                                                : static_cast<unsigned char>(character);
}

// The order of two texts, byte by byte after lower-casing; 0 if they are equal.
int compare(const char *text, const char *other)
{
    for (;; ++text, ++other) {
        const int difference = lower(*text) - lower(*other);
        if (difference != 0 || *text == '\0')
            return difference;
    }
}

} // namespace

constexpr MsTable<MsVocabularyRow> ms_vocabulary = {vocabulary_rows, int(std::size(vocabulary_rows))};

qint32 ms_enum_code(const char *text)
{
    if (!text)
        return -1;

    int low = 0;
    int high = ms_vocabulary.count - 1;
    while (low <= high) {
        const int middle = (low + high) / 2;
        const int order = compare(text, vocabulary_rows[middle].text);
        if (order == 0)
            return vocabulary_rows[middle].code;
        if (order < 0)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return -1;
}

const char *ms_enum_text(qint32 code)
{
    for (const MsVocabularyRow &row : ms_vocabulary) {
        if (row.code == code)
            return row.text;
    }
    return nullptr;
}
