import tq_hbs
tree = tq_hbs.readClockTree("examples/clocks/serial_buses.json")
i2c = tree.getPeripheral("I2C0")
print(tree.runSolution(), i2c, i2c.actualFreq)
i2c.requestedFreq = 50
print(tree.runSolution(), i2c.clkoutDiv, i2c.pllName)
tree.delete()
try: print(i2c.actualFreq)
except tq_hbs.DeletedError as error: print(error)
print(i2c)
