# Debian packages, one for each component: scripts/package makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME effectengine)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "EffectEngine maintainers <maintainers@effectengine.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime host development tools resources documents)
if(EFFECTENGINE_GSTREAMER)
    list(APPEND CPACK_COMPONENTS_ALL gstreamer)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/triggers) # the loader's cache is rebuilt
set(CPACK_DEBIAN_HOST_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/triggers)
# Programs and the host library need libraries of this build; DEPENDS below names their packages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debianFiles.cmake)
set(CPACK_RESOURCE_FILE_CHANGELOG ${PROJECT_SOURCE_DIR}/CHANGELOG.md) # for debianFiles.cmake
set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

# effectengine_package(<component> <name> <section> DESCRIPTION text [DEPENDS text] [ANY])
# Declares the Debian package of one component. Without ANY it is the same for all architectures.
function(effectengine_package component name section)
    cmake_parse_arguments(package "ANY" "DESCRIPTION;DEPENDS" "" ${ARGN})
    string(TOUPPER ${component} key)
    set(prefix CPACK_DEBIAN_${key})
    set(${prefix}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(${prefix}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    set(${prefix}_PACKAGE_DEPENDS "${package_DEPENDS}" PARENT_SCOPE)
    set(${prefix}_PACKAGE_SHLIBDEPS ${package_ANY} PARENT_SCOPE)
    if(NOT package_ANY)
        set(${prefix}_PACKAGE_ARCHITECTURE all PARENT_SCOPE)
    endif()
    set(${prefix}_DESCRIPTION "${package_DESCRIPTION}" PARENT_SCOPE)
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
        RENAME copyright COMPONENT ${component})
endfunction()

# EGL is opened by name while the engine runs, so nothing but these lines knows of it.
effectengine_package(runtime libeffectengine${PROJECT_VERSION_MAJOR} libs ANY
    DEPENDS "effectengine-data ${same_version}, libegl1"
    DESCRIPTION "Image and video effect engine, shared library
Effects are nodes found by GUID, wired into graphs, set by named parameters and
run once per frame. Results are exact to the byte.")
# A library of its own name and version has a package of its own: a host of the engine alone needs no other.
effectengine_package(host libeffectenginehost${PROJECT_VERSION_MAJOR} libs ANY
    DEPENDS "libeffectengine${PROJECT_VERSION_MAJOR} ${same_version}"
    DESCRIPTION "Image and video effect engine, shared library for hosts
Looks: effects, chains and graphs with their parameters over time, run on the
pictures of a program.")
effectengine_package(development libeffectengine-dev libdevel ANY
    DEPENDS "libeffectengine${PROJECT_VERSION_MAJOR} ${same_version}, libeffectenginehost${PROJECT_VERSION_MAJOR} ${same_version}"
    DESCRIPTION "Image and video effect engine, development files
The headers for C and C++, the CMake package and the pkg-config files.")
effectengine_package(tools effectengine graphics ANY
    DEPENDS "libeffectenginehost${PROJECT_VERSION_MAJOR} ${same_version}, libeffectengine${PROJECT_VERSION_MAJOR} ${same_version}"
    DESCRIPTION "Image and video effects on the command line
Puts effects, chains and graphs on pictures, folders and clips, and makes
contact sheets and galleries.")
effectengine_package(gstreamer gstreamer1.0-effectengine video ANY
    DEPENDS "libeffectenginehost${PROJECT_VERSION_MAJOR} ${same_version}"
    DESCRIPTION "Image and video effects for GStreamer
A plug-in with an element for every effect and every transition, and one for
files with chains and graphs of them.")
effectengine_package(resources effectengine-data graphics
    DESCRIPTION "Image and video effect engine, resources
Configuration, descriptors and pictures that the engine is started with.")
effectengine_package(documents effectengine-doc doc
    DESCRIPTION "Image and video effect engine, documents
Guides, examples, and a page for every effect.")

include(CPack)
