# The host's own headers and libraries, from the folder DORVANE_SDK, under the names that platform/ gives
# to its stand-ins. A library's headers lie in include/ or in a folder of the library's name there.

# sdk_library(NAME HEADER header LIBRARIES library...)
function(sdk_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "HEADER" "LIBRARIES")
    set(library Hsk.Dorvane.${name})
    # Not kept in the cache, where they would outlive a change of DORVANE_SDK.
    find_library(file ${library} PATHS ${DORVANE_SDK} PATH_SUFFIXES ${CMAKE_INSTALL_LIBDIR} lib
        NO_DEFAULT_PATH NO_CACHE REQUIRED)
    find_path(headers ${arg_HEADER} PATHS ${DORVANE_SDK}/include PATH_SUFFIXES ${library}
        NO_DEFAULT_PATH NO_CACHE REQUIRED)
    add_library(Dorvane::${name} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(Dorvane::${name} PROPERTIES
        IMPORTED_LOCATION ${file}
        INTERFACE_INCLUDE_DIRECTORIES ${headers}
        INTERFACE_LINK_LIBRARIES "Qt5::Core;${arg_LIBRARIES}")
endfunction()

sdk_library(Logger HEADER messageloggerinterface.h)
sdk_library(Maths HEADER tmath.h)
sdk_library(IO HEADER dvheader.h)
sdk_library(Import HEADER dvimportanalysisinterface.h LIBRARIES Dorvane::IO Dorvane::Logger)
