# Checks of the project itself: floors, headers, layout, what is shipped.

# Each installed header is compiled alone, and twice in one file.
set(header_sources)
foreach(header ${VRAD_HEADERS} ${VRAD_HOST_HEADERS})
  set(source ${CMAKE_CURRENT_BINARY_DIR}/headers/${header}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n#include \"${header}\"\n")
  list(APPEND header_sources ${source})
endforeach()
if(NOT VRAD_SANITIZE)
  add_library(vrad_headers_compile OBJECT ${header_sources})
  vrad_warnings(vrad_headers_compile)
  target_link_libraries(vrad_headers_compile PRIVATE vrad_host)
endif()

# Checks that read sources or the shipped library give the same answer under every sanitizer.
if(VRAD_SANITIZE)
  return()
endif()

find_program(VRAD_CLANG_FORMAT NAMES clang-format-14 clang-format)
find_program(VRAD_PKG_CONFIG NAMES pkg-config)

set(house ${CMAKE_CURRENT_SOURCE_DIR}/house)
add_test(NAME floors COMMAND ${VRAD_PYTHON} ${house}/floors.py ${PROJECT_SOURCE_DIR}
                             ${PROJECT_BINARY_DIR}/installed_headers.txt)
add_test(NAME floors_self_test COMMAND ${VRAD_PYTHON} ${house}/floors.py --self-test)
add_test(NAME quotes COMMAND ${VRAD_PYTHON} ${house}/quotes.py ${PROJECT_SOURCE_DIR} README.md
                             docs/format.md docs/project-format.md)
add_test(NAME exported_symbols COMMAND ${VRAD_PYTHON} ${house}/exported_symbols.py
                                       ${CMAKE_NM} $<TARGET_FILE:vrad>)
if(VRAD_CLANG_FORMAT)
  add_test(NAME layout COMMAND ${house}/layout.sh ${VRAD_CLANG_FORMAT}
           WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
endif()

# A stranger's project: installed afresh, found by CMake and by pkg-config, built and run.
add_test(NAME consumer_cmake COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/consumer/with_cmake.sh
         ${CMAKE_COMMAND} ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER} ${PROJECT_VERSION})
if(VRAD_PKG_CONFIG)
  add_test(NAME consumer_pkg_config COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/consumer/with_pkg_config.sh
           ${CMAKE_COMMAND} ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER} ${PROJECT_VERSION})
endif()
