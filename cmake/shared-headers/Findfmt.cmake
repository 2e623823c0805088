# fmt from the headers of the building system, whose compiled half is for that system alone.
if(NOT TARGET fmt::fmt)
  add_library(fmt::fmt INTERFACE IMPORTED)
  target_include_directories(fmt::fmt INTERFACE ${VRAD_HEADER_LINKS})
  target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
endif()
set(fmt_FOUND TRUE)
