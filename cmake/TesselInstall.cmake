# What `cmake --install` and the packages hold: the library, the stand-in host, the
# headers, the CMake package, the pkg-config files, the client and the examples.
# Each rule names its component; a component is one Debian package.
include(CMakePackageConfigHelpers)

set(runtime libtessel${PROJECT_VERSION_MAJOR})
set(development libtessel-dev)
set(client tessel)

install(TARGETS Tessel TesselHost EXPORT TesselTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT ${runtime} NAMELINK_COMPONENT ${development}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/tessel standin/include/tessel
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${development}
  FILES_MATCHING PATTERN *.h)

# -- CMake package -------------------------------------------------------------
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Tessel)
install(EXPORT TesselTargets FILE TesselConfig.cmake NAMESPACE Tessel::
  DESTINATION ${package_dir} COMPONENT ${development})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TesselConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TesselConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT ${development})

# -- pkg-config ----------------------------------------------------------------
# Written while installing, when the prefix is known.
configure_file(cmake/install_pkgconfig.cmake.in ${PROJECT_BINARY_DIR}/install_pkgconfig.cmake @ONLY)
install(SCRIPT ${PROJECT_BINARY_DIR}/install_pkgconfig.cmake COMPONENT ${development})

# -- Client --------------------------------------------------------------------
if(TARGET tessel_client)
  # Found wherever the prefix is. A package of the system has no need of it and
  # sets CMAKE_SKIP_INSTALL_RPATH.
  if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set(library_dir ${CMAKE_INSTALL_LIBDIR})
  else()
    file(RELATIVE_PATH library_dir /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    string(PREPEND library_dir $ORIGIN/)
  endif()
  set_target_properties(tessel_client PROPERTIES INSTALL_RPATH ${library_dir})
  install(TARGETS tessel_client RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${client})
  install(FILES docs/tessel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${client})
  install(FILES tools/completion.bash RENAME tessel
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT ${client})
endif()

# -- Documents -----------------------------------------------------------------
foreach(component ${runtime} ${development} ${client})
  install(FILES LICENSE RENAME copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${component} COMPONENT ${component})
endforeach()
set(document_dir ${CMAKE_INSTALL_DATADIR}/doc/${development})
install(FILES CHANGELOG.md DESTINATION ${document_dir} COMPONENT ${development})
install(DIRECTORY examples/c examples/data examples/python
  DESTINATION ${document_dir}/examples COMPONENT ${development}
  PATTERN __pycache__ EXCLUDE)
install(FILES ${PROJECT_BINARY_DIR}/docs/tessel_status.py
  DESTINATION ${document_dir}/examples/python COMPONENT ${development})
# There when the target `manual` was built.
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html
  DESTINATION ${document_dir} COMPONENT ${development} OPTIONAL)

# -- Debian packages -----------------------------------------------------------
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessel)
set(CPACK_PACKAGE_VENDOR Tessel)
set(CPACK_PACKAGE_CONTACT "The Tessel maintainers")
# Each package has a summary of its own; this one would stand before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
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

# package(<name> <section> <summary> <text> [<dependency>])
macro(package name section summary text)
  string(TOUPPER ${name} component)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${summary}\n${text}")
  set(CPACK_DEBIAN_${component}_PACKAGE_DEPENDS "${ARGN}")
endmacro()
set(same_version "${runtime} (= ${PROJECT_VERSION})")
package(${runtime} libs "${PROJECT_DESCRIPTION}"
  "The library, and the stand-in host for programs without a host runtime of their own.")
package(${development} libdevel "${PROJECT_DESCRIPTION} - development files"
  "Headers, a CMake package, pkg-config files and examples." "${same_version}, libc6-dev")
package(${client} text "Print, check, query and change XML documents"
  "The command-line client of the Tessel library." "${same_version}")
include(CPack)
