# Checks the address map of a configured subsystem, for CI: exits with 1 if blocks overlap.
#
#     address_check.tcl DATA_AREA VENDOR:LIBRARY:NAME:VERSION ?CONFIG.json?
package require tq_hbs

proc check {data vlnv {config ""}} {
    set ::env(TQ_DATA_PATH) $data
    set definition [tq::addressing createSubsystemDefinition $vlnv]
    set instance [tq::addressing configureSubsystem $definition -configFile $config]
    set map [tq::addressing map create $definition $instance]
    set placed {}
    foreach block [tq::addressing map blocks $map] {
        dict with block {
            if {$on && $base ne "" && $end ne ""} {lappend placed [list $base $end $path]}
        }
    }
    tq::model block delete $instance
    set faults 0
    for {set i 0} {$i < [llength $placed]} {incr i} {
        lassign [lindex $placed $i] base end path
        foreach other [lrange $placed $i+1 end] {
            lassign $other otherBase otherEnd otherPath
            if {$base <= $otherEnd && $otherBase <= $end} {
                puts [format "%s (0x%llX to 0x%llX) overlaps %s (0x%llX to 0x%llX)" \
                    $path $base $end $otherPath $otherBase $otherEnd]
                incr faults
            }
        }
    }
    puts "[llength $placed] blocks, $faults overlaps"
    return [expr {$faults > 0}]
}

if {$argc ni {2 3}} {
    puts stderr "usage: address_check.tcl DATA_AREA VLNV ?CONFIG.json?"
    exit 2
}
try {
    exit [check {*}$argv]
} trap TQ message {
    puts stderr "$argv0: $message"
    exit 1
}
