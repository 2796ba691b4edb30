# What every target of the tree shares: warnings, sanitizers, and the shape of a library.
include(GenerateExportHeader)

add_library(formkit_options INTERFACE)
target_compile_options(formkit_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow
    -Wnon-virtual-dtor -Woverloaded-virtual)
target_compile_definitions(formkit_options INTERFACE
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00 QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING)
if(FORMKIT_DEVELOPER)
    target_compile_options(formkit_options INTERFACE -Werror)
endif()
if(FORMKIT_SANITIZE)
    target_compile_options(formkit_options INTERFACE
        -fsanitize=${FORMKIT_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(formkit_options INTERFACE -fsanitize=${FORMKIT_SANITIZE})
endif()

# formkit_add_library(<target> FOLDER <include folder> NAME <exported name> SOURCES <files...>)
# A shared library with a SONAME, hidden visibility, a generated export header
# <FOLDER>/<target>_export.h, and the alias FormKit::<NAME>.
function(formkit_add_library target)
    cmake_parse_arguments(ARG "" "FOLDER;NAME" "SOURCES" ${ARGN})
    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(FormKit::${ARG_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${ARG_NAME}
        OUTPUT_NAME FormKitQt5${ARG_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    set(export_header ${PROJECT_BINARY_DIR}/include/${ARG_FOLDER}/${target}_export.h)
    generate_export_header(${target} EXPORT_FILE_NAME ${export_header})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/FormKitQt5>)
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:formkit_options>)
    # clang leaves the sanitizer runtimes' symbols undefined in shared objects.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT APPLE AND NOT FORMKIT_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    install(TARGETS ${target} EXPORT FormKitQt5Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    set(headers ${ARG_SOURCES})
    list(FILTER headers INCLUDE REGEX "\\.h$")
    list(FILTER headers EXCLUDE REGEX "_p\\.h$")
    install(FILES ${headers} ${export_header}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/FormKitQt5/${ARG_FOLDER})
endfunction()
