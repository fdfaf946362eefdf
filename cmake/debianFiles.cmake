# Adds what Debian wants in the packages beside the installed files; CPack runs it over the staged files of every
# component. Each package gets the changelog, and one of the packaging, which has no changes of its own; changelogs and
# manual pages are compressed. The date is SOURCE_DATE_EPOCH where that is set.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} key)
    set(package ${CPACK_DEBIAN_${key}_PACKAGE_NAME})
    set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
    file(COPY_FILE ${CPACK_RESOURCE_FILE_CHANGELOG} ${share}/doc/${package}/changelog)
    file(WRITE ${share}/doc/${package}/changelog.Debian
        "effectengine (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
        "  * Packages of version ${CPACK_PACKAGE_VERSION}; what changed stands in changelog.gz.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    file(GLOB files ${share}/man/man*/*.[0-9] ${share}/doc/${package}/changelog*)
    execute_process(COMMAND gzip -9n ${files} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
