# Everything comes from Debian packages; ./run installs them by name.

find_package(Threads REQUIRED)
find_package(RapidJSON REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS iostreams)
find_package(pugixml REQUIRED)
find_package(XercesC 3.2 REQUIRED)
find_package(CLI11 REQUIRED)
# Header-only; ./run unpacks it below build/deps where the system hasn't got it.
list(APPEND CMAKE_PREFIX_PATH ${PROJECT_SOURCE_DIR}/build/deps/usr)
find_package(Taskflow 3.9 REQUIRED)

add_library(tq_rapidjson INTERFACE)
target_include_directories(tq_rapidjson SYSTEM INTERFACE ${RapidJSON_INCLUDE_DIRS} ${RAPIDJSON_INCLUDE_DIRS})

# Not FindTCL: that one fails where Tk isn't installed too.
find_path(TQ_TCL_INCLUDE_DIR tcl.h PATH_SUFFIXES tcl8.6 REQUIRED)
find_library(TQ_TCL_LIBRARY tcl8.6 REQUIRED)
add_library(tq_tcl INTERFACE)
target_include_directories(tq_tcl SYSTEM INTERFACE ${TQ_TCL_INCLUDE_DIR})
target_link_libraries(tq_tcl INTERFACE ${TQ_TCL_LIBRARY})
