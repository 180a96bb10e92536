// Private to the toolkit: a variable of numbers from front to back, whatever its type, for those who look
// for what can't be right.
#ifndef COLUMNWALK_P_H
#define COLUMNWALK_P_H

#include "mstoolkit.h"

#include <cstddef>
#include <vector>

struct MsFileState;

class MsColumnWalk
{
public:
    MsColumnWalk(MsFileState &state, int variable_slot);

    // Whether the file has the variable, with so many dimensions.
    bool exists() const { return dimensions != -1; }
    int rank() const { return dimensions; }

    // Whether it holds numbers along one dimension. Otherwise it has no elements here.
    bool is_usable() const { return kind != NC_NAT; }

    // Elements by the file's header; it may be cut off before.
    std::size_t length() const { return claimed; }

    bool is_fill(double number) const;

    // False for an element that the file lacks or that can't be read.
    bool get(std::size_t place, double *number);

private:
    MsFileState &file;
    int slot;
    int dimensions = -1;
    nc_type kind = NC_NAT;
    std::size_t claimed = 0;
    std::size_t stored = 0;
    std::size_t first = 0;
    std::vector<double> numbers;
};

// Whether a number is the one that the library stores where nothing was written.
bool ms_is_fill(nc_type type, double number);

inline bool ms_is_missing(double number)
{
    return number == MsMissingDouble;
}

#endif // COLUMNWALK_P_H
