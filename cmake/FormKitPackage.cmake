# SPDX-License-Identifier: BSD-3-Clause
# What an installation holds, in four components: runtime (the libraries), development (headers,
# the CMake package, pkg-config files, formkit-mkdb), designer (the Qt Designer plug-in) and
# documentation.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${FORMKIT_PACKAGE})
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Programs and libraries find each other by relative paths, so that an installation may be moved.
file(RELATIVE_PATH libdir_from_bindir
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(FORMKIT_PROGRAM_RPATH $ORIGIN/${libdir_from_bindir})

# Called by formkit_add_library(), whose arguments it reads.
function(formkit_install_library target)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH $ORIGIN)
    install(TARGETS ${target} EXPORT ${FORMKIT_PACKAGE}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
    set(headers ${ARG_SOURCES})
    list(FILTER headers INCLUDE REGEX "\\.h$")
    list(FILTER headers EXCLUDE REGEX "_p\\.h$")
    install(FILES ${headers} ${export_header}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${FORMKIT_PACKAGE}/${ARG_FOLDER}
        COMPONENT development)
    formkit_install_pkgconfig()
    set_property(GLOBAL APPEND PROPERTY FORMKIT_COMPONENTS ${ARG_NAME})
    set_property(GLOBAL APPEND_STRING PROPERTY FORMKIT_COMPONENT_NEEDS
        "set(formkit_${ARG_NAME}_uses ${ARG_USES})
set(formkit_${ARG_NAME}_modules ${ARG_QT})
")
endfunction()

# Called by formkit_install_library(), whose arguments it reads.
function(formkit_install_pkgconfig)
    file(RELATIVE_PATH prefix_from_pc
        ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
    list(TRANSFORM ARG_USES REPLACE "(.+)" "${FORMKIT_PACKAGE}\\1 = ${PROJECT_VERSION}"
        OUTPUT_VARIABLE own_requires)
    list(TRANSFORM ARG_QT REPLACE "(.+)" "${QT}\\1 >= ${QT_MINIMUM}" OUTPUT_VARIABLE qt_requires)
    list(JOIN own_requires ", " own_requires)
    list(JOIN qt_requires ", " qt_requires)
    string(JOIN ", " requires ${own_requires} ${qt_requires})
    set(name ${FORMKIT_PACKAGE}${ARG_NAME})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in
        ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
        DESTINATION ${pkgconfig_dir} COMPONENT development)
endfunction()

# The rest of the installation; called once, when all libraries are known.
function(formkit_install_package)
    get_property(components GLOBAL PROPERTY FORMKIT_COMPONENTS)
    get_property(component_needs GLOBAL PROPERTY FORMKIT_COMPONENT_NEEDS)
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/FormKitConfig.cmake.in
        ${PROJECT_BINARY_DIR}/${FORMKIT_PACKAGE}Config.cmake INSTALL_DESTINATION ${package_dir})
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/${FORMKIT_PACKAGE}ConfigVersion.cmake
        COMPATIBILITY SameMinorVersion)
    install(FILES
        ${PROJECT_BINARY_DIR}/${FORMKIT_PACKAGE}Config.cmake
        ${PROJECT_BINARY_DIR}/${FORMKIT_PACKAGE}ConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)
    install(EXPORT ${FORMKIT_PACKAGE}Targets NAMESPACE FormKit::
        DESTINATION ${package_dir} COMPONENT development)
    formkit_install_documents()
endfunction()

# Pages and examples are in the same places to each other as in the tree, so that the pages' links are
# right. Links to headers lead to the installed headers.
function(formkit_install_documents)
    install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
    install(DIRECTORY docs examples
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation
        REGEX "/examples/CMakeLists\\.txt$" EXCLUDE)
    file(RELATIVE_PATH headers_from_docs ${CMAKE_INSTALL_FULL_DOCDIR}
        ${CMAKE_INSTALL_FULL_INCLUDEDIR}/${FORMKIT_PACKAGE})
    foreach(folder hostapi formkit embeddedhost)
        file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
        file(CREATE_LINK ${headers_from_docs}/${folder} ${PROJECT_BINARY_DIR}/links/${folder}
            SYMBOLIC)
        install(FILES ${PROJECT_BINARY_DIR}/links/${folder}
            DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
    endforeach()
endfunction()
