# SPDX-License-Identifier: BSD-3-Clause
# What every target of the tree shares: warnings, sanitizers, and the shape of a library.
include(GenerateExportHeader)

add_library(formkit_options INTERFACE)
target_compile_options(formkit_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow
    -Wnon-virtual-dtor -Woverloaded-virtual
    # Qt's own macros for categories of messages.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
target_compile_definitions(formkit_options INTERFACE
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00 QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING)
if(FORMKIT_DEVELOPER)
    target_compile_options(formkit_options INTERFACE -Werror)
endif()
if(FORMKIT_SANITIZE)
    target_compile_options(formkit_options INTERFACE
        -fsanitize=${FORMKIT_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(formkit_options INTERFACE -fsanitize=${FORMKIT_SANITIZE})
endif()

# clang-tidy reads the settings that are nearest to a file. These are for what moc and uic write.
if(CMAKE_CXX_CLANG_TIDY)
    file(WRITE ${PROJECT_BINARY_DIR}/.clang-tidy "Checks: '-*,misc-definitions-in-headers'\n")
endif()

# formkit_add_library(<target> FOLDER <include folder> NAME <exported name> DESCRIPTION <text>
#     [USES <exported names>] QT <modules> SOURCES <files>)
# A shared library with a SONAME, hidden visibility, a generated export header
# <FOLDER>/<target>_export.h, the alias FormKit::<NAME> and a pkg-config file. USES and QT name the
# libraries of this package and of Qt whose headers its headers include: they are linked publicly, and
# its users need them too. All others are linked privately.
function(formkit_add_library target)
    cmake_parse_arguments(ARG "" "FOLDER;NAME;DESCRIPTION" "USES;QT;SOURCES" ${ARGN})
    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(FormKit::${ARG_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${ARG_NAME}
        OUTPUT_NAME ${FORMKIT_PACKAGE}${ARG_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    set(export_header ${PROJECT_BINARY_DIR}/include/${ARG_FOLDER}/${target}_export.h)
    generate_export_header(${target} EXPORT_FILE_NAME ${export_header})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${FORMKIT_PACKAGE}>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    # As strict as programs that include the headers may be.
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_STRICT_ITERATORS)
    list(TRANSFORM ARG_USES PREPEND FormKit:: OUTPUT_VARIABLE own_targets)
    list(TRANSFORM ARG_QT PREPEND ${QT}:: OUTPUT_VARIABLE qt_targets)
    target_link_libraries(${target}
        PUBLIC ${own_targets} ${qt_targets}
        PRIVATE $<BUILD_INTERFACE:formkit_options>)
    # A program may have its own classes ComboBox, Label or Table: the libraries go on calling theirs.
    # Their users must be compiled with -fPIC, which Qt's targets ask for too.
    if(NOT APPLE)
        target_link_options(${target} PRIVATE -Wl,-Bsymbolic)
    endif()
    # clang leaves the sanitizer runtimes' symbols undefined in shared objects.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT APPLE AND NOT FORMKIT_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    formkit_install_library(${target})
endfunction()
