#!/bin/sh
# check_headers.sh CMAKE BUILD_DIR TREE CXX [alone]
# Compiles the installed headers, with "alone" each by itself: as C++20, and as C++17 all but the
# workbench, those with std::span, and what includes the block model's store of objects.
set -eu
cmake=$1 build=$2 tree=$3 cxx=$4
rm -rf "$tree"
"$cmake" --install "$build" --prefix "$tree" --component development >/dev/null
cd "$tree/include/tq_hbs"
compile="$cxx -fsyntax-only -Wall -Wextra -Werror -x c++ -I. -Iplatform/common -Iplatform/iostreams"
headers=$(find . -name '*.h' | sort)
[ "$(echo "$headers" | wc -l)" -gt 50 ]

newer='^\./(clocking|workbench)/|/HBSRegFileParser\.h|/HABM(|NamedStore|AddrBlock|AddrSpace|Interface|MemoryMap)\.h'
older=$(echo "$headers" | grep -vE "$newer")

status=0
# check STANDARD HEADER...
check() {
    standard=$1
    shift
    printf '#include "%s"\n' "$@" | $compile -std="$standard" - || status=1
}
# The names of headers are meant to be split.
# shellcheck disable=SC2086
check c++17 $older
# shellcheck disable=SC2086
check c++20 $headers
if [ "${5:-}" = alone ]; then
    for header in $headers; do
        standard=c++17
        ! echo "$header" | grep -qE "$newer" || standard=c++20
        check $standard "$header"
    done
fi

# The version that the CMake package tells.
version=$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")/\1/p' "$tree"/lib*/cmake/tq_hbs/tq_hbsConfigVersion.cmake \
    "$tree"/lib*/*/cmake/tq_hbs/tq_hbsConfigVersion.cmake 2>/dev/null | head -n 1)
[ -n "$version" ]
grep -q "^#define TQ_VERSION_STRING \"$version\"" tq_version.h || status=1
exit $status
