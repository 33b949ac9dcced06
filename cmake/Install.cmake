# The install tree: four libraries, their public headers, a CMake package, a pkg-config file, hbs.

include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY TQ_LIBRARIES)
install(
  TARGETS ${libraries}
  EXPORT tq_hbsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tq_hbs)
install(FILES ${TQ_GENERATED_DIR}/tq_export.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tq_hbs)
install(TARGETS hbs RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tq_hbs)
install(EXPORT tq_hbsTargets NAMESPACE tq:: DESTINATION ${package_dir})
configure_package_config_file(cmake/tq_hbsConfig.cmake.in tq_hbsConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(tq_hbsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tq_hbsConfig.cmake
              ${PROJECT_BINARY_DIR}/tq_hbsConfigVersion.cmake DESTINATION ${package_dir})

configure_file(cmake/tq_hbs.pc.in tq_hbs.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tq_hbs.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
