# Run in the namespace of each instance, once its registers are there as variables.

# A core that is held in reset has no use for its power.
proc is_up {} {
    variable CPU_PWR
    variable CPU_CFG
    expr {($CPU_PWR & 0x1) == 1 && ($CPU_CFG & 0x2) == 0}
}
