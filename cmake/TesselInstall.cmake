# What `cmake --install` and the packages hold: the library, the stand-in host, the
# headers, the CMake package, the pkg-config files, the client and the examples.
# Each rule names its component; a component is one Debian package.
include(CMakePackageConfigHelpers)

# Everything that is installed, the HTML manual excepted.
add_custom_target(product DEPENDS Tessel TesselHost status_pages)
set(products $<TARGET_FILE:Tessel> $<TARGET_FILE:TesselHost>
    ${PROJECT_BINARY_DIR}/docs/tessel_status.py)
if(TARGET tessel_client)
  add_dependencies(product tessel_client)
  list(APPEND products $<TARGET_FILE:tessel_client>)
endif()
# A build of some targets leaves files out: they are made before anything is installed.
install(CODE "
  foreach(file IN ITEMS ${products})
    if(NOT EXISTS \"\${file}\")
      execute_process(COMMAND \"${CMAKE_COMMAND}\" --build \"${PROJECT_BINARY_DIR}\"
        --config \"$<CONFIG>\" --target product COMMAND_ERROR_IS_FATAL ANY)
      break()
    endif()
  endforeach()" ALL_COMPONENTS)

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
  install(FILES LICENSE
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

include(cmake/TesselDebian.cmake)
