# What only a Linux installation has, and the Debian packages: libvornserver1, libvornserver-dev, vornserver,
# python3-vornserver.

set(LIBRARY_PACKAGE libvornserver${PROJECT_VERSION_MAJOR})
set(DEVELOPMENT_PACKAGE libvornserver-dev)
set(PROGRAMS_PACKAGE vornserver)
set(PYTHON_PACKAGE python3-vornserver)

configure_file(cmake/vornserver.pc.in vornserver.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vornserver.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
install(FILES deploy/systemd/vorn-host@.service DESTINATION lib/systemd/system COMPONENT programs)
install(FILES deploy/completion/vorn-host deploy/completion/vorn-send
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT programs)

# Manual pages are compressed, and so is the change log that each package brings, as Debian's rules ask.
find_program(GZIP gzip REQUIRED)
function(vorn_install_compressed source name destination component)
  set(compressed ${PROJECT_BINARY_DIR}/packed/${component}/${name}.gz)
  if(NOT EXISTS ${compressed} OR ${source} IS_NEWER_THAN ${compressed})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packed/${component})
    execute_process(COMMAND ${GZIP} -9nc ${source} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  install(FILES ${compressed} DESTINATION ${destination} COMPONENT ${component})
endfunction()
foreach(page vorn-host vorn-send)
  vorn_install_compressed(${PROJECT_SOURCE_DIR}/deploy/man/${page}.1 ${page}.1 ${CMAKE_INSTALL_MANDIR}/man1 programs)
endforeach()
vorn_install_compressed(${PROJECT_SOURCE_DIR}/deploy/man/vornserver.1 vornserver.1 ${CMAKE_INSTALL_MANDIR}/man1 python)
foreach(part LIBRARY DEVELOPMENT PROGRAMS PYTHON)
  string(TOLOWER ${part} component)
  set(documents ${CMAKE_INSTALL_DATADIR}/doc/${${part}_PACKAGE})
  vorn_install_compressed(${PROJECT_SOURCE_DIR}/deploy/debian/changelog changelog ${documents} ${component})
  install(FILES deploy/debian/copyright DESTINATION ${documents} COMPONENT ${component})
  string(TOUPPER CPACK_DEBIAN_${component}_PACKAGE_NAME name)
  set(${name} ${${part}_PACKAGE})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL library development programs python)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.9)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-networkx, python3-pandas, vornserver")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "shared library of the plant simulation's service layer\nA host program starts its entries and serves projects over HTTP,\na pipe and a serial line.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "files to build host programs with VornServer\nHeaders, and what CMake and pkg-config read.")
set(CPACK_COMPONENT_PROGRAMS_DESCRIPTION
    "plant simulation service as a program of its own\nThe host program with its systemd unit and web console,\nand a sender of commands.")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "client of the plant simulation service for Python and the shell\nMakes, judges and sends plants, runs them and reads their values,\non this machine or behind a proxy.")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS adduser)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SUGGESTS "nodejs (>= 18)")  # for the tool server
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/deploy/debian/triggers)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/deploy/debian/postinst ${PROJECT_SOURCE_DIR}/deploy/debian/prerm
    ${PROJECT_SOURCE_DIR}/deploy/debian/postrm)
