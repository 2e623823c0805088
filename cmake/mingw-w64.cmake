# Builds for 64-bit Windows with MinGW-w64 on another system.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Without these a program needs the compiler's own DLLs beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

# Header-only packages of the building system serve both systems. They are reached through a folder
# of links, since the folder they lie in holds the other system's C headers too.
set(VRAD_SHARED_HEADERS /usr/include CACHE PATH "Where the building system has boost/, CLI/, fmt/")
set(VRAD_HEADER_LINKS ${CMAKE_BINARY_DIR}/shared-headers)
file(MAKE_DIRECTORY ${VRAD_HEADER_LINKS})
foreach(package boost CLI fmt)
  if(EXISTS ${VRAD_SHARED_HEADERS}/${package})
    file(CREATE_LINK ${VRAD_SHARED_HEADERS}/${package} ${VRAD_HEADER_LINKS}/${package} SYMBOLIC)
  endif()
endforeach()
list(APPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/shared-headers)
set(Boost_NO_BOOST_CMAKE ON)
set(Boost_INCLUDE_DIR ${VRAD_HEADER_LINKS} CACHE PATH "Boost's headers")
