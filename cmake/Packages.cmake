# Debian packages of the installed components, made by cpack from a build of the preset "package".

option(TQ_PACKAGES "Install what Debian packages have to have, too" OFF)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tq-hbs)
set(CPACK_PACKAGE_CONTACT "The tq_hbs engineers <tq-hbs@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_COMPONENTS_ALL libraries development program tcl python)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Independent of the umask of whoever builds them.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
                                                GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)

# tq_package(<component> <package> <section> <summary> <description> [DEPENDS <component>...]): also
# installs what every package has to have, its copyright and its list of changes.
function(tq_package component package section summary description)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DEPENDS ${ARG_DEPENDS} PARENT_SCOPE)
  set(doc ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES packaging/copyright DESTINATION ${doc} COMPONENT ${component})
  install(FILES ${PROJECT_BINARY_DIR}/changelog.Debian.gz DESTINATION ${doc}
          COMPONENT ${component})
endfunction()

if(TQ_PACKAGES)
  execute_process(COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/packaging/changelog
                  OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.Debian.gz COMMAND_ERROR_IS_FATAL ANY)
  tq_package(libraries libtq-hbs1 libs "${PROJECT_DESCRIPTION} (libraries)"
    "Solves clock trees, configures hard block subsystems and reports their
addresses, writes hardware handoffs, and reads register descriptions.")
  tq_package(development libtq-hbs-dev libdevel "${PROJECT_DESCRIPTION} (headers)"
    "Headers, the CMake package and the pkg-config file to build with tq_hbs."
    DEPENDS libraries)
  tq_package(program hbs electronics "${PROJECT_DESCRIPTION} (program)"
    "The program hbs, which does by hand what the library offers, and the
schemas of the files that it reads and writes."
    DEPENDS libraries)
  tq_package(tcl tcl-tq-hbs interpreters "${PROJECT_DESCRIPTION} (Tcl package)"
    "The Tcl package tq_hbs." DEPENDS libraries)
  tq_package(python python3-tq-hbs python "${PROJECT_DESCRIPTION} (Python package)"
    "The Python package tq_hbs, with type stubs." DEPENDS libraries)
  set(CPACK_DEBIAN_TCL_PACKAGE_DEPENDS "tcl8.6")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.11)")
endif()
include(CPack)
