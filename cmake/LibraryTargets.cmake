# The targets that the folders fill. The sources of tq_hbs are compiled once, as tq_hbs_objects, so
# that the tests can reach internals without anything more being exported.

set(TQ_GENERATED_DIR ${PROJECT_BINARY_DIR}/generated)

function(tq_add_shared_library target alias)
  add_library(${target} SHARED)
  add_library(tq::${alias} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${alias} VERSION ${PROJECT_VERSION}
                                             SOVERSION ${PROJECT_VERSION_MAJOR})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(
    ${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<BUILD_INTERFACE:${TQ_GENERATED_DIR}>
                     $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tq_hbs>)
  set_property(GLOBAL APPEND PROPERTY TQ_LIBRARIES ${target})
endfunction()

# tq_sources(<library> SOURCES ... HEADERS ...): the folder's sources, and its headers that are
# installed. Headers not named here stay inside the project.
function(tq_sources target)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS" ${ARGN})
  set(compiled ${target})
  if(target STREQUAL tq_hbs)
    set(compiled tq_hbs_objects)
  endif()
  target_sources(${compiled} PRIVATE ${ARG_SOURCES})
  list(TRANSFORM ARG_HEADERS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
                                  ${ARG_HEADERS})
endfunction()

tq_add_shared_library(tq_isl_iostreams isl_iostreams)
tq_add_shared_library(tq_common common)
tq_add_shared_library(tq_blockmodel blockmodel)
tq_add_shared_library(tq_hbs hbs)

# One export macro, TQ_EXPORT, for all four libraries.
generate_export_header(tq_hbs BASE_NAME tq EXPORT_FILE_NAME ${TQ_GENERATED_DIR}/tq_export.h)

add_library(tq_hbs_objects OBJECT)
target_link_libraries(tq_hbs_objects PUBLIC tq::common tq::isl_iostreams tq::blockmodel)
target_link_libraries(tq_hbs PRIVATE tq_hbs_objects PUBLIC tq::common tq::isl_iostreams
                                                           tq::blockmodel)
