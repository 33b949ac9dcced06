#!/bin/sh
# check_readme.sh SOURCE_DIR BIN_DIR SCRIPTS
# With SCRIPTS "no" what needs the Tcl and Python packages is left out: under sanitizers the
# interpreters need a runtime that they aren't made with.
# Works in a folder of its own that looks like the root of a checkout in which the demo has run.
set -eu
source_dir=$1 bin_dir=$2 scripts=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
ln -s "$source_dir/examples" examples
mkdir -p build/release
for folder in bin generated tcl python; do
    ln -s "$(dirname "$bin_dir")/$folder" "build/release/$folder"
done
PATH=$bin_dir:$PATH
export PATH

for step in examples/demo/*.sh; do
    [ -f "$step" ] || continue
    case $scripts$step in no*scripts*) continue ;; esac
    echo "== $step"
    sh "$step"
done

"$source_dir/tests/readme/run_pages.py" "$source_dir" "$scripts"
