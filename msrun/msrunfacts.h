// What a person wants to know of a run, as plain values. The defaults of the template don't stand in for
// facts: what the file doesn't say is a null text, NaN, or a term without a code.
#ifndef MSRUNFACTS_H
#define MSRUNFACTS_H

#include "msrecords.h"

#include <QDateTime>
#include <QString>

#include <limits>

class MsFile;

// What a file says in an attribute that has a vocabulary.
struct MsTerm {
    qint32 code = -1; // of the vocabulary, see ms_enum_text; -1 where it lacks what the file says
    QString text{};   // the phrase of the code, else the file's own words; null where it says nothing

    bool isStated() const { return !text.isNull(); }
};

// A time stamp of a file.
struct MsMoment {
    QString text{};   // as the file has it; null where it has none
    QDateTime time{}; // in UTC where hasZone, else a local time of which nobody knows the zone, which is
                      // shown as if it were UTC; not valid where the text can't be understood
    bool hasZone = false; // whether the text names one
};

// The facts. Behind each stands the attribute that it comes from.
struct MsRunFacts {
    enum class Polarity { Unknown, Positive, Negative };
    enum class Spectra { Unknown, Centroid, Profile };   // of a library, unknown
    enum class Scan { Unknown, FullScan, SelectedIons }; // of another scan function, unknown

    QString title;        // experiment_title
    QString operatorName; // operator_name
    QString owner;        // dataset_owner
    QString origin;       // dataset_origin, the place
    QString comments;     // administrative_comments
    MsMoment acquired;    // experiment_date_time_stamp
    MsMoment written;     // netcdf_file_date_time_stamp, of the file

    // The template has no attribute for the method. Instrument software names it as the first external
    // file: external_file_ref_0.
    QString methodName;
    QString sourceFile;      // source_file_reference
    QString sourceFormat;    // source_file_format
    QString acquiredWith;    // pre_experiment_program_name
    QString exportedWith;    // post_experiment_program_name
    QString sampleName;      // sample_external_id, else sample_internal_id
    QString sampleId;        // sample_internal_id
    QString sampleOwner;     // sample_owner
    QString sampleComments;  // sample_comments
    QString testComments;    // test_comments
    QString rawDataComments; // raw_data_comments
    QString instrument;      // the components with maker and model, up to four, in a line
    QString reagentGas;      // test_reagent_gas
    MsTerm experiment;       // experiment_type
    MsTerm separation;       // test_separation_type
    MsTerm inlet;            // test_ms_inlet
    MsTerm ionisation;       // test_ionization_mode
    MsTerm ionisationSign;   // test_ionization_polarity
    MsTerm detector;         // test_detector_type
    MsTerm resolution;       // test_resolution_type
    MsTerm scanFunction;     // test_scan_function
    MsTerm scanDirection;    // test_scan_direction
    MsTerm scanLaw;          // test_scan_law
    MsTerm sampleState;      // sample_state
    MsTerm massUnits;        // units of mass_values
    MsTerm timeUnits;        // units of time_values, which hold for the times of scans, too
    MsTerm intensityUnits;   // units of intensity_values
    MsTerm totalUnits;       // units of total_intensity

    // test_electron_energy, test_source_temperature, test_ms_inlet_temperature, test_detector_potential.
    double electronEnergy = std::numeric_limits<double>::quiet_NaN();    // in eV
    double sourceTemperature = std::numeric_limits<double>::quiet_NaN(); // in degrees Celsius
    double inletTemperature = std::numeric_limits<double>::quiet_NaN();  // likewise
    double detectorPotential = std::numeric_limits<double>::quiet_NaN(); // in V
    qint32 groups = 0;                                                   // of monitored masses

    // What ionisationSign, experiment and scanFunction say, for those who choose by it.
    Polarity polarity = Polarity::Unknown;
    Spectra spectra = Spectra::Unknown;
    Scan scan = Scan::Unknown; // selected ions also where the file has groups and says nothing
};

// Returns what an open file says in the attribute of a row that has a vocabulary: neither code nor text
// where it says nothing.
MsTerm ms_read_term(int ncid, const MsAttributeRow &row);

// Reads the facts from the attributes of an open file, of which `globals` are the records, and its
// instrument and groups. What can't be read counts as not said. The facts belong to the caller and
// outlive the file.
MsRunFacts ms_read_run_facts(const MsFile &file, const MsGlobals &globals);

// Takes a time stamp apart. Understood are year, month, day, hour, minute and second in this order,
// together or apart, and a zone or none, as in 20070923040800+0200, 2007-09-23T04:08:00Z and
// 2007,09,23,04:08:00. Of another text, `time` isn't valid; the text is kept as it is.
MsMoment ms_moment_of(const QString &stamp);

#endif // MSRUNFACTS_H
