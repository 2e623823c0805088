# One program for each test file: a failing build or a crash costs one class family, not all.

file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/framework.cpp "")
add_library(vrad_test_framework OBJECT ${CMAKE_CURRENT_BINARY_DIR}/framework.cpp)
vrad_warnings(vrad_test_framework)
target_compile_options(vrad_test_framework PRIVATE -O0)
target_link_libraries(vrad_test_framework PRIVATE GTest::gmock GTest::gtest)
target_precompile_headers(vrad_test_framework PRIVATE <gmock/gmock.h> <gtest/gtest.h>)

function(vrad_test_program iFile)
  cmake_path(GET iFile STEM name)
  add_executable(${name} ${iFile})
  vrad_warnings(${name})
  # Optimizing a test program takes longer than running it; property tests run long enough to be
  # worth a little. All others share one precompiled header of the test framework.
  if(iFile MATCHES "^properties/")
    target_compile_options(${name} PRIVATE -O1)
  else()
    target_compile_options(${name} PRIVATE -O0)
    target_precompile_headers(${name} REUSE_FROM vrad_test_framework)
  endif()
  target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest_main rapidcheck ${ARGN})
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  add_test(NAME ${name} COMMAND ${name})
  # One seed for all random tests, so that a run can be repeated; RC_PARAMS=seed=N tries another.
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT "RC_PARAMS=seed=20261120")
endfunction()

# Reaches internals: links the objects of the library.
function(vrad_unit_test iFile)
  vrad_test_program(${iFile} vrad_objects ${ARGN})
endfunction()

# Sees what a host sees: links host/ and the shared library.
function(vrad_host_test iFile)
  vrad_test_program(${iFile} vrad_host ${ARGN})
endfunction()

# Sees the shared library alone, as it is shipped.
function(vrad_boundary_test iFile)
  vrad_test_program(${iFile} vrad ${ARGN})
endfunction()

# Marks tests in which threads meet: these run under the thread sanitizer too, where
# vrad_thread_tests is all that is built.
function(vrad_thread_tests)
  foreach(name ${ARGN})
    if(TARGET ${name})
      set_tests_properties(${name} PROPERTIES LABELS threads)
      add_dependencies(vrad_thread_tests ${name})
    endif()
  endforeach()
endfunction()

# Counts what real-time code must not do: see support/realtime_scope.h. A test lists it as a further
# argument. A sanitizer has the functions for itself and leaves only hooks on the heap.
if(VRAD_SANITIZE)
  set(interpose sanitizer)
elseif(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  set(interpose libc)
else()
  set(interpose none)
endif()
add_library(vrad_realtime_harness OBJECT support/realtime_scope.cpp
                                         support/realtime_interpose_${interpose}.cpp)
vrad_warnings(vrad_realtime_harness)
target_include_directories(vrad_realtime_harness PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(vrad_realtime_harness PUBLIC ${CMAKE_DL_LIBS})
