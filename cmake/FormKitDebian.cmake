# SPDX-License-Identifier: BSD-3-Clause
# Debian packages, one for each install component. `cpack -G DEB` in a build folder makes them;
# scripts/packages checks them too.
set(CPACK_PACKAGE_NAME formkit-qt${QT_MAJOR_VERSION})
set(CPACK_PACKAGE_VENDOR "the formkit authors")
set(CPACK_PACKAGE_CONTACT "the formkit authors <formkit@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
    "Controls, editors and selector boxes for order entry, an FTP client, and a host of
reference tables over SQLite.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
get_cmake_property(CPACK_COMPONENTS_ALL COMPONENTS)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/hostapi
    ${PROJECT_BINARY_DIR}/formkit ${PROJECT_BINARY_DIR}/formkit/FtpClient
    ${PROJECT_BINARY_DIR}/formkit/FtpJobs ${PROJECT_BINARY_DIR}/formkit/FtpTls
    ${PROJECT_BINARY_DIR}/embeddedhost)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianDocuments.cmake)
set(CPACK_FORMKIT_SOURCE_DIR ${PROJECT_SOURCE_DIR})

# Debian's names of Qt's packages. Only users of the component State need what is suggested.
if(QT_MAJOR_VERSION EQUAL 5)
    set(qt_headers "qtbase5-dev (>= ${QT_MINIMUM})")
    set(qt_designer qttools5-dev-tools)
else()
    set(qt_headers "qt6-base-dev (>= ${QT_MINIMUM})")
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS qt6-scxml-dev)
    set(qt_designer designer-qt6)
endif()

# The embedded host needs Qt's SQLite driver, which is a plug-in that it is not linked with.
set(package lib${CPACK_PACKAGE_NAME})
set(runtime_package ${package}-${PROJECT_VERSION_MAJOR})
set(same_runtime "${runtime_package} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS libqt${QT_MAJOR_VERSION}sql${QT_MAJOR_VERSION}-sqlite)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${package}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_runtime}, ${qt_headers}")

set(CPACK_DEBIAN_DESIGNER_PACKAGE_NAME ${package}-designer)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DESIGNER_PACKAGE_DEPENDS "${same_runtime}")
set(CPACK_DEBIAN_DESIGNER_PACKAGE_ENHANCES ${qt_designer})

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME ${package}-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SHLIBDEPS OFF)
# The pages link to its headers, and the examples are built with it.
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_RECOMMENDS ${package}-dev)

include(CPack)
