# What only an archive for Windows has: VornServer-VERSION-windows-x64.zip, which runs from any folder.

set(documents ${CMAKE_INSTALL_DATADIR}/vornserver)
install(FILES README.md CHANGELOG.md SECURITY.md DESTINATION ${documents})
if(MINGW)
  install(FILES ${PROJECT_BINARY_DIR}/lib/VornServer.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY docs/images DESTINATION ${documents}/docs)
# The notices of what became part of the library, where the machine's packages have them.
foreach(package rapidjson-dev libcpp-httplib-dev liblua5.4-dev libcli11-dev libutfcpp-dev libeigen3-dev
        gcc-mingw-w64-base mingw-w64-common)
  install(FILES /usr/share/doc/${package}/copyright DESTINATION ${documents}/notices RENAME ${package}.txt OPTIONAL)
endforeach()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME VornServer-${PROJECT_VERSION}-windows-x64)
