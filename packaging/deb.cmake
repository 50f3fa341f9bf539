# Debian packages, one a component.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvex)
set(CPACK_PACKAGE_VENDOR "Korvex")
set(KORVEX_MAINTAINER "Korvex developers <developers@korvex.com>" CACHE STRING
    "Whom the packages name")
set(CPACK_PACKAGE_CONTACT "${KORVEX_MAINTAINER}")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_COMPONENTS_ALL bridge header)

set(CPACK_DEBIAN_BRIDGE_PACKAGE_NAME libkorvex-java)
set(CPACK_DEBIAN_BRIDGE_PACKAGE_SECTION java)
set(CPACK_COMPONENT_BRIDGE_DESCRIPTION "Java interface of the solver Korvex
The classes of com.korvex with their native library, for linear, mixed-integer
and quadratic optimisation. The solver itself, libkorvex130.so, is another
package's: the commercial one or the development solver. JDK 17 or later.")
set(CPACK_DEBIAN_BRIDGE_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_BRIDGE_PACKAGE_RECOMMENDS korvex-development-solver)

set(CPACK_DEBIAN_HEADER_PACKAGE_NAME libkorvex-dev)
set(CPACK_DEBIAN_HEADER_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HEADER_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_HEADER_DESCRIPTION "C interface of the solver Korvex, and its documentation
The header of libkorvex130.so, files for CMake and pkg-config, and the pages of
the Java classes.")

if(KORVEX_DEVELOPMENT_SOLVER)
  list(APPEND CPACK_COMPONENTS_ALL solver)
  set(CPACK_DEBIAN_SOLVER_PACKAGE_NAME korvex-development-solver)
  set(CPACK_DEBIAN_SOLVER_PACKAGE_SECTION libs)
  set(CPACK_COMPONENT_SOLVER_DESCRIPTION "development solver with the interface of Korvex
A small libkorvex130.so over COIN-OR Clp and Cbc, to build and try programs
with. It isn't meant for production.")
  set(CPACK_DEBIAN_SOLVER_PACKAGE_SHLIBDEPS ON)
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_SOLVER_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/triggers)
endif()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

# What each package has to say about itself.
foreach(component bridge header solver)
  string(TOUPPER ${component} upper)
  set(name ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  if(name)
    configure_file(changelog.in ${component}/changelog @ONLY)
    set(changelog ${CMAKE_CURRENT_BINARY_DIR}/${component}/changelog)
    execute_process(COMMAND gzip -9cn ${changelog} OUTPUT_FILE ${changelog}.gz
                    COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${changelog}.gz
                  ${CMAKE_CURRENT_SOURCE_DIR}/copyright
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
  endif()
endforeach()
include(CPack)
