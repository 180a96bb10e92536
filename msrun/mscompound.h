// The compound of a library entry, as plain values. What the file lacks is a null text, NaN, or -1.
#ifndef MSCOMPOUND_H
#define MSCOMPOUND_H

#include "mstoolkit.h"

#include <QString>
#include <QStringList>

#include <limits>

struct MsCompound {
    // An empty one.
    MsCompound() = default;

    // That of an entry.
    explicit MsCompound(const MsLibraryRecord &entry);

    QString name;           // entry_name, else the CAS name
    QStringList otherNames; // other_name_0 to 3, those that are there
    QString id;             // entry_id
    qint32 number = -1;     // entry_number; -1 unknown
    QString formula;
    QString casName;
    qint32 casNumber = -1; // without the hyphens; -1 unknown
    QString smiles;
    QString wiswesser;
    QString source;      // source_data_file_reference
    QString molfile;     // molfile_reference
    QString structure;   // other_structure
    QString information; // entry_other_information
    double retentionIndex = std::numeric_limits<double>::quiet_NaN();
    QString retentionType;
    double absoluteRetention = std::numeric_limits<double>::quiet_NaN();
    double relativeRetention = std::numeric_limits<double>::quiet_NaN();
    QString retentionReference;           // its name
    qint32 retentionReferenceNumber = -1; // its CAS number
    double meltingPoint = std::numeric_limits<double>::quiet_NaN();
    double boilingPoint = std::numeric_limits<double>::quiet_NaN();
    double chemicalMass = std::numeric_limits<double>::quiet_NaN(); // the molecular weight
    qint32 nominalMass = -1;                                        // -1 unknown
    double accurateMass = std::numeric_limits<double>::quiet_NaN();
};

#endif // MSCOMPOUND_H
