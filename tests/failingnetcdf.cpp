#include "failingnetcdf.h"

#include <cstddef>
#include <cstring>
#include <dlfcn.h>

NetcdfCalls netcdfCalls;

namespace {

bool failsNow(const char *name)
{
    if (++netcdfCalls.made != netcdfCalls.failing)
        return false;
    if (netcdfCalls.before) {
        netcdfCalls.before();
        return false;
    }
    netcdfCalls.failed = name;
    return true;
}

template <class Function> Function *library(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

constexpr int refused = -1;  // of the older interface
constexpr int anError = -31; // a status of the current one

} // namespace

// The types are those of netcdf.h, which isn't included: its attributes would have to be repeated.
#define PASS_ON(name, failure, parameters, arguments)                                                                  \
    extern "C" int name parameters                                                                                     \
    {                                                                                                                  \
        static auto *const real = library<int parameters>(#name);                                                      \
        return failsNow(#name) ? failure : real arguments;                                                             \
    }

using Size = std::size_t;

PASS_ON(ncopen, refused, (const char *path, int mode), (path, mode))
PASS_ON(nccreate, refused, (const char *path, int mode), (path, mode))
PASS_ON(ncredef, refused, (int id), (id))
PASS_ON(ncendef, refused, (int id), (id))
PASS_ON(ncdimdef, refused, (int id, const char *name, long size), (id, name, size))
PASS_ON(ncdimid, refused, (int id, const char *name), (id, name))
PASS_ON(ncvardef, refused, (int id, const char *name, int type, int rank, const int *d), (id, name, type, rank, d))
PASS_ON(ncvarid, refused, (int id, const char *name), (id, name))
PASS_ON(ncvarinq, refused, (int id, int var, char *name, int *type, int *rank, int *dims, int *atts),
        (id, var, name, type, rank, dims, atts))
PASS_ON(ncvarput, refused, (int id, int var, const long *at, const long *n, const void *from), (id, var, at, n, from))
PASS_ON(ncvarput1, refused, (int id, int var, const long *at, const void *from), (id, var, at, from))
PASS_ON(ncattget, refused, (int id, int var, const char *name, void *to), (id, var, name, to))
PASS_ON(ncattput, refused, (int id, int var, const char *name, int type, int length, const void *from),
        (id, var, name, type, length, from))
PASS_ON(nc_inq, anError, (int id, int *dims, int *vars, int *atts, int *unlimited), (id, dims, vars, atts, unlimited))
PASS_ON(nc_inq_dim, anError, (int id, int dim, char *name, Size *length), (id, dim, name, length))
PASS_ON(nc_inq_var, anError, (int id, int var, char *name, int *type, int *rank, int *dims, int *atts),
        (id, var, name, type, rank, dims, atts))
PASS_ON(nc_inq_att, anError, (int id, int var, const char *name, int *type, Size *n), (id, var, name, type, n))
PASS_ON(nc_inq_dimid, anError, (int id, const char *name, int *dim), (id, name, dim))
PASS_ON(nc_inq_dimlen, anError, (int id, int dim, Size *length), (id, dim, length))
PASS_ON(nc_inq_vardimid, anError, (int id, int var, int *dims), (id, var, dims))

#define PASS_ON_VARA(name, type)                                                                                       \
    PASS_ON(name, anError, (int id, int var, const Size *start, const Size *count, type *to),                          \
            (id, var, start, count, to))

PASS_ON_VARA(nc_get_vara, void)
PASS_ON_VARA(nc_get_vara_short, short)
PASS_ON_VARA(nc_get_vara_int, int)
PASS_ON_VARA(nc_get_vara_float, float)
PASS_ON_VARA(nc_get_vara_double, double)

// A failing close closes all the same, as the library's does.
extern "C" int ncclose(int id)
{
    static auto *const real = library<int(int)>("ncclose");
    const int status = real(id);
    return failsNow("ncclose") ? refused : status;
}
