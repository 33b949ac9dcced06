# Everything comes from Debian packages; ./run installs them by name.

find_package(Threads REQUIRED)
find_package(RapidJSON REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS iostreams)
find_package(pugixml REQUIRED)
find_package(XercesC 3.2 REQUIRED)
find_package(CLI11 REQUIRED)
# Header-only; ./run unpacks it below build/deps where the system hasn't got it.
list(APPEND CMAKE_PREFIX_PATH ${PROJECT_SOURCE_DIR}/build/deps/usr)
find_package(Taskflow 3.9 QUIET)
if(NOT Taskflow_FOUND)
  message(FATAL_ERROR "The Taskflow headers (3.9 or newer) weren't found. \"./run test\" fetches them to "
                      "build/deps and installs everything else that is missing; or give their place with "
                      "-DTaskflow_DIR=DIR.")
endif()

add_library(tq_rapidjson INTERFACE)
target_include_directories(tq_rapidjson SYSTEM INTERFACE ${RapidJSON_INCLUDE_DIRS} ${RAPIDJSON_INCLUDE_DIRS})

include(cmake/TclTarget.cmake)
