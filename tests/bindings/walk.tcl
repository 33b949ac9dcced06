# A random walk over the whole interface: make, look up, copy, drop and delete in any order.
#
#     walk.tcl ?STEPS? ?SEED?
#
# Nothing that a script does may end the process, and every error has an error code.
package require tq_hbs

set steps [expr {[llength $argv] > 0 ? [lindex $argv 0] : 20000}]
expr {srand([llength $argv] > 1 ? [lindex $argv 1] : 1)}
tq::messages list
set held {}
set raised [dict create]

proc pick list {lindex $list [expr {int(rand() * [llength $list])}]}

# Commands by the class that they take: ::tq::clock::pll::vcoMul for HBSPll.
set namespaces {
    HBSClockingAlgo clock::tree HBSPll clock::pll HBSPeripheral clock::peripheral
    HBSPowerDomain clock::domain HABMBlock model::block HABMPort model::port
    HABMInterface model::interface HABMMemoryMap model::memorymap HABMAddrBlock model::addrblock
    HABMRegister model::register HABMAddrSpace model::addrspace HABMAddrSegment model::addrsegment
    HABMAddrAssign model::addrassign AddressMap addressing::map
    HBSCdoSequenceWrapper cdo::sequence
}

proc commandsOf handle {
    set name [lindex [split $handle #] 0]
    if {![dict exists $::namespaces $name]} {return {}}
    set commands [info commands ::tq::[dict get $::namespaces $name]::*]
    return [lsearch -all -inline -not -regexp $commands {TopBlock$}]
}

proc keep value {
    foreach item [lrange $value 0 2] {
        if {[string match *#* $item]} {lappend ::held $item}
    }
    if {[llength $::held] > 300} {
        set at [expr {int(rand() * [llength $::held])}]
        set ::held [lreplace $::held $at $at]
    }
}

proc argument {} {
    if {rand() < 0.3 && [llength $::held] > 0} {
        set handle [pick $::held]
        # A copy of the text half of the time.
        return [expr {rand() < 0.5 ? $handle : [string range " $handle" 1 end]}]
    }
    return [pick {a b c {} a/b DOMAIN0 PLL0 0 1 2 100 4096 4K -1 33.5 NaN opens {a b} HBSPll#1}]
}

proc step {} {
    set dice [expr {rand()}]
    if {$dice < 0.1 || [llength $::held] == 0} {
        keep [{*}[pick {
            {tq::clock tree create a 1} {tq::clock tree create b 2} {tq::model block create a}
            {tq::clock addClockingAlgo a 1} {tq::cdo createCdoSequenceWrapper a}
            {tq::cdo getCdoSequenceWrapper a} {tq::clock getClockingAlgos}
        }]]
    } elseif {$dice < 0.2} {
        set at [expr {int(rand() * [llength $::held])}]
        set ::held [lreplace $::held $at $at]
    } elseif {$dice < 0.25} {
        llength [pick $::held]
        tq::describe [pick $::held]
        tq::exists [argument]
    } else {
        set handle [pick $::held]
        set command [pick [commandsOf $handle]]
        if {[string match *::delete $command] && rand() < 0.7} return
        set arguments {}
        for {set i [expr {int(rand() * 4)}]} {$i > 0} {incr i -1} {lappend arguments [argument]}
        keep [$command $handle {*}$arguments]
    }
}

for {set i 0} {$i < $steps} {incr i} {
    if {[catch step message options] == 1} {
        dict incr raised [lrange [dict get $options -errorcode] 0 1]
        if {[dict get $options -errorcode] eq "NONE" && ![string match *list* $message]} {
            error "no error code: $message" [dict get $options -errorinfo]
        }
    }
}
puts "$steps steps, raised: $raised"
exit [expr {![dict exists $raised {TQ DELETED}]}]
