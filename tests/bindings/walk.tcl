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
    HBSCdoSequenceWrapper cdo::sequence ConfiguredMap addressing::configuredmap
    ClockReport clock::report ClockSweep clock::sweep HBSHandoff handoff::document
    Component ipxact::component Design ipxact::design HBSRegistersMap registers::map
    HBSRegister registers::register
}

set examples [file join $env(TQ_SOURCE_DIR) examples]
set folder [file tempfile name]
close $folder
file delete $name
file mkdir $name
cd $name
file copy [file join $examples device] device
set env(TQ_DATA_PATH) [file normalize device]
foreach block [glob device/mirrel/hardblocks/*] {
    tq::model block delete [tq::addressing buildHardblockDefinition [file dirname $block] \
        [file tail $block] -write 1]
}
set readers [list \
    "tq::clock readClockTree $examples/clocks/serial_buses.json" \
    "tq::addressing configuredmap create kestrom:hardblock:sorrel_ps:1.0 \
        -configFile device/config_linux.json" \
    "tq::handoff decideHandoff device/handoff_job.json" \
    "tq::ipxact readDescription device/dma.xml" \
    "tq::ipxact readDesign $examples/soc/two_timers.xml" \
    "tq::registers parseFile device/registers.xml"]

# How many arguments a command needs beside the handle, by its own words.
proc neededBy command {
    global needed
    if {![info exists needed($command)]} {
        catch $command message
        regexp {should be "(.*)"} $message all usage
        regsub -all {\?[^?]*\?} $usage {} usage
        set needed($command) [expr {max(0, [llength $usage] - 2)}]
    }
    return $needed($command)
}

proc commandsOf handle {
    set name [lindex [split $handle #] 0]
    if {![dict exists $::namespaces $name]} {return {}}
    set commands [info commands ::tq::[dict get $::namespaces $name]::*]
    return [lsearch -all -inline -not -regexp $commands {(TopBlock|writeDocument)$}]
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
    return [pick {
        a b c {} a/b DOMAIN0 PLL0 0 1 2 100 4096 4K -1 33.5 NaN opens {a b} HBSPll#1 csv sdc
        reference=10:30:10 uart0/* 0xFF000004 cpu1.clk
    }]
}

proc step {} {
    set dice [expr {rand()}]
    if {$dice < 0.002} {
        keep [list [{*}[pick $::readers]]]
    } elseif {$dice < 0.1 || [llength $::held] == 0} {
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
        set count [expr {rand() < 0.9 ? [neededBy $command] : int(rand() * 4)}]
        set arguments {}
        while {[llength $arguments] < $count} {lappend arguments [argument]}
        keep [$command $handle {*}$arguments]
    }
}

# The list that the process shares would grow for ever; of twins the first must go first.
proc emptyList {} {
    foreach tree [tq::clock getClockingAlgos] {tq::clock tree delete $tree}
}

for {set i 0} {$i < $steps} {incr i} {
    if {$i % 1000 == 0} emptyList
    if {[catch step message options] == 1} {
        dict incr raised [lrange [dict get $options -errorcode] 0 1]
        if {[dict get $options -errorcode] eq "NONE" && ![string match *list* $message]} {
            error "no error code: $message" [dict get $options -errorinfo]
        }
    }
}
cd /
file delete -force $name
puts "$steps steps, raised: $raised"
exit [expr {![dict exists $raised {TQ DELETED}]}]
