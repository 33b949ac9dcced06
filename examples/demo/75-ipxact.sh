#!/bin/sh
# Registers for other tools, what a core sees of a design, and the design as a definition.
set -eu

mkdir -p build/demo
echo "$ hbs registers examples/device/dma.xml --export build/demo/dma.svd"
hbs registers examples/device/dma.xml --match none --export build/demo/dma.svd || true
echo "$ hbs registers build/demo/dma.svd --match '*STATUS'"
hbs registers build/demo/dma.svd --match '*STATUS'

echo "$ hbs ipxact map examples/soc/two_timers.xml --library examples/soc"
hbs ipxact map examples/soc/two_timers.xml --library examples/soc

echo "$ hbs import examples/soc/two_timers.xml --library examples/soc -o build/demo/imported"
hbs import examples/soc/two_timers.xml --library examples/soc -o build/demo/imported
echo "$ hbs addressing kestrom:soc:two_timers:1.0 --data build/demo/imported"
hbs addressing kestrom:soc:two_timers:1.0 --data build/demo/imported
