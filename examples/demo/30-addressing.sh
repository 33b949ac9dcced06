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

echo "\$ hbs addressing $block --data $device --config $device/config_linux.json --registers --export build/demo/linux.h --export build/demo/linux.dts"
hbs addressing "$block" --data "$device" --config "$device/config_linux.json" \
    --registers --export build/demo/linux.h --export build/demo/linux.dts >/dev/null
grep UART0_REGS_UART_BAUD build/demo/linux.h
echo

for question in '--check' '--at 0xFF0B0006' '--find eth*/ETH_CTRL' '--why uart1'; do
    echo "\$ hbs addressing $block --data $device --config $device/config_linux.json $question"
    # An option and its value are meant to be split, a pattern isn't to be expanded.
    # shellcheck disable=SC2086
    (set -f; hbs addressing "$block" --data "$device" --config "$device/config_linux.json" $question)
    echo
done

echo "\$ hbs addressing $block --data $device --config $device/config_linux.json --config $device/config_bare_metal.json --html build/demo/both.html"
# It ends with 1, as the maps differ.
hbs addressing "$block" --data "$device" --config "$device/config_linux.json" \
    --config "$device/config_bare_metal.json" --html build/demo/both.html || [ $? = 1 ]
echo
