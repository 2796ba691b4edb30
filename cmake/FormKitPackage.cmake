# The CMake package FormKitQt5: find_package(FormKitQt5) gives the FormKit:: targets.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/FormKitQt5)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/FormKitQt5Config.cmake.in
    ${PROJECT_BINARY_DIR}/FormKitQt5Config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/FormKitQt5ConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/FormKitQt5Config.cmake
    ${PROJECT_BINARY_DIR}/FormKitQt5ConfigVersion.cmake
    DESTINATION ${package_dir})
install(EXPORT FormKitQt5Targets NAMESPACE FormKit:: DESTINATION ${package_dir})
