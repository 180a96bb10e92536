// The process's heap, of which one allocation by operator new fails at will.
#ifndef FAILINGMEMORY_H
#define FAILINGMEMORY_H

#include <new>

// Makes the n-th allocation from now on fail, counted from 1; 0: none.
void failAllocation(int n);

// Calls `use` while the n-th of its allocations fails. Whether it could do without that one.
template <class Use> bool survivesAllocation(int n, Use use)
{
    failAllocation(n);
    bool survived = true;
    try {
        use();
    } catch (const std::bad_alloc &) {
        survived = false;
    }
    failAllocation(0);
    return survived;
}

#endif // FAILINGMEMORY_H
