// Loops over many numbers, with the widest vectors that the processor has. Not installed.
//
// A program for all processors of a kind uses the vectors that the oldest of them had. Where the compiler
// can, a routine here is compiled twice, for those and for the wider ones of most processors today
// (AVX2). Which one runs is decided when it is called. Both compute the same to the last bit: they differ
// in how many numbers an instruction takes, and neither joins a product and a sum into one step.
#ifndef WIDEVECTORS_P_H
#define WIDEVECTORS_P_H

#include <type_traits>
#include <utility>

#if defined(__GNUC__) && defined(__x86_64__) && !defined(MS_PLAIN_VECTORS)
#define MS_HAS_WIDE_VECTORS 1
#else
#define MS_HAS_WIDE_VECTORS 0
#endif

#if MS_HAS_WIDE_VECTORS
// Everything that is called is compiled as a part of it, or it wouldn't get these instructions.
template <class Loops>
__attribute__((target("avx2"), flatten, noinline)) auto ms_run_with_avx2(Loops &&loops)
{
    return loops(std::true_type());
}
#endif

// Calls `loops` once and returns what it returns. It is a callable whose argument, std::true_type or
// std::false_type, says whether its vectors are wide and whether they can have their bytes turned.
template <class Loops> auto ms_with_widest_vectors(Loops &&loops)
{
#if MS_HAS_WIDE_VECTORS
    if (__builtin_cpu_supports("avx2"))
        return ms_run_with_avx2(std::forward<Loops>(loops));
#endif
    return loops(std::false_type());
}

#endif // WIDEVECTORS_P_H
