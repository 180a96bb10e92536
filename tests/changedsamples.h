// Samples, and copies of them in which something can't be right.
#ifndef CHANGEDSAMPLES_H
#define CHANGEDSAMPLES_H

#include "msfile.h"
#include "program.h"

#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <limits>

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using Change = std::function<void(int id)>; // of a file that is open for writing

inline int variable(int id, const char *name)
{
    int found = NC_GLOBAL; // also for a null name
    nc_inq_varid(id, name ? name : "", &found);
    return found;
}

// Puts `value` in `count` elements of a variable from `first` on.
inline Change put(const char *name, std::size_t first, double value, std::size_t count = 1)
{
    return [=](int id) {
        for (std::size_t i = first; i < first + count; ++i)
            nc_put_var1_double(id, variable(id, name), &i, &value);
    };
}

// Adds `value` to `count` elements of a variable from `first` on.
inline Change add(const char *name, std::size_t first, double value, std::size_t count = 1)
{
    return [=](int id) {
        for (std::size_t i = first; i < first + count; ++i) {
            double number = 0.0;
            nc_get_var1_double(id, variable(id, name), &i, &number);
            put(name, i, number + value)(id);
        }
    };
}

inline Change putAttribute(const char *name, const char *attribute, double value)
{
    return [=](int id) {
        nc_redef(id);
        nc_put_att_double(id, variable(id, name), attribute, NC_DOUBLE, 1, &value);
    };
}

inline Change putAttribute(const char *attribute, const char *text)
{
    return [=](int id) {
        nc_redef(id);
        nc_put_att_text(id, NC_GLOBAL, attribute, qstrlen(text), text);
    };
}

inline Change renameTo(const char *newName, const char *name)
{
    return [=](int id) {
        nc_redef(id);
        nc_rename_var(id, variable(id, name), newName);
    };
}

inline Change rename(const char *name)
{
    return renameTo("unknown", name);
}

// For a test class to have as a second base.
class ChangedSamples
{
protected:
    // To be called once, before all else.
    void makeSamples() const
    {
        for (const QString kind : {"gcms", "gcxgc", "tic", "library", "sim"}) {
            const QString points = kind == "tic" ? "1" : "30";
            const QStringList options = {"--scans", "20", "--points", points, kind, folder.filePath(kind + ".cdf")};
            QCOMPARE(runProgram(QStringLiteral(AIA_TOOLS "/aia-sample"), options).code, 0);
        }
    }

    // Of a sample or a fixture.
    QString path(const QString &name) const
    {
        const QString sample = folder.filePath(name + QStringLiteral(".cdf"));
        return QFile::exists(sample) ? sample : fixture(name);
    }

    // Of a sample, with these changes made to it.
    QString changedCopy(const QString &name, const QList<Change> &changes) const
    {
        const QString copy = folder.filePath(QStringLiteral("copy.cdf"));
        QFile::remove(copy);
        QFile::copy(path(name), copy);
        int id = -1;
        nc_open(QFile::encodeName(copy).constData(), NC_WRITE, &id);
        const MsFile file = MsFile::adopt(id);
        for (const Change &change : changes)
            change(id);
        return copy;
    }

    const QTemporaryDir folder;
};

#endif // CHANGEDSAMPLES_H
