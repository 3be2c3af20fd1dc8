# The Debian packages, one of each component that TesselInstall.cmake installs.
# `cpack -G DEB` makes them from any build.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessel)
set(CPACK_PACKAGE_VENDOR Tessel)
# Who signs the packages: whoever distributes them sets an address of theirs.
set(TESSEL_MAINTAINER "The Tessel maintainers <maintainers@tessel.example>" CACHE STRING
    "Name and address in the Debian packages")
set(CPACK_PACKAGE_CONTACT "${TESSEL_MAINTAINER}")
# Each package has a summary of its own; this one would stand before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL ${runtime} ${development})
if(TARGET tessel_client)
  list(APPEND CPACK_COMPONENTS_ALL ${client})
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# What Debian wants of a package and no other installation does: compressed pages,
# a changelog and a copyright of its form, the trigger and the symbols of the library.
set(debian_dir ${PROJECT_BINARY_DIR}/debian)
file(WRITE ${debian_dir}/triggers "activate-noawait ldconfig\n")
configure_file(cmake/finish_debian.cmake.in ${debian_dir}/finish.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${debian_dir}/finish.cmake)
string(TOUPPER ${runtime} component)
set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${debian_dir}/triggers ${debian_dir}/symbols)

# package(<name> <section> <summary> <text> [<dependency>])
macro(package name section summary text)
  string(TOUPPER ${name} component)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${summary}\n${text}")
  set(CPACK_DEBIAN_${component}_PACKAGE_DEPENDS "${ARGN}")
endmacro()
set(same_version "${runtime} (= ${PROJECT_VERSION})")
package(${runtime} libs "C interface to the W3C DOM for host runtimes"
  "The library, and the stand-in host for programs without a host runtime\nof their own.")
package(${development} libdevel "C interface to the W3C DOM for host runtimes - development files"
  "Headers, a CMake package, pkg-config files and examples." "${same_version}, libc6-dev")
package(${client} text "Print, check, query and change XML documents"
  "The command-line client of the Tessel library." "${same_version}")
include(CPack)
