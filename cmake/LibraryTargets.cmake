# The targets that the folders fill. The sources of tq_hbs are compiled once, as tq_hbs_objects, so
# that the tests can reach internals without anything more being exported.

set(TQ_GENERATED_DIR ${PROJECT_BINARY_DIR}/generated)

option(BUILD_SHARED_LIBS "Build shared libraries, not static ones" ON)

# tq_limit_exports(<library> <name>...): exports only what starts with one of the names, with its
# type information and tables. Instances of other libraries' templates would be exported too, and a
# process binds all uses of a name to one of them: a host's threads could run our code, and ours its.
function(tq_limit_exports target)
  # A linker script has no blanks in a pattern; "?" is any one character.
  set(kinds "" typeinfo?for? typeinfo?name?for? vtable?for? VTT?for? guard?variable?for?
            virtual?thunk?to? non-virtual?thunk?to?)
  foreach(name IN LISTS ARGN)
    foreach(kind IN LISTS kinds)
      string(APPEND patterns "    ${kind}${name}*;\n")
    endforeach()
  endforeach()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  file(CONFIGURE OUTPUT ${script} CONTENT "{
  global: extern \"C++\" {
${patterns}  };
  local: *;
};
" @ONLY)
  target_link_options(${target} PRIVATE -Wl,--version-script=${script})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()

# tq_add_library(<target> <alias> <name>...): a library, installed and exported as tq::<alias>, and
# the beginnings of the names that it exports.
function(tq_add_library target alias)
  add_library(${target})
  add_library(tq::${alias} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${alias} VERSION ${PROJECT_VERSION}
                                             SOVERSION ${PROJECT_VERSION_MAJOR})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(
    ${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<BUILD_INTERFACE:${TQ_GENERATED_DIR}>
                     $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tq_hbs>)
  set_property(GLOBAL APPEND PROPERTY TQ_LIBRARIES ${target})
  if(BUILD_SHARED_LIBS)
    tq_limit_exports(${target} ${ARGN})
  else()
    target_compile_definitions(${target} PUBLIC TQ_STATIC_DEFINE TQ_WORKBENCH_STATIC_DEFINE)
  endif()
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
  set_property(GLOBAL APPEND PROPERTY TQ_PUBLIC_HEADERS ${ARG_HEADERS})
endfunction()

tq_add_library(tq_isl_iostreams isl_iostreams isl::)
tq_add_library(tq_common common ComMsg HAT HCRapidJson HEX HPA HST HTC HUT HXMLW hdi::)
tq_add_library(tq_blockmodel blockmodel HABM)
tq_add_library(tq_hbs hbs HBS hardblock:: hbs:: hbs_clocking:: hdi::)
tq_add_library(tq_hbs_workbench hbs_workbench tq::)

# One export macro, TQ_EXPORT, for the four libraries below the workbench, which has its own.
generate_export_header(tq_hbs BASE_NAME tq EXPORT_FILE_NAME ${TQ_GENERATED_DIR}/tq_export.h)
generate_export_header(tq_hbs_workbench BASE_NAME tq_workbench
                       EXPORT_FILE_NAME ${TQ_GENERATED_DIR}/tq_workbench_export.h)
configure_file(cmake/tq_version.h.in ${TQ_GENERATED_DIR}/tq_version.h @ONLY)

add_library(tq_hbs_objects OBJECT)
target_link_libraries(tq_hbs_objects PUBLIC tq_input tq::common tq::isl_iostreams tq::blockmodel)
target_link_libraries(tq_hbs PUBLIC tq::common tq::isl_iostreams tq::blockmodel)
if(BUILD_SHARED_LIBS)
  target_link_libraries(tq_hbs PRIVATE tq_hbs_objects)
else()
  # Linked, the objects would be a library of their own to install.
  target_sources(tq_hbs PRIVATE $<TARGET_OBJECTS:tq_hbs_objects>)
endif()
