#!/bin/sh
# check_run.sh SOURCE_DIR: what ./run answers when it can't do what it was asked for.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$1/run" "$work/run"
cd "$work"
fail() {
    echo "failed: $*"
    cat out err
    exit 1
}

status=0
./run tset >out 2>err || status=$?
[ $status = 2 ] && [ ! -s out ] && grep -q '^./run test ' err || fail "an unknown word"
./run >out 2>err && grep -q '^./run test ' out || fail "no word"

# Programs in front of the system's, so that nothing is installed or built.
stub() { printf '#!/bin/sh\n%s\n' "$2" >"stubs/$1" && chmod +x "stubs/$1"; }
mkdir stubs
stub id 'echo 1000'
stub dpkg-query 'exit 1'
for tool in dirname cat grep; do ln -s "$(command -v $tool)" stubs/$tool; done
status=0
PATH=$work/stubs ./run test >out 2>err || status=$?
[ $status = 1 ] && grep -q 'rapidjson-dev' err || fail "packages that can't be installed"

command -v git >/dev/null || exit 0
git init -q .
mkdir -p build/deps/usr/include/taskflow
touch build/deps/usr/include/taskflow/taskflow.hpp
stub dpkg-query 'echo installed'
stub clang-format 'exit 0'
stub cmake 'echo "went on to build"; exit 7'
echo 'bool isEnd() { return it == value.MemberEnd(); }' >bad.cpp
git add bad.cpp
status=0
PATH=$work/stubs:$PATH ./run check >out 2>err || status=$?
[ $status != 0 ] && ! grep -q 'went on to build' out || fail "a comparison of RapidJSON values"
