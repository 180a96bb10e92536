// The trace of a GCxGC run as a map: a column for each modulation, in which the scans lie one above the
// other.
#ifndef MODULATIONMAP_H
#define MODULATIONMAP_H

#include <QString>

#include <vector>

struct ModulationMap {
    double start = 0.0;  // in s, of the first column
    double length = 0.0; // of a modulation, in s: from column to column
    double step = 0.0;   // of the scans, in s: from row to row
    int columns = 0;
    int rows = 0;
    std::vector<double> values; // column after column; NaN where there is no scan
    std::vector<qint32> scans;  // the same, -1 where there is none

    bool isEmpty() const { return columns == 0 || rows == 0; }
    double value(int column, int row) const { return values[place(column, row)]; }
    qint32 scan(int column, int row) const { return scans[place(column, row)]; }

    // The column and row of a scan's time in s, by the same rule as the map was made. They may lie
    // outside.
    int columnOf(double time) const;
    int rowOf(double time) const;

private:
    std::size_t place(int column, int row) const
    {
        return std::size_t(column) * std::size_t(rows) + std::size_t(row);
    }
};

// Folds a run with a number for each scan, times in s, at the length of a modulation. All scans move up
// by `shift` seconds first; what passes the end of a modulation goes on in the next one. Returns an empty
// map, and in `fault` a sentence, where the run can't be folded so.
ModulationMap foldTrace(const std::vector<double> &times, const std::vector<double> &values,
                        double length, double shift, QString *fault);

#endif // MODULATIONMAP_H
