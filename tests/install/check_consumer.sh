#!/bin/sh
# check_consumer.sh CMAKE BUILD_DIR TREE CXX SANITIZERS
set -eu
cmake=$1 build=$2 tree=$3 cxx=$4 sanitizers=$5
here=$(dirname "$0")
rm -rf "$tree"
"$cmake" --install "$build" --prefix "$tree/prefix" >/dev/null
flags=${sanitizers:+-fsanitize=$sanitizers}

"$cmake" -S "$here/consumer" -B "$tree/build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$tree/prefix" >/dev/null
"$cmake" --build "$tree/build"
"$tree/build/consumer"

libdir=$(find "$tree/prefix" -name tq_hbs.pc -exec dirname {} \;)
export PKG_CONFIG_PATH="$libdir"
# The words of flags and pkg-config are meant to be split.
# shellcheck disable=SC2046,SC2086
"$cxx" -std=c++20 $flags "$here/consumer/consumer.cpp" -o "$tree/consumer" \
    $(pkg-config --cflags --libs tq_hbs) -Wl,-rpath,"$libdir/.."
"$tree/consumer"
"$tree/prefix/bin/hbs" --version
[ -f "$tree/prefix/share/tq_hbs/schemas/handoff.xsd" ]
