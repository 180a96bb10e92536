// Numbers of a file as double, whatever their stored format.
#ifndef MSNUMBERS_H
#define MSNUMBERS_H

#include "msformat.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

// Goes through the elements 0, 1, 2... of a `Source`, whose operator[] makes each of them as it is asked
// for. It keeps a copy of the source, which is a view.
template <class Source, class Element> class MsIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Element;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = Element;

    MsIterator(const Source &source, qint32 place) : source_(source), place_(place) { }

    Element operator*() const { return source_[place_]; }
    MsIterator &operator++()
    {
        ++place_;
        return *this;
    }
    MsIterator operator++(int) { return MsIterator(source_, place_++); }
    bool operator==(const MsIterator &other) const { return place_ == other.place_; }
    bool operator!=(const MsIterator &other) const { return place_ != other.place_; }

private:
    Source source_;
    qint32 place_;
};

// A view of numbers in one of the data formats, as double, which holds each of them exactly. It owns
// nothing: the record whose numbers it shows has to outlive it.
class MsNumbers
{
public:
    using Iterator = MsIterator<MsNumbers, double>;

    MsNumbers() = default;

    // Shows `count` numbers of the data format `format` (MsDataFormat) from `first` on. The view is empty
    // for a null pointer, a count below 1, and a format outside the four.
    MsNumbers(const void *first, qint32 format, qint32 count)
        : first_(first), format_(format),
          size_(first && ms_nc_type_of_format(format, NC_NAT) != NC_NAT ? std::max(count, 0) : 0)
    {
    }

    // The nc type of the stored numbers.
    qint32 type() const { return ms_nc_type_of_format(format_, NC_NAT); }

    qint32 size() const { return size_; }
    bool isEmpty() const { return size_ == 0; }

    // Returns number `i`, from 0 to size() - 1. Nothing checks `i`.
    double operator[](qint32 i) const
    {
        return ms_with_format(format_, first_, [i](const auto *numbers) { return double(numbers[i]); });
    }

    Iterator begin() const { return Iterator(*this, 0); }
    Iterator end() const { return Iterator(*this, size_); }

    // Calls `use` once, with the first number as a pointer of the stored type (const qint16 *,
    // const qint32 *, const float * or const double *) and their count. An empty view makes no call.
    // For loops that have to be fast: the format is looked at once. Keep a sum in a local variable of
    // `use`; one that is captured by reference costs more than that saves.
    template <class Use> void visit(Use &&use) const
    {
        if (size_ > 0)
            ms_with_format(format_, first_, [&](const auto *numbers) { use(numbers, size_); });
    }

    // Returns the numbers as a vector of their own.
    std::vector<double> toVector() const
    {
        std::vector<double> numbers;
        visit([&numbers](const auto *first, qint32 count) { numbers.assign(first, first + count); });
        return numbers;
    }

private:
    const void *first_ = nullptr;
    qint32 format_ = MsDoubleFormat;
    qint32 size_ = 0;
};

#endif // MSNUMBERS_H
