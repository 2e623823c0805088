# What is installed, and how other projects find it. Three components: Runtime holds the shared
# library, Tools the command-line tool, Development the rest.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vrad)

install(TARGETS vrad EXPORT vradTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)
install(TARGETS vrad_host EXPORT vradTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)
foreach(header ${VRAD_HEADERS} ${VRAD_HOST_HEADERS})
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vrad/${folder}
          COMPONENT Development)
endforeach()

install(EXPORT vradTargets NAMESPACE vrad:: DESTINATION ${package_dir} COMPONENT Development)
configure_package_config_file(cmake/vradConfig.cmake.in vradConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(vradConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vradConfig.cmake ${PROJECT_BINARY_DIR}/vradConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT Development)

# The .pc file finds its own place, so that an installed tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
           OUTPUT_VARIABLE libdir)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
           OUTPUT_VARIABLE includedir)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
           BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE prefix)
configure_file(cmake/vrad.pc.in vrad.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vrad.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT Development)
