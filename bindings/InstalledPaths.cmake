# Says what is missing for the interpreters to find the installed packages.

function(tq_look_for_package language setting)
  execute_process(COMMAND ${ARGN} ERROR_QUIET OUTPUT_QUIET RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(STATUS "For ${language} to find tq_hbs: ${setting}")
  endif()
endfunction()

if(NOT DEFINED ENV{DESTDIR})
  tq_look_for_package(Tcl "export TCLLIBPATH=${CMAKE_INSTALL_PREFIX}/lib/tcltk" sh -c
                      "echo 'package require tq_hbs' | tclsh8.6 | grep -q ." )
  file(GLOB found ${CMAKE_INSTALL_PREFIX}/lib/python3*/dist-packages/tq_hbs)
  foreach(package IN LISTS found)
    cmake_path(GET package PARENT_PATH packages)
    # A folder left by a removed package can be imported, too, but has nothing in it.
    tq_look_for_package(Python "export PYTHONPATH=${packages}" python3 -c "from tq_hbs import Error")
  endforeach()
endif()
