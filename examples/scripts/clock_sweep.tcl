# Solves a clock tree for a range of frequencies of one peripheral, and prints a CSV table.
#
#     clock_sweep.tcl TREE.json PERIPHERAL FROM TO STEP
package require tq_hbs

proc sweep {path name first last step} {
    set tree [tq::clock readClockTree $path]
    set peripheral [tq::clock tree getPeripheral $tree $name]
    puts "request_mhz,got_mhz,pll,total_error"
    for {set request [expr {double($first)}]} {$request <= $last} {
        set request [expr {$request + $step}]
    } {
        tq::clock peripheral requestedFreq $peripheral $request
        if {[tq::clock tree runSolution $tree]} {
            puts [format "%g,%.4f,%s,%.3g" $request \
                [tq::clock peripheral actualFreq $peripheral] \
                [tq::clock peripheral pllName $peripheral] \
                [tq::clock tree totalRelativeError $tree]]
        } else {
            puts [format "%g,,," $request]
        }
    }
    tq::clock tree delete $tree
}

if {$argc != 5} {
    puts stderr "usage: clock_sweep.tcl TREE.json PERIPHERAL FROM TO STEP"
    exit 2
}
try {
    sweep {*}$argv
} trap TQ message {
    puts stderr "$argv0: $message"
    exit 1
}
