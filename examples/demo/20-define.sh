#!/bin/sh
# The hard blocks of the sample device, compiled from their tables.
set -eu
blocks=build/demo/device/mirrel/hardblocks

for block in sorrel_cpu sorrel_ddr sorrel_uart sorrel_eth sorrel_noc; do
    hbs define --write "$blocks" "$block" >/dev/null
done
echo "\$ hbs define --write $blocks sorrel_cpu"
hbs define --write "$blocks" sorrel_cpu
echo
echo "\$ hbs define --write $blocks sorrel_ps"
hbs define --write "$blocks" sorrel_ps
echo
