# SPDX-License-Identifier: BSD-3-Clause
# Each Debian package carries the licence and the changes under its own name.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(folder ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr/share/doc)
    set(folder ${folder}/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    configure_file(${CPACK_FORMKIT_SOURCE_DIR}/LICENSE ${folder}/copyright COPYONLY)
    file(COPY_FILE ${CPACK_FORMKIT_SOURCE_DIR}/CHANGELOG.md ${folder}/changelog)
    execute_process(COMMAND gzip -9nf ${folder}/changelog COMMAND_ERROR_IS_FATAL ANY)
endforeach()
