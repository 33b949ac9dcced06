# The target tq_tcl. Installed beside the CMake package of static libraries, whose users link Tcl.
# Not FindTCL: that one fails where Tk isn't installed too.
find_path(TQ_TCL_INCLUDE_DIR tcl.h PATH_SUFFIXES tcl8.6 REQUIRED)
find_library(TQ_TCL_LIBRARY tcl8.6 REQUIRED)
if(NOT TARGET tq_tcl)
  add_library(tq_tcl INTERFACE IMPORTED GLOBAL)
  target_include_directories(tq_tcl INTERFACE ${TQ_TCL_INCLUDE_DIR})
  target_link_libraries(tq_tcl INTERFACE ${TQ_TCL_LIBRARY})
endif()
