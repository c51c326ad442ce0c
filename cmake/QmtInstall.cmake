# Installs the libraries, their headers and a CMake package, which may all be moved together afterwards.

include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/qmtutilu)
install(TARGETS qmtgenu qmtutilu EXPORT qmtutiluTargets)
if(QMT_RUNTIME_LIBRARIES)
    install(FILES ${QMT_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/qmt
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h")
install(EXPORT qmtutiluTargets NAMESPACE QMT:: DESTINATION ${packageDir})

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/qmtutiluConfig.cmake.in
    ${PROJECT_BINARY_DIR}/qmtutiluConfig.cmake
    INSTALL_DESTINATION ${packageDir}
    NO_SET_AND_CHECK_MACRO)
# Below 1.0.0 a new minor version may break the binary interface: docs/abi.md.
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/qmtutiluConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/qmtutiluConfig.cmake
    ${PROJECT_BINARY_DIR}/qmtutiluConfigVersion.cmake
    DESTINATION ${packageDir})
