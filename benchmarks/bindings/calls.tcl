# A getter of tq_hbs beside one of an extension that returns a constant, and memory after many.
load [lindex $argv 0] Bare
package require tq_hbs

proc residentKib {} {
    set file [open /proc/self/statm]
    set pages [lindex [read $file] 1]
    close $file
    return [expr {$pages * 4}]
}

# KiB of the second half: the first fills the allocators.
proc growth {script count} {
    time {uplevel 1 $script} [expr {$count / 2}]
    set before [residentKib]
    time {uplevel 1 $script} [expr {$count / 2}]
    return [expr {[residentKib] - $before}]
}

proc main {count} {
    set tree [tq::clock tree create soc 1]
    set pll [tq::clock tree createPllConfig $tree PLL0 DOMAIN0]
    foreach {kind bareCall ourCall} {
        command {::bare::pll::constant $pll} {::tq::clock::pll::vcoMul $pll}
        ensemble {bare pll constant $pll} {tq::clock pll vcoMul $pll}
    } {
        set plain [runBest $bareCall $pll]
        set ours [runBest $ourCall $pll]
        puts [format "tcl %s: bare %.1f ns, vcoMul %.1f ns (%.2f)" $kind $plain $ours \
            [expr {$ours / $plain}]]
    }
    puts "$count handles touched: [growth {tq::clock tree getPll $tree PLL0} $count] KiB more"
    puts "$count trees made and deleted: [growth {
        set small [tq::clock tree create soc 1]
        tq::clock tree createPllConfig $small PLL0 DOMAIN0
        tq::clock tree delete $small
    } $count] KiB more"
}

# Nanoseconds of processor time of this thread.
proc processorNs {} {
    set file [open /proc/thread-self/schedstat]
    set ns [lindex [read $file] 0]
    close $file
    return $ns
}

proc nsOf {command pll} {
    set start [processorNs]
    $command $pll
    return [expr {[processorNs] - $start}]
}

# Nanoseconds of a call. In a procedure, so that the call is compiled as a script's is.
proc runBest {call pll} {
    set count 500000
    set loop "for {set i 0} {\$i < $count} {incr i}"
    proc timed pll "$loop {$call}"
    proc empty pll "$loop {}"
    set least Inf
    for {set n 0} {$n < 7} {incr n} {
        set least [expr {min($least, [nsOf timed $pll] - [nsOf empty $pll])}]
    }
    return [expr {$least / double($count)}]
}

main [expr {[llength $argv] > 1 ? [lindex $argv 1] : 1000000}]
