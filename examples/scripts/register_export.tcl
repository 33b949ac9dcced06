# Prints the registers of an IP-XACT file as CSV.
#
#     register_export.tcl REGISTERS.xml
package require tq_hbs

proc csvRow {fields} {
    set row {}
    foreach field $fields {
        if {[regexp {[",\n]} $field]} {set field "\"[string map {\" \"\"} $field]\""}
        lappend row $field
    }
    return [join $row ,]
}

proc export {path} {
    set map [tq::registers parseFile $path]
    puts "name,address,access,description"
    foreach register [tq::registers map registers $map] {
        set address [tq::registers register address $register]
        if {$address ne ""} {set address [format 0x%08X $address]}
        puts [csvRow [list [tq::registers register name $register] $address \
            [tq::registers register access $register] [tq::registers register desc $register]]]
    }
    tq::registers map delete $map
}

if {$argc != 1} {
    puts stderr "usage: register_export.tcl REGISTERS.xml"
    exit 2
}
try {
    export [lindex $argv 0]
} trap TQ message {
    puts stderr "$argv0: $message"
    exit 1
}
