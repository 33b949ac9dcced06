# The install tree: five libraries, their public headers, a CMake package, a pkg-config file, hbs.

include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY TQ_LIBRARIES)
if(NOT BUILD_SHARED_LIBS)
  # Shared ones hold copies of what they use of these.
  list(APPEND libraries tq_base tq_input tq_diagnostics tq_xerces)
  get_target_property(needed tq_hbs_objects LINK_LIBRARIES)
  list(REMOVE_ITEM needed tq_rapidjson) # no user needs it to link
  target_link_libraries(tq_hbs PRIVATE ${needed} Threads::Threads)
endif()
install(
  TARGETS ${libraries}
  EXPORT tq_hbsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT libraries NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tq_hbs COMPONENT development)
install(FILES ${TQ_GENERATED_DIR}/tq_export.h ${TQ_GENERATED_DIR}/tq_version.h
              ${TQ_GENERATED_DIR}/tq_workbench_export.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tq_hbs COMPONENT development)
install(DIRECTORY schemas DESTINATION ${CMAKE_INSTALL_DATADIR}/tq_hbs COMPONENT program)
install(TARGETS hbs RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tq_hbs)
install(EXPORT tq_hbsTargets NAMESPACE tq:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/tq_hbsConfig.cmake.in tq_hbsConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(tq_hbsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tq_hbsConfig.cmake
              ${PROJECT_BINARY_DIR}/tq_hbsConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

# Users of static libraries link what those are built on.
if(NOT BUILD_SHARED_LIBS)
  install(FILES cmake/TclTarget.cmake DESTINATION ${package_dir} COMPONENT development)
  set(TQ_STATIC_CFLAGS "-DTQ_STATIC_DEFINE -DTQ_WORKBENCH_STATIC_DEFINE")
  set(TQ_STATIC_LIBS "-ltq_input -ltq_diagnostics -ltq_xerces -ltq_base -lboost_iostreams -lpugixml -lxerces-c -ltcl8.6 -pthread")
endif()
configure_file(cmake/tq_hbs.pc.in tq_hbs.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tq_hbs.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)

# The headers of the reference, which ./run docs makes.
get_property(headers GLOBAL PROPERTY TQ_PUBLIC_HEADERS)
list(JOIN headers "\n" headers)
file(WRITE ${TQ_GENERATED_DIR}/public_headers.txt "${headers}\n")

include(cmake/Packages.cmake)
