# Pins and interfaces of a hard block, and the pin behind one bit of a port.
set -eu
file=examples/device/sce/hardblocks/sorrel.json

echo "\$ hbs hardblock $file"
hbs hardblock "$file"
echo
echo "\$ hbs hardblock $file sorrel_ps"
hbs hardblock "$file" sorrel_ps
echo
echo "\$ hbs hardblock $file sorrel_ps --port 'M_AXI_GP0:WDATA[38]'"
hbs hardblock "$file" sorrel_ps --port 'M_AXI_GP0:WDATA[38]'
echo
echo "\$ hbs hardblock $file sorrel_ps --port 'M_AXI_GP0:WDATA[39:24]'"
hbs hardblock "$file" sorrel_ps --port 'M_AXI_GP0:WDATA[39:24]'
echo
echo "\$ hbs hardblock $file sorrel_ps --tree"
hbs hardblock "$file" sorrel_ps --tree
echo
