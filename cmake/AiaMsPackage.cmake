# Installs the toolkit and a CMake package for programs that use it.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/AiaMs)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/AiaMsConfig.cmake.in
    ${PROJECT_BINARY_DIR}/AiaMsConfig.cmake
    INSTALL_DESTINATION ${package_dir}
    PATH_VARS AIA_PLUGIN_DIR
    NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/AiaMsConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/AiaMsConfig.cmake ${PROJECT_BINARY_DIR}/AiaMsConfigVersion.cmake
    DESTINATION ${package_dir})

install(TARGETS mstoolkit EXPORT AiaMsTargets FILE_SET HEADERS)
install(EXPORT AiaMsTargets NAMESPACE AiaMs:: DESTINATION ${package_dir})
