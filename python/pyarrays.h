// NumPy arrays from numbers of C++.
#ifndef PYARRAYS_H
#define PYARRAYS_H

#include <pybind11/numpy.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace py = pybind11;

// A block of numbers that becomes an array without a copy.
template <class Number> class ArrayBlock
{
public:
    // Throws std::bad_alloc where there is no memory for so many.
    explicit ArrayBlock(std::size_t most)
        : block_(static_cast<Number *>(std::malloc((most > 0 ? most : 1) * sizeof(Number))))
    {
        if (!block_)
            throw std::bad_alloc();
    }

    Number *data() { return block_.get(); }

    // Makes room for `most`; what is there stays. Throws std::bad_alloc, too.
    void resize(std::size_t most)
    {
        void *larger = std::realloc(block_.get(), most * sizeof(Number));
        if (!larger)
            throw std::bad_alloc();
        static_cast<void>(block_.release());
        block_.reset(static_cast<Number *>(larger));
    }

    // Returns the first `size` of the numbers, and gives back the memory of the others.
    py::array_t<Number> take(std::size_t size)
    {
        Number *block = block_.release();
        if (void *less = std::realloc(block, (size > 0 ? size : 1) * sizeof(Number)))
            block = static_cast<Number *>(less);
        const py::capsule owner(block, [](void *memory) { std::free(memory); });
        return py::array_t<Number>(py::ssize_t(size), block, owner);
    }

private:
    struct Free {
        void operator()(Number *block) const { std::free(block); }
    };

    std::unique_ptr<Number, Free> block_;
};

inline py::array_t<double> arrayOf(const std::vector<double> &numbers)
{
    return py::array_t<double>(py::ssize_t(numbers.size()), numbers.data());
}

// Returns a view of numbers that `owner` keeps; nobody can write to it.
template <class Number> py::array viewOf(const Number *first, py::ssize_t count, const py::object &owner)
{
    py::array_t<Number> view(count, first, owner);
    py::detail::array_proxy(view.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return view;
}

#endif // PYARRAYS_H
