#!/bin/sh
# The registers of a description file, and what an element costs that the reader doesn't know.
set -eu

echo "$ hbs registers examples/device/registers.xml"
hbs registers examples/device/registers.xml

echo "# A display name between a register's name and its offset ends that register:"
mkdir -p build/demo
sed '0,/<spirit:name>Baud/s/<spirit:name>Baud.*/&<spirit:displayName\/>/' \
    examples/device/registers.xml >build/demo/display_name.xml
echo "$ hbs registers build/demo/display_name.xml --match 'B*'"
hbs registers build/demo/display_name.xml --match 'B*' 2>&1
