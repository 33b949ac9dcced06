#!/bin/sh
# The registers of description files, a fault in one, and what the narrow reader sees of one.
set -eu

echo "$ hbs registers examples/device/dma.xml --fields"
hbs registers examples/device/dma.xml --fields

echo "# A field that reaches into its neighbour is found with its place:"
mkdir -p build/demo
sed "s/<ipxact:bitOffset>8</<ipxact:bitOffset>0</" examples/device/dma.xml >build/demo/overlap.xml
echo "$ hbs registers build/demo/overlap.xml --match CTRL"
hbs registers build/demo/overlap.xml --match CTRL 2>&1

echo "# The narrow reader of the library ends a register at a display name in front of its offset:"
sed '0,/<spirit:name>Baud/s/<spirit:name>Baud.*/&<spirit:displayName\/>/' \
    examples/device/registers.xml >build/demo/display_name.xml
echo "$ hbs registers build/demo/display_name.xml --strict --match 'B*'"
hbs registers build/demo/display_name.xml --strict --match 'B*' 2>&1
