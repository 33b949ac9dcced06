package require tq_hbs
set tree [tq::clock readClockTree examples/clocks/serial_buses.json]
set i2c [tq::clock tree getPeripheral $tree I2C0]
tq::clock tree runSolution $tree
puts "[tq::describe $i2c]: [tq::clock peripheral actualFreq $i2c] MHz"
tq::clock peripheral requestedFreq $i2c 50
tq::clock tree runSolution $tree
puts "divider [tq::clock peripheral clkoutDiv $i2c] of [tq::clock peripheral pllName $i2c]"
tq::clock tree delete $tree
catch {tq::clock peripheral actualFreq $i2c} message; puts $message
