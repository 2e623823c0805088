# Settings that every target of this project shares.

function(vrad_warnings iTarget)
  set(options -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor)
  # g++ 12 takes appending to a short string for a copy onto itself.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${iTarget} PRIVATE -Wno-restrict)
  endif()
  if(VRAD_WERROR)
    list(APPEND options -Werror)
  endif()
  # Reports name source files relative to the source root.
  list(APPEND options -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  if(VRAD_SANITIZE)
    list(APPEND options -fsanitize=${VRAD_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    target_link_options(${iTarget} PRIVATE -fsanitize=${VRAD_SANITIZE})
  endif()
  target_compile_options(${iTarget} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:${options}>")
endfunction()

# What the objects and the shared library made of them have in common.
function(vrad_library_settings iTarget)
  vrad_warnings(${iTarget})
  target_include_directories(${iTarget} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/vrad>)
  target_compile_features(${iTarget} PUBLIC cxx_std_20)
  target_link_libraries(${iTarget} PUBLIC Boost::headers Threads::Threads ${CMAKE_DL_LIBS})
  target_compile_definitions(${iTarget} PRIVATE VRAD_BUILDING)
  set_target_properties(${iTarget} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                                              VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# The folder's part of the library.
function(vrad_sources)
  foreach(name ${ARGN})
    target_sources(vrad_objects PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${name})
  endforeach()
endfunction()
