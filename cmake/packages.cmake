# What is installed, in three parts: the library, what programs are built with, and the programs; and the
# packages made of them. `scripts/package.sh` makes all packages.

install(TARGETS VornServer EXPORT VornServerTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(FILES include/vorn_server.h include/vorn_contract.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)
install(EXPORT VornServerTargets NAMESPACE VornServer:: FILE VornServerConfig.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VornServer COMPONENT development)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(VornServerConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VornServerConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VornServer COMPONENT development)

install(TARGETS vorn-host vorn-send RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vornserver/examples COMPONENT programs
        PATTERN make_plant EXCLUDE)

set(CPACK_PACKAGE_NAME VornServer)
set(CPACK_PACKAGE_VENDOR "VornServer")
set(CPACK_PACKAGE_CONTACT "VornServer maintainers <maintainers@vornserver.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "service layer of a building-plant simulation platform")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)

if(WIN32)
  include(cmake/package_zip.cmake OPTIONAL)
else()
  include(cmake/package_linux.cmake)
endif()
include(CPack)
