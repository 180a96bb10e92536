# What cpack makes: Debian packages of the programs and all that they need, of the toolkit for other
# programs, and of the viewer and the Python package where they are built.
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_CONTACT "AIA MS maintainers <maintainers@localhost>" CACHE STRING
    "Maintainer of the packages: Name <address>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The host's libraries, which packages of this project get from the first one of them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_COMPONENTS_ALL)

# debian_package(COMPONENT NAME name SECTION section SUMMARY text DESCRIPTION text [DEPENDS package...])
function(debian_package component)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME;SECTION;SUMMARY;DESCRIPTION" "DEPENDS")
    string(TOUPPER ${component} key)
    list(JOIN arg_DEPENDS ", " depends)
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${arg_NAME} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${arg_SECTION} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_DESCRIPTION "${arg_SUMMARY}\n${arg_DESCRIPTION}" PARENT_SCOPE)
endfunction()

set(this_version "aia-ms (= ${PROJECT_VERSION})")
debian_package(programs
    NAME aia-ms SECTION science
    SUMMARY "programs for GC-MS and GCxGC-MS runs in AIA MS files"
    DESCRIPTION "Imports runs from netCDF files of the AIA MS template, shows what is in them, makes samples, \
and converts runs and libraries to and from mzML and other formats. With the import plugin and stand-ins for \
the libraries of its host.")
debian_package(development
    NAME aia-ms-dev SECTION libdevel
    DEPENDS ${this_version} qtbase5-dev libnetcdf-dev libkissfft-dev pkg-config
    SUMMARY "toolkit to read and write AIA MS files"
    DESCRIPTION "Headers, static libraries and a CMake package, for programs in C++17.")
if(AIA_VIEW)
    debian_package(view
        NAME aia-view SECTION science
        DEPENDS ${this_version}
        SUMMARY "viewer of runs and libraries in AIA MS files"
        DESCRIPTION "Shows traces, spectra, maps of GCxGC runs, and what a file says. It draws with QCustomPlot, \
so it is under the GPL, version 3.")
endif()
if(AIA_PYTHON)
    debian_package(aiams
        NAME python3-aiams SECTION python
        DEPENDS ${this_version} "python3 (>= 3.11)" "python3 (<< 3.12)" python3-numpy # it is built for 3.11
        SUMMARY "runs in AIA MS files as NumPy arrays"
        DESCRIPTION "Reads runs and libraries with judgement, and writes them.")
endif()

# The book that comes with the programs.
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/aia-ms)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/aia-ms)

include(CPack)
