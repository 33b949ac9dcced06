#!/bin/sh
# check_scripts.sh CMAKE BUILD_DIR TREE PYTHON
# Installs the build and uses both packages from an empty folder, with nothing set but what the
# installation says.
set -eu
cmake=$1 build=$2 tree=$3 python=$4
rm -rf "$tree"
mkdir -p "$tree/empty"
cd "$tree/empty"
alone() { env -i PATH=/usr/bin:/bin "$@"; }
alone "$cmake" --install "$build" --prefix "$tree/prefix" >"$tree/output"
sed -n 's/^-- For [A-Z][a-z]* to find tq_hbs: export //p' "$tree/output" >"$tree/settings"
[ "$(wc -l <"$tree/settings")" = 2 ] # one for each language, as no interpreter looks there

# shellcheck disable=SC2046
alone $(cat "$tree/settings") "$python" - <<EOF | grep UART0
import tq_hbs
tree = tq_hbs.HBSClockingAlgo("soc", plls=1)
tree.createPllConfig("PLL0", "DOMAIN0")
tree.addPeripheral("UART0", "DOMAIN0", 100)
if tree.runSolution(threads=2):
    print(tree.tables())
assert tq_hbs.__file__.startswith("$tree/prefix/")
EOF
# shellcheck disable=SC2046
alone $(cat "$tree/settings") tclsh8.6 <<'EOF' | grep UART0
package require tq_hbs
set tree [tq::clock tree create soc 1]
tq::clock tree createPllConfig $tree PLL0 DOMAIN0
tq::clock tree addPeripheral $tree UART0 DOMAIN0 100
if {[tq::clock tree runSolution $tree -threads 2]} {puts [tq::clock tree tables $tree]}
EOF
[ -f "$(dirname "$(find "$tree/prefix" -name __init__.py)")/py.typed" ]
[ -z "$(ls -A .)" ]
