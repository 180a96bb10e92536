// The compounds that the samples are made of.

#include "samplecompounds.h"

#include <iterator>

namespace {

// clang-format off
constexpr SampleCompound compounds[] = {
    // name                        formula      CAS      nominal accurate   chemical  index  2nd   melting  boiling
    {"Toluene",                    "C7H8",      108883,   92,     92.0626,   92.1384,  763.0, 1.55,  -94.9f, 110.6f},
    {"Ethylbenzene",               "C8H10",     100414,  106,    106.0783,  106.1650,  855.0, 1.62,  -94.9f, 136.2f},
    {"o-Xylene",                   "C8H10",      95476,  106,    106.0783,  106.1650,  887.0, 1.71,  -25.2f, 144.4f},
    {"Phenol",                     "C6H6O",     108952,   94,     94.0419,   94.1112,  981.0, 3.12,   40.9f, 181.8f},
    {"Decane",                     "C10H22",    124185,  142,    142.1722,  142.2817, 1000.0, 0.84,  -29.7f, 174.1f},
    {"Limonene",                   "C10H16",    138863,  136,    136.1252,  136.2340, 1030.0, 1.18,  -95.5f, 176.0f},
    {"Acetophenone",               "C8H8O",      98862,  120,    120.0575,  120.1485, 1066.0, 2.64,   20.5f, 202.0f},
    {"Nitrobenzene",               "C6H5NO2",    98953,  123,    123.0320,  123.1094, 1086.0, 2.81,    5.7f, 210.8f},
    {"Naphthalene",                "C10H8",      91203,  128,    128.0626,  128.1705, 1182.0, 2.35,   80.2f, 217.9f},
    {"Dodecane",                   "C12H26",    112403,  170,    170.2035,  170.3348, 1200.0, 0.88,   -9.6f, 216.3f},
    {"Nicotine",                   "C10H14N2",   54115,  162,    162.1157,  162.2316, 1355.0, 2.22,  -79.0f, 247.0f},
    {"Biphenyl",                   "C12H10",     92524,  154,    154.0783,  154.2078, 1381.0, 2.41,   69.2f, 255.9f},
    {"Tetradecane",                "C14H30",    629594,  198,    198.2348,  198.3880, 1400.0, 0.91,    5.9f, 253.6f},
    {"Dimethyl phthalate",         "C10H10O4",  131113,  194,    194.0579,  194.1840, 1454.0, 3.05,    5.5f, 283.7f},
    {"Diethyl phthalate",          "C12H14O4",   84662,  222,    222.0892,  222.2372, 1594.0, 2.78,  -40.5f, 295.0f},
    {"Hexadecane",                 "C16H34",    544763,  226,    226.2661,  226.4412, 1600.0, 0.94,   18.2f, 286.9f},
    {"Phenanthrene",               "C14H10",     85018,  178,    178.0783,  178.2292, 1780.0, 2.72,   99.2f, 340.0f},
    {"Anthracene",                 "C14H10",    120127,  178,    178.0783,  178.2292, 1790.0, 2.74,  216.0f, 339.9f},
    {"Caffeine",                   "C8H10N4O2",  58082,  194,    194.0804,  194.1906, 1840.0, 3.61,  238.0f, 178.0f},
    {"Dibutyl phthalate",          "C16H22O4",   84742,  278,    278.1518,  278.3435, 1965.0, 2.32,  -35.0f, 340.0f},
    {"Eicosane",                   "C20H42",    112958,  282,    282.3287,  282.5475, 2000.0, 1.01,   36.7f, 343.1f},
    {"Pyrene",                     "C16H10",    129000,  202,    202.0783,  202.2506, 2110.0, 3.02,  150.6f, 404.0f},
    {"Tetracosane",                "C24H50",    646311,  338,    338.3913,  338.6538, 2400.0, 1.07,   50.9f, 391.3f},
    {"Bis(2-ethylhexyl) phthalate","C24H38O4",  117817,  390,    390.2770,  390.5561, 2550.0, 1.83,  -55.0f, 384.0f},
};

constexpr SampleStructure structures[] = {
    {"Cc1ccccc1",                            "1R",                   "C6H5CH3"},
    {"CCc1ccccc1",                           "2R",                   "C6H5CH2CH3"},
    {"Cc1ccccc1C",                           "1R B1",                "1,2-C6H4(CH3)2"},
    {"Oc1ccccc1",                            "QR",                   "C6H5OH"},
    {"CCCCCCCCCC",                           "10H",                  "CH3(CH2)8CH3"},
    {"CC1=CCC(CC1)C(C)=C",                   "L6UTJ A1 DY1&U1",      "CH3-C6H8-C(CH3)=CH2"},
    {"CC(=O)c1ccccc1",                       "1VR",                  "C6H5COCH3"},
    {"[O-][N+](=O)c1ccccc1",                 "WNR",                  "C6H5NO2"},
    {"c1ccc2ccccc2c1",                       "L66J",                 "two fused benzene rings"},
    {"CCCCCCCCCCCC",                         "12H",                  "CH3(CH2)10CH3"},
    {"CN1CCCC1c1cccnc1",                     "T6NJ C- BT5NTJ A1",    "3-(1-methylpyrrolidin-2-yl)pyridine"},
    {"c1ccc(cc1)-c1ccccc1",                  "RR",                   "C6H5C6H5"},
    {"CCCCCCCCCCCCCC",                       "14H",                  "CH3(CH2)12CH3"},
    {"COC(=O)c1ccccc1C(=O)OC",               "1OVR BVO1",            "1,2-C6H4(COOCH3)2"},
    {"CCOC(=O)c1ccccc1C(=O)OCC",             "2OVR BVO2",            "1,2-C6H4(COOC2H5)2"},
    {"CCCCCCCCCCCCCCCC",                     "16H",                  "CH3(CH2)14CH3"},
    {"c1ccc2c(c1)ccc1ccccc21",               "L B666J",              "three benzene rings, fused at an angle"},
    {"c1ccc2cc3ccccc3cc2c1",                 "L C666J",              "three benzene rings, fused in a line"},
    {"Cn1cnc2c1c(=O)n(C)c(=O)n2C",           "T56 BN DN FNVNVJ B1 F1 H1", "1,3,7-trimethylpurine-2,6-dione"},
    {"CCCCOC(=O)c1ccccc1C(=O)OCCCC",         "4OVR BVO4",            "1,2-C6H4(COOC4H9)2"},
    {"CCCCCCCCCCCCCCCCCCCC",                 "20H",                  "CH3(CH2)18CH3"},
    {"c1cc2ccc3cccc4ccc(c1)c2c34",           "L666 B6 2AB PJ",       "four fused benzene rings"},
    {"CCCCCCCCCCCCCCCCCCCCCCCC",             "24H",                  "CH3(CH2)22CH3"},
    {"CCCCC(CC)COC(=O)c1ccccc1C(=O)OCC(CC)CCCC", "4Y2&1OVR BVO1Y4&2", "1,2-C6H4(COOCH2CH(C2H5)C4H9)2"},
};

constexpr SampleNames names[] = {
    {"Benzene, methyl-",                     {"Methylbenzene", "Toluol", "Phenylmethane", "Methylbenzol"}},
    {"Benzene, ethyl-",                      {"Phenylethane", "Ethylbenzol", "EB", "Ethyl benzene"}},
    {"Benzene, 1,2-dimethyl-",               {"1,2-Dimethylbenzene", "ortho-Xylene", "1,2-Xylene", "o-Xylol"}},
    {"Phenol",                               {"Hydroxybenzene", "Carbolic acid", "Benzenol", "Phenic acid"}},
    {"Decane",                               {"n-Decane", "Decyl hydride", "n-C10", "Alkane C10"}},
    {"Cyclohexene, 1-methyl-4-(1-methylethenyl)-", {"Dipentene", "p-Mentha-1,8-diene", "(+/-)-Limonene", "DL-Limonene"}},
    {"Ethanone, 1-phenyl-",                  {"Methyl phenyl ketone", "1-Phenylethanone", "Acetylbenzene", "Hypnone"}},
    {"Benzene, nitro-",                      {"Nitrobenzol", "Oil of mirbane", "Mononitrobenzene", "Essence of mirbane"}},
    {"Naphthalene",                          {"Naphthalin", "Tar camphor", "White tar", "Naphthene"}},
    {"Dodecane",                             {"n-Dodecane", "Dihexyl", "Bihexyl", "n-C12"}},
    {"Pyridine, 3-(1-methyl-2-pyrrolidinyl)-, (S)-", {"(-)-Nicotine", "L-Nicotine", "(S)-Nicotine", "(S)-3-(1-Methylpyrrolidin-2-yl)pyridine"}},
    {"1,1'-Biphenyl",                        {"Diphenyl", "Phenylbenzene", "Bibenzene", "Dibenzene"}},
    {"Tetradecane",                          {"n-Tetradecane", "n-C14", "Alkane C14", "Tetradecyl hydride"}},
    {"1,2-Benzenedicarboxylic acid, dimethyl ester", {"DMP", "Dimethyl benzene-1,2-dicarboxylate", "Phthalic acid, dimethyl ester", "Dimethyl o-phthalate"}},
    {"1,2-Benzenedicarboxylic acid, diethyl ester", {"DEP", "Diethyl benzene-1,2-dicarboxylate", "Phthalic acid, diethyl ester", "Diethyl o-phthalate"}},
    {"Hexadecane",                           {"n-Hexadecane", "Cetane", "n-Cetane", "n-C16"}},
    {"Phenanthrene",                         {"Phenanthren", "Phenantrin", "[3]Helicene", "PHE"}},
    {"Anthracene",                           {"Anthracin", "Paranaphthalene", "Green oil", "ANT"}},
    {"1H-Purine-2,6-dione, 3,7-dihydro-1,3,7-trimethyl-", {"1,3,7-Trimethylxanthine", "Theine", "Guaranine", "Methyltheobromine"}},
    {"1,2-Benzenedicarboxylic acid, dibutyl ester", {"DBP", "Di-n-butyl phthalate", "Phthalic acid, dibutyl ester", "Butyl phthalate"}},
    {"Eicosane",                             {"n-Eicosane", "Icosane", "n-C20", "Alkane C20"}},
    {"Pyrene",                               {"Benzo[def]phenanthrene", "beta-Pyrene", "Pyren", "PYR"}},
    {"Tetracosane",                          {"n-Tetracosane", "n-C24", "Alkane C24", "Tetracosyl hydride"}},
    {"1,2-Benzenedicarboxylic acid, bis(2-ethylhexyl) ester", {"DEHP", "Di(2-ethylhexyl) phthalate", "Phthalic acid, bis(2-ethylhexyl) ester", "Di-sec-octyl phthalate"}},
};

constexpr SampleSpectrum spectra[] = {
    {{{91,100}, {92,73}, {65,12}, {39,11}, {63,7}, {51,6}, {93,5}, {50,4}, {89,4}, {45,3}, {62,3}, {90,2}}},
    {{{91,100}, {106,31}, {51,11}, {92,8}, {39,8}, {65,8}, {77,7}, {78,6}, {105,6}, {50,4}, {79,3}, {107,3}}},
    {{{91,100}, {106,56}, {105,24}, {77,11}, {51,10}, {39,9}, {92,8}, {79,6}, {65,5}, {78,5}, {107,5}, {63,4}}},
    {{{94,100}, {66,31}, {65,23}, {39,19}, {40,9}, {55,7}, {95,7}, {63,6}, {50,6}, {38,5}, {47,4}, {51,4}}},
    {{{43,100}, {57,89}, {71,43}, {41,35}, {85,27}, {56,18}, {55,14}, {70,14}, {42,12}, {39,11}, {142,7}, {84,8}, {99,5}, {98,6}}},
    {{{68,100}, {93,68}, {67,64}, {94,27}, {79,26}, {136,24}, {92,23}, {107,22}, {41,22}, {121,21}, {53,21}, {39,20}, {77,18}, {91,17}}},
    {{{105,100}, {77,78}, {120,28}, {51,26}, {43,19}, {50,11}, {106,8}, {78,7}, {39,3}, {74,3}, {121,3}, {76,2}}},
    {{{77,100}, {123,70}, {51,50}, {50,20}, {93,15}, {65,13}, {74,7}, {78,7}, {39,6}, {124,5}, {76,3}, {107,2}}},
    {{{128,100}, {127,13}, {129,11}, {102,7}, {126,6}, {64,6}, {51,6}, {63,5}, {50,3}, {77,3}, {75,3}, {74,2}}},
    {{{57,100}, {43,94}, {71,57}, {85,38}, {41,33}, {55,17}, {56,16}, {70,14}, {99,7}, {98,6}, {170,6}, {113,4}, {112,4}, {127,2}}},
    {{{84,100}, {133,32}, {161,18}, {42,17}, {162,17}, {51,6}, {119,5}, {65,4}, {85,6}, {117,5}, {130,4}, {92,4}, {78,4}}},
    {{{154,100}, {153,40}, {152,28}, {76,18}, {155,13}, {77,8}, {151,8}, {51,7}, {63,6}, {115,5}, {128,4}, {64,4}}},
    {{{57,100}, {43,83}, {71,64}, {85,44}, {41,29}, {55,17}, {56,15}, {70,14}, {99,9}, {113,5}, {198,5}, {127,4}, {141,3}, {155,2}}},
    {{{163,100}, {77,20}, {164,10}, {76,9}, {92,9}, {50,9}, {133,8}, {194,8}, {135,6}, {104,6}, {120,3}, {105,3}, {64,3}}},
    {{{149,100}, {177,28}, {150,12}, {65,9}, {76,9}, {105,8}, {176,8}, {93,6}, {104,5}, {50,5}, {121,4}, {222,3}, {132,3}, {178,3}}},
    {{{57,100}, {43,78}, {71,71}, {85,52}, {41,27}, {55,17}, {56,14}, {70,13}, {99,12}, {113,7}, {127,5}, {226,5}, {141,4}, {155,2}}},
    {{{178,100}, {176,18}, {179,15}, {177,10}, {89,9}, {76,9}, {152,8}, {151,7}, {88,5}, {150,3}, {63,3}}},
    {{{178,100}, {176,17}, {179,15}, {177,9}, {89,8}, {76,7}, {152,7}, {151,5}, {88,5}, {150,3}, {63,3}}},
    {{{194,100}, {109,62}, {67,37}, {55,35}, {82,29}, {42,18}, {193,11}, {195,10}, {81,10}, {41,8}, {165,5}, {136,5}, {110,5}}},
    {{{149,100}, {150,9}, {41,9}, {223,6}, {205,5}, {104,5}, {57,5}, {76,5}, {65,4}, {56,4}, {93,3}, {278,1}, {121,3}}},
    {{{57,100}, {71,76}, {43,67}, {85,58}, {41,22}, {55,18}, {99,15}, {56,13}, {113,9}, {127,7}, {141,5}, {155,4}, {169,3}, {282,4}}},
    {{{202,100}, {200,20}, {101,18}, {203,17}, {201,16}, {100,13}, {88,5}, {174,3}, {199,3}, {87,2}, {150,2}}},
    {{{57,100}, {71,79}, {85,63}, {43,61}, {99,18}, {55,18}, {41,18}, {113,11}, {127,8}, {141,6}, {155,5}, {169,4}, {183,3}, {338,3}}},
    {{{149,100}, {167,34}, {57,33}, {71,22}, {70,20}, {43,20}, {41,13}, {55,12}, {279,12}, {113,12}, {150,11}, {83,8}, {112,7}, {168,4}}},
};
// clang-format on

constexpr int compoundCount = int(std::size(compounds));
static_assert(std::size(structures) == compoundCount);
static_assert(std::size(names) == compoundCount);
static_assert(std::size(spectra) == compoundCount);

} // namespace

const MsTable<SampleCompound> sampleCompounds = {compounds, compoundCount};
const MsTable<SampleStructure> sampleStructures = {structures, compoundCount};
const MsTable<SampleNames> sampleNames = {names, compoundCount};
const MsTable<SampleSpectrum> sampleSpectra = {spectra, compoundCount};
