"""The packages as a shell's user meets them: examples, Ctrl-C in Tcl, a quiet process."""

import glob
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import tq_hbs

TCLSH = sys.argv.pop(1)
ROOT = os.environ["TQ_SOURCE_DIR"]
SCRIPTS = os.path.join(ROOT, "examples", "scripts")
LANGUAGES = ((sys.executable, "py"), (TCLSH, "tcl"))

SLOW_SEARCH = """
package require tq_hbs
set t [tq::clock tree create slow 6]
foreach {domain plls} {A 1 NOC_DOMAIN 1 B 2 C 2} {
    for {set i 0} {$i < $plls} {incr i} {tq::clock tree createPllConfig $t $domain$i $domain}
}
tq::clock tree refClkFreq $t 60
set i 0
foreach {domain mhz} {NOC_DOMAIN 960 NOC_DOMAIN 960 A 0.001 B 0.001 C 0.001} {
    set p [tq::clock tree addPeripheral $t P[incr i] $domain $mhz]
    tq::clock peripheral isNOCPeripheral $p [expr {$i <= 2}]
}
puts ready
flush stdout
puts [catch {tq::clock tree runSolution $t} message options]
puts [dict get $options -errorcode]
puts [tq::clock tree is_result_found $t]
"""

QUIET = """
import locale, os, signal, sys
def state():
    return (sys.path[:], dict(os.environ), locale.setlocale(locale.LC_ALL),
            [signal.getsignal(s) for s in (signal.SIGINT, signal.SIGPIPE)],
            [os.fstat(i) for i in range(3)])
before = state()
import tq_hbs
tree = tq_hbs.HBSClockingAlgo("soc", plls=1)
tree.createPllConfig("PLL0", "D")
uart = tree.addPeripheral("UART0", "D", 100)
assert tree.runSolution()
assert state() == before, (state(), before)
cycle = [uart, tree]
cycle.append(cycle)
class Last:
    def __del__(self):
        assert self.tree.runSolution() and self.tree.tables()
last = Last()
last.tree = tree
last.cycle = last
"""


QUIET_TCL = """
proc state {} {
    set file [open /proc/self/status]
    # Without those above 32, which the C library keeps for its threads.
    set masks [regexp -all -inline {Sig(?:Blk|Ign|Cgt):\\s+\\S{8}(\\S{8})} [read $file]]
    set signals [lmap {line mask} $masks {set mask}]
    close $file
    list $signals $::auto_path [array get ::env] [encoding system] [pwd] [lsort [chan names]] \\
        [lmap channel {stdin stdout stderr} {chan configure $channel}]
}
set before [state]
package require tq_hbs
set tree [tq::clock tree create soc 1]
tq::clock tree createPllConfig $tree PLL0 D
tq::clock tree addPeripheral $tree UART0 D 100
tq::clock tree runSolution $tree
if {[state] ne $before} {error "[state]\\nbefore: $before"}
"""


def build_device(folder):
    """The sample device below a folder, with its hard blocks compiled."""
    device = shutil.copytree(
        os.path.join(ROOT, "examples", "device"), os.path.join(folder, "device")
    )
    blocks = os.path.join(device, "mirrel", "hardblocks")
    for name in os.listdir(blocks):
        tq_hbs.buildHardblockDefinition(blocks, name, write=True)
    return device


def run(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, timeout=120)


class Shell(unittest.TestCase):
    def test_both_sweeps_print_the_same(self):
        tree = os.path.join("examples", "clocks", "serial_buses.json")
        printed = []
        for shell, suffix in LANGUAGES:
            script = os.path.join(SCRIPTS, "clock_sweep." + suffix)
            done = run(shell, script, tree, "I2C0", "10", "50", "20")
            self.assertEqual((0, ""), (done.returncode, done.stderr))
            printed.append(done.stdout)
            failed = run(shell, script, "nowhere.json", "I2C0", "10", "50", "20")
            self.assertEqual(1, failed.returncode)
            self.assertIn("nowhere.json: error: can't be read", failed.stderr)
        self.assertEqual(printed[0], printed[1])
        self.assertEqual(4, printed[0].count("\n"))

    def test_both_exports_print_the_same(self):
        file = os.path.join("examples", "device", "registers.xml")
        printed = [
            run(shell, os.path.join(SCRIPTS, "register_export." + suffix), file).stdout
            for shell, suffix in LANGUAGES
        ]
        self.assertEqual(printed[0], printed[1])
        self.assertIn("Ctrl,0xF1000000,", printed[0])

    def test_both_checks_agree(self):
        with tempfile.TemporaryDirectory() as folder:
            device = build_device(folder)
            arguments = (device, "kestrom:hardblock:sorrel_ps:1.0", device + "/config_linux.json")
            done = [
                run(shell, os.path.join(SCRIPTS, "address_check." + suffix), *arguments)
                for shell, suffix in LANGUAGES
            ]
            self.assertEqual(done[0].stdout, done[1].stdout)
            self.assertEqual([0, 0], [d.returncode for d in done])
            self.assertIn("config_linux.json:17: warning: the assign", done[0].stdout)

    def test_what_the_documents_show_runs(self):
        with tempfile.TemporaryDirectory() as folder:
            device = build_device(folder)
            os.symlink(os.path.join(ROOT, "examples"), os.path.join(folder, "examples"))
            environment = dict(os.environ, TQ_DATA_PATH=device)
            count = 0
            pages = glob.glob(os.path.join(ROOT, "docs", "**", "*.md"), recursive=True)
            for document in (os.path.join(ROOT, "README.md"), *sorted(pages)):
                with open(document) as file:
                    shown = re.findall(r"^```(python|tcl)\n(.*?)^```", file.read(), re.M | re.S)
                for language, text in shown:
                    shell = sys.executable if language == "python" else TCLSH
                    with self.subTest(document=document, text=text):
                        done = subprocess.run(
                            [shell, "-"] if language == "python" else [shell],
                            input=text + "\n",
                            cwd=folder,
                            env=environment,
                            capture_output=True,
                            text=True,
                            timeout=120,
                        )
                        self.assertEqual((0, ""), (done.returncode, done.stderr))
                        self.assertTrue(done.stdout)
                        count += 1
            self.assertGreater(count, 5)

    def test_sessions_run(self):
        for shell, suffix in LANGUAGES:
            done = run(shell, os.path.join(SCRIPTS, "session." + suffix))
            self.assertEqual((0, ""), (done.returncode, done.stderr))
            self.assertIn("was deleted", done.stdout)

    def test_ctrl_c_ends_a_search_in_tcl_and_not_the_shell(self):
        with subprocess.Popen(
            [TCLSH], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
        ) as shell:
            shell.stdin.write(SLOW_SEARCH)
            shell.stdin.close()
            self.assertEqual("ready\n", shell.stdout.readline())
            time.sleep(0.5)
            shell.send_signal(signal.SIGINT)
            self.assertEqual("1\nTQ INTERRUPTED\n0\n", shell.stdout.read())

    def test_loading_and_ending_leave_the_process_alone(self):
        done = run(sys.executable, "-c", QUIET)
        self.assertEqual((0, "", ""), (done.returncode, done.stdout, done.stderr))
        with tempfile.NamedTemporaryFile("w", suffix=".tcl") as script:
            script.write(QUIET_TCL)
            script.flush()
            done = run(TCLSH, script.name)
        self.assertEqual((0, "", ""), (done.returncode, done.stdout, done.stderr))


if __name__ == "__main__":
    unittest.main()
