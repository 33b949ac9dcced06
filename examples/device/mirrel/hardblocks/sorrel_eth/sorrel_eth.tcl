# Run in the namespace of each instance, once its registers are there as variables.

# The controller is of use only with both its receiver (bit 2) and its transmitter (bit 3) on.
variable link_on [expr {($ETH_CTRL & 0xC) == 0xC}]
