# CLI11 from the headers of the building system.
if(NOT TARGET CLI11::CLI11)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 INTERFACE ${VRAD_HEADER_LINKS})
endif()
set(CLI11_FOUND TRUE)
