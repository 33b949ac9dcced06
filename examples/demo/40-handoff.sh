#!/bin/sh
# The hardware handoff of the sample device, and what is suspicious in its metadata.
set -eu

mkdir -p build/demo
echo "$ hbs handoff examples/device/handoff_job.json -o build/demo/sorrel.hwh"
hbs handoff examples/device/handoff_job.json -o build/demo/sorrel.hwh
echo
echo "$ hbs handoff examples/device/handoff_job.json --check"
hbs handoff examples/device/handoff_job.json --check || true
echo
echo "$ hbs handoff examples/device/handoff_job.json --map --export build/demo/handoff_map.h"
hbs handoff examples/device/handoff_job.json --map --export build/demo/handoff_map.h
echo
echo "$ hbs handoff examples/device/handoff_job.json --net eth0.sync"
hbs handoff examples/device/handoff_job.json --net eth0.sync
echo
echo "$ hbs handoff --diff build/demo/sorrel.hwh build/demo/sorrel.hwh"
hbs handoff --diff build/demo/sorrel.hwh build/demo/sorrel.hwh
