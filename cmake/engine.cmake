# The closed libraries in the folder VORN_ENGINE_DIR as one target, vorn_engine. They are looked for anew at each
# configuration, so that another folder takes effect in a build folder that knows one already.
add_library(vorn_engine INTERFACE)
foreach(name VornCore VornVar VornChartCache)
  unset(found)
  find_library(found ${name} PATHS "${VORN_ENGINE_DIR}" "${VORN_ENGINE_DIR}/lib" NO_DEFAULT_PATH NO_CACHE)
  if(NOT found)
    message(FATAL_ERROR "VORN_ENGINE_DIR: no library ${name} in ${VORN_ENGINE_DIR} or its folder lib")
  endif()
  target_link_libraries(vorn_engine INTERFACE "${found}")
endforeach()
message(STATUS "Engine: the closed libraries of ${VORN_ENGINE_DIR}")

# What they lack is named when the library is linked, not when a client first asks for it. A sanitizer's own
# operations come with the program.
if(NOT WIN32 AND NOT VORN_SANITIZE)
  target_link_options(vorn_engine INTERFACE LINKER:--no-undefined)
endif()
