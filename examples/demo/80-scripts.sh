#!/bin/sh
# The same in a Tcl and a Python shell, ten lines each.
set -eu
TCLLIBPATH=$PWD/build/release/tcl PYTHONPATH=$PWD/build/release/python
export TCLLIBPATH PYTHONPATH
sessions=examples/scripts

echo
echo "\$ tclsh8.6 $sessions/session.tcl"
sed 's/^/% /' "$sessions/session.tcl"
tclsh8.6 "$sessions/session.tcl"
echo
echo "\$ python3 $sessions/session.py"
sed 's/^/>>> /' "$sessions/session.py"
python3 "$sessions/session.py"
