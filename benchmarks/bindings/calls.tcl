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

proc processorMs {} {
    set file [open /proc/self/stat]
    set fields [split [read $file]]
    close $file
    return [expr {([lindex $fields 13] + [lindex $fields 14]) * 10}]
}

proc msOf {command pll} {
    set start [processorMs]
    $command $pll
    return [expr {[processorMs] - $start}]
}

# Nanoseconds of processor time. In a procedure, so that the call is compiled as a script's is.
proc runBest {call pll} {
    set loop "for {set i 0} {\$i < 500000} {incr i} {$call}"
    proc timed pll $loop
    proc empty pll {for {set i 0} {$i < 500000} {incr i} {}}
    set least 1000000
    for {set n 0} {$n < 5} {incr n} {
        set least [expr {min($least, [msOf timed $pll] - [msOf empty $pll])}]
    }
    return [expr {$least * 2.0}]
}

main [expr {[llength $argv] > 1 ? [lindex $argv 1] : 1000000}]
