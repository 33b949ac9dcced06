# Checks the address map of a configured subsystem, for CI: exits with 1 for an error.
#
#     address_check.tcl DATA_AREA VENDOR:LIBRARY:NAME:VERSION ?CONFIG.json ?ALLOWED ...??
#
# ALLOWED are findings that are left out: KIND, or KIND:NAME as they are printed.
package require tq_hbs

proc main {data vlnv {config ""} args} {
    set ::env(TQ_DATA_PATH) $data
    set map [tq::addressing configuredmap create $vlnv -configFile $config]
    set findings [tq::addressing configuredmap check $map -allow $args]
    set errors 0
    foreach finding $findings {
        dict with finding {
            set place [expr {$line ? "$file:$line: " : ""}]
            puts "$place$severity: $text \[$id\]"
            incr errors [expr {$severity eq "error"}]
        }
    }
    puts "[llength [tq::addressing configuredmap blocks $map]] blocks, [llength $findings] findings"
    return [expr {$errors ? 1 : 0}]
}

if {$argc < 2} {
    puts stderr "usage: address_check.tcl DATA_AREA VLNV ?CONFIG.json ?ALLOWED ...??"
    exit 2
}
try {
    exit [main {*}$argv]
} trap TQ message {
    puts stderr "$argv0: $message"
    exit 1
}
