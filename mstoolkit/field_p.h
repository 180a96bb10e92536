// Private to the toolkit: a field of a record, found by the offset that a table's row has for it.
#ifndef FIELD_P_H
#define FIELD_P_H

#include <cstddef>

template <class T> T &ms_field(void *record, std::size_t offset)
{
    return *reinterpret_cast<T *>(static_cast<char *>(record) + offset);
}

template <class T> const T &ms_field(const void *record, std::size_t offset)
{
    return *reinterpret_cast<const T *>(static_cast<const char *>(record) + offset);
}

#endif // FIELD_P_H
