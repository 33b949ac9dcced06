#!/bin/sh
# One hard block subsystem under two configs, and a picture of what its processors see.
set -eu
device=build/demo/device
block=kestrom:hardblock:sorrel_ps:1.0

for config in linux bare_metal; do
    echo "\$ hbs addressing $block --data $device --config $device/config_$config.json --html build/demo/$config.html"
    hbs addressing "$block" --data "$device" --config "$device/config_$config.json" \
        --html "build/demo/$config.html"
    echo
done
