#!/bin/sh
# Clock trees: one that fits at the first tolerance, one that loosens, one of six PLLs with its
# picture, one that can't be solved, a check of a setting, several
# references, the alternatives, and many trees at once.
set -eu
trees=examples/clocks

echo "\$ hbs clocks $trees/serial_buses.json"
hbs clocks "$trees/serial_buses.json"
echo
echo "\$ hbs clocks $trees/vehicle_gateway.json"
hbs clocks "$trees/vehicle_gateway.json"
echo
mkdir -p build/demo
echo "\$ hbs clocks $trees/programmable_soc.json --explain --svg build/demo/clocks.svg"
hbs clocks "$trees/programmable_soc.json" --explain --svg build/demo/clocks.svg
echo
echo "\$ hbs clocks $trees/video_recorder.json"
hbs clocks "$trees/video_recorder.json" || echo "(exit status $?)"
echo
echo "\$ hbs clocks $trees/radio_frontend.json --json > build/demo/setting.json"
hbs clocks "$trees/radio_frontend.json" --json >build/demo/setting.json
echo "\$ hbs clocks $trees/radio_frontend.json --check build/demo/setting.json"
hbs clocks "$trees/radio_frontend.json" --check build/demo/setting.json
echo
echo "\$ hbs clocks $trees/application_soc.json --sweep reference=24:26:0.5,33.333"
hbs clocks "$trees/application_soc.json" --sweep reference=24:26:0.5,33.333 \
    --svg build/demo/sweep.svg
echo
echo "\$ hbs clocks $trees/vehicle_gateway.json --alternatives 3 --pin VIDEO.source=PLL_MEDIA"
hbs clocks "$trees/vehicle_gateway.json" --alternatives 3 --pin VIDEO.source=PLL_MEDIA \
    --html build/demo/clocks.html --export build/demo/clocks.dts
echo
echo "\$ hbs clocks $trees"
hbs clocks "$trees" || echo "(exit status $?)"
echo
