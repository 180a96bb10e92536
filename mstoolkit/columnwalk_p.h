// Private to the toolkit: a variable of numbers from front to back, whatever its type, for those who look
// for what can't be right.
#ifndef COLUMNWALK_P_H
#define COLUMNWALK_P_H

#include "filedata_p.h"
#include "mstoolkit.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

struct MsFileState;

struct MsColumnNumber {
    double value = 0.0;
    bool is_known = false; // whether the file has it and it could be read
};

class MsColumnWalk
{
public:
    MsColumnWalk(MsFileState &state, int variable_slot);

    // Whether the file has the variable, and its number of dimensions.
    bool exists() const { return dimensions != -1; }
    int rank() const { return dimensions; }

    // Whether it holds numbers along one dimension. Otherwise it has no elements here.
    bool is_usable() const { return kind != NC_NAT; }

    // How many elements the header claims. The file may end before the last one.
    std::size_t length() const { return claimed; }

    // How many of them the file has; fewer after a failure that isn't the system's.
    std::size_t stored_length() const { return stored; }

    // Whether a number is the one that the library stores where nothing was written.
    bool is_fill(double number) const { return number >= least_fill && number <= most_fill; }

    MsColumnNumber get(std::size_t place)
    {
        const std::size_t i = place - first; // beyond all sizes where it lies before
        return i < numbers.size() ? at(i) : read(place);
    }

private:
    MsColumnNumber at(std::size_t i) const
    {
        return lost.empty() || !is_lost(first + i) ? MsColumnNumber{numbers[i], true} : MsColumnNumber();
    }
    bool is_lost(std::size_t place) const;
    MsColumnNumber read(std::size_t place);

    MsFileState *file;
    int slot;
    int dimensions = -1;
    nc_type kind = NC_NAT;
    std::size_t claimed = 0;
    std::size_t stored = 0;
    double least_fill = std::numeric_limits<double>::quiet_NaN();
    double most_fill = std::numeric_limits<double>::quiet_NaN();
    std::size_t first = 0;
    std::vector<double> numbers; // read ahead, from `first` on
    std::vector<MsPart> lost;    // of these, refused by the system
};

// The positions of the shortest of mass_values, time_values and intensity_values; nothing for a file
// without any of them as numbers along one dimension.
std::optional<qint64> ms_shortest_axis(MsFileState &file);

inline bool ms_is_missing(double number)
{
    return number == MsMissingDouble;
}

#endif // COLUMNWALK_P_H
