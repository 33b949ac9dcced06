"""What the workbench offers beyond the library's classes, in Python."""

import json
import logging
import os
import shutil
import signal
import tempfile
import threading
import unittest

import tq_hbs

EXAMPLES = os.path.join(os.environ["TQ_SOURCE_DIR"], "examples")
DEVICE = os.path.join(EXAMPLES, "device")
SOC = os.path.join(EXAMPLES, "soc")
VLNV = "kestrom:hardblock:sorrel_ps:1.0"


def setUpModule():
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    os.chdir(folder.name)
    shutil.copytree(DEVICE, "device")
    os.environ["TQ_DATA_PATH"] = os.path.abspath("device")
    blocks = os.path.join("device", "mirrel", "hardblocks")
    for name in sorted(os.listdir(blocks)):
        tq_hbs.buildHardblockDefinition(blocks, name, write=True).delete()


def read_tree(name):
    return tq_hbs.readClockTree(os.path.join(EXAMPLES, "clocks", name))


class Clocks(unittest.TestCase):
    def test_a_run_on_a_copy_leaves_the_tree_and_outlives_it(self):
        with read_tree("programmable_soc.json") as tree:
            report = tree.runClockTree(alternatives=3)
            self.assertFalse(tree.is_result_found)
            self.assertTrue(tree.runSolution())
            self.assertAlmostEqual(tree.totalRelativeError, report.totalError)
            self.assertEqual(tree.tables(), tree.report().tables())
        self.assertEqual(3, len(report.alternatives))
        self.assertTrue(report.alternatives[1]["differences"])
        self.assertIn("UART0", {p["name"] for p in report.peripherals if p["allowed"]})
        self.assertEqual(len(report.peripherals), len(json.loads(report.json())["peripherals"]))
        self.assertIn("create_clock", report.export("sdc"))
        self.assertIn("<html", report.html())
        self.assertRaisesRegex(ValueError, "expected one of", report.export, "pdf")

    def test_pins_and_weights(self):
        tree = read_tree("serial_buses.json")
        plain = tree.runClockTree()
        other = 25 if plain.plls[0]["multiplier"] != 66 else 65
        pin = f"{plain.plls[0]['name']}.multiplier={other}"
        with self.assertRaisesRegex(ValueError, "^pin .*multiplier"):
            tree.runClockTree(pins=[pin])
        pinned = tree.runClockTree(pins=[pin.replace(f"={other}", "=70")])
        self.assertEqual([70], [p["multiplier"] for p in pinned.plls][:1])
        self.assertIsNotNone(tree.runClockTree(weights={"I2C0": 10}).weightedError)
        self.assertRaises(ValueError, tree.runClockTree, weights={"I2C0": -1})

    def test_conflicts_name_the_requests(self):
        tree = read_tree("serial_buses.json")
        i2c = tree.getPeripheral("I2C0")
        i2c.requestedFreq, i2c.maxAllowedPeripheralError = 777, 0.0001
        report = tree.runClockTree(conflicts=True)
        self.assertEqual([["I2C0"]], [[m["name"] for m in c] for c in report.conflicts])
        self.assertTrue(report.conflicts[0][0]["allMet"])
        self.assertFalse(report.hasMoreConflicts)

    def test_checks_of_settings(self):
        tree = read_tree("serial_buses.json")
        self.assertRaisesRegex(tq_hbs.CommandError, "no result", tree.checkClockSetting)
        tree.runSolution()
        check = tree.checkClockSetting(best=True)
        self.assertEqual((True, []), (check["holds"], check["findings"]))
        self.assertAlmostEqual(check["sum"], check["bestSum"], 6)
        with open("setting.json", "w") as file:
            file.write(tree.json().replace('"divider": ', '"divider": 9'))
        broken = tree.checkClockSetting("setting.json")
        self.assertFalse(broken["holds"])
        self.assertEqual("setting.json", broken["findings"][0]["file"])

    def test_sweeps(self):
        tree = read_tree("serial_buses.json")
        sweep = tree.runClockSweep("I2C0.mhz=10:50:20")
        self.assertEqual([10, 30, 50], [point["value"] for point in sweep])
        self.assertEqual(50, sweep.best["value"])
        self.assertIn("Best:", sweep.tables())
        self.assertIn("<svg", sweep.svg())
        self.assertRaisesRegex(ValueError, "^sweep q=1: expected", tree.runClockSweep, "q=1")

    def test_a_tree_of_another_shape_is_refused(self):
        tree = tq_hbs.HBSClockingAlgo("soc", plls=2)
        tree.createPllConfig("PLL0", "A")
        for run in (tree.runClockTree, tree.checkClockSetting, lambda: tree.runClockSweep("a=1")):
            self.assertRaisesRegex(tq_hbs.CommandError, "clock tree soc: ", run)

    def test_ctrl_c_ends_a_sweep_of_small_trees(self):
        tree = read_tree("serial_buses.json")
        threading.Timer(0.1, os.kill, (os.getpid(), signal.SIGINT)).start()
        with self.assertRaises(KeyboardInterrupt):
            while True:
                tree.runClockSweep("I2C0.mhz=0.001:10:0.001")


class Threads(unittest.TestCase):
    def test_threads_work_on_objects_of_their_own(self):
        def work(number):
            for i in range(500):
                with tq_hbs.HBSClockingAlgo(f"tree{number}", plls=1) as tree:
                    pll = tree.createPllConfig(f"PLL{i}", "D")
                    tree.addPeripheral("UART0", "D", 100)
                    if i % 100 == 0:
                        tree.runSolution()
                    names.append((number, pll.name, tree.name))

        names = []
        threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(2000, len(names))
        self.assertEqual({(n, f"tree{n}") for n in range(4)}, {(n, tree) for n, _, tree in names})

    def test_children_of_a_fork_beside_busy_threads_search(self):
        def work():
            while not done.is_set():
                tq_hbs.readClockTree(path).runClockTree()

        path, done = os.path.join(EXAMPLES, "clocks", "serial_buses.json"), threading.Event()
        threads = [threading.Thread(target=work) for _ in range(2)]
        for thread in threads:
            thread.start()
        for _ in range(20):
            child = os.fork()
            if child == 0:
                signal.alarm(60)
                os._exit(0 if tq_hbs.readClockTree(path).runSolution() else 1)
            self.assertEqual(0, os.waitpid(child, 0)[1])
        done.set()
        for thread in threads:
            thread.join()


class Maps(unittest.TestCase):
    def make(self, config="config_linux.json"):
        return tq_hbs.ConfiguredMap(VLNV, os.path.join("device", config))

    def test_checks_and_allowed_findings(self):
        address_map = self.make()
        findings = address_map.check()
        ids = [finding["id"] for finding in findings]
        self.assertIn("assign-off:assign_6", ids)
        self.assertEqual(17, findings[ids.index("assign-off:assign_6")]["line"])
        allowed = address_map.check(allow=["assign-off", "aperture-size", "nothing"])
        self.assertEqual(["unused-allow:nothing"], [finding["id"] for finding in allowed])

    def test_questions(self):
        address_map = self.make()
        seen = address_map.findAt(0xFF000004, initiator="noc0")
        self.assertEqual(["UART_MODE"], [match["register"] for match in seen])
        self.assertEqual(["/noc0/M_PERIPH", "/uart0/S_CFG"], seen[0]["way"])
        self.assertEqual([], address_map.findAt("0x7F00000000"))
        self.assertEqual(0xFF000004, address_map.findNamed("UART_MODE", "cpu0")[0]["address"])
        reason = address_map.findReason("uart1")
        self.assertEqual((False, 0), (reason["isOn"], reason["registers"][0]["value"]))
        self.assertRaisesRegex(tq_hbs.InputError, "cpu0", address_map.findAt, 0, "cpu")
        self.assertRaises(tq_hbs.InputError, address_map.findReason, "uart9")

    def test_maps_are_compared_and_shown(self):
        linux, bare = self.make(), self.make("config_bare_metal.json")
        kinds = [(d["kind"], d["path"]) for d in linux.compare(bare)]
        self.assertIn(("off", "cpu1/sorrel_cpu/control"), kinds)
        self.assertEqual([], linux.compare(self.make()))
        for name, address_map in (("a.json", linux), ("b.json", bare)):
            with open(name, "w") as file:
                file.write(address_map.json(registers=True))
        saved = tq_hbs.compareMaps("a.json", "b.json")
        self.assertEqual(kinds, [(d["kind"], d["path"]) for d in saved])
        self.assertIn("config_bare_metal", tq_hbs.makeMapPage([linux, bare], title="both"))
        self.assertRaises(ValueError, tq_hbs.makeMapPage, [])
        self.assertRaises(TypeError, tq_hbs.makeMapPage, [linux, None])

    def test_a_configured_map_is_an_address_map(self):
        address_map = self.make()
        definition = address_map.definition
        self.assertRaises(tq_hbs.CommandError, definition.delete)
        instance = tq_hbs.configureSubsystem(definition, address_map.configFile)
        self.assertEqual(tq_hbs.AddressMap(definition, instance).blocks, list(address_map))
        self.assertIn("UART_MODE", address_map.tables(registers=True))
        self.assertIn("UART0", address_map.export("h"))
        self.assertRaises(tq_hbs.InputError, tq_hbs.ConfiguredMap, "a:b:c:d")


class Handoffs(unittest.TestCase):
    def test_maps_and_nets(self):
        job = os.path.join("device", "handoff_job.json")
        with self.assertLogs("tq_hbs", logging.WARNING) as logged:
            handoff = tq_hbs.decideHandoff(job)
        self.assertIn("connectivity.json:70:62", logged.output[0])
        masters = [module["name"] for module in handoff if module["isMaster"]]
        self.assertEqual(masters, [m["master"] for m in handoff.handoffMaps()])
        ranges = handoff.handoffMaps("cpu0")[0]["ranges"]
        self.assertEqual((0, 0x7FFFFFFF), (ranges[0]["base"], ranges[0]["high"]))
        net = handoff.findNet("cpu1.clk")
        self.assertEqual(["cpu0_clk"], net["names"])
        self.assertEqual(3, len(net["ends"]))
        self.assertIn("cpu0_clk", handoff.netTables("cpu1.clk"))
        self.assertIn("ddr0", handoff.export("csv"))
        self.assertRaises(tq_hbs.InputError, handoff.findNet, "cpu1.clock")

    def test_documents_are_compared_by_their_meaning(self):
        job = os.path.join("device", "handoff_job.json")
        tq_hbs.decideHandoff(job).writeDocument("a.hwh")
        tq_hbs.runHandoff(job, "b.hwh", timeStamp=False)
        self.assertEqual([], tq_hbs.diffHandoffs("a.hwh", "b.hwh"))
        with open("a.hwh") as before, open("b.hwh", "w") as after:
            after.write(before.read().replace("cpu0_clk", "other_clk"))
        difference = tq_hbs.diffHandoffs("a.hwh", "b.hwh")[0]
        self.assertEqual(("changed", "other_clk"), (difference["kind"], difference["b"]))


class Descriptions(unittest.TestCase):
    def test_registers_with_fields(self):
        component = tq_hbs.readDescription(os.path.join(DEVICE, "dma.xml"))
        ctrl = component.registers[0]
        self.assertEqual((0xF1020000, 32, 513), (ctrl["address"], ctrl["width"], ctrl["reset"]))
        self.assertEqual(("CHANNELS", 8, 2), tuple(ctrl["fields"][1].values())[:3])
        self.assertEqual(len(component), len(json.loads(component.json())["registers"]))
        self.assertIn("CHANNELS", component.tables("CTRL", fields=True))
        with open("dma.svd", "w") as file:
            file.write(component.export("svd"))
        again = tq_hbs.readDescription("dma.svd")
        self.assertEqual("CMSIS-SVD", again.format)
        self.assertIn(0xF1020000, [register["address"] for register in again])
        self.assertRaises(tq_hbs.InputError, tq_hbs.readDescription, "nowhere.xml")

    def test_designs_and_imports(self):
        design = tq_hbs.readDesign(os.path.join(SOC, "two_timers.xml"))
        self.assertEqual(["core0", "bus0", "timer0", "timer1"], [i["path"] for i in design])
        seen = design.mapDesign()[0]["blocks"]
        self.assertEqual(("timer0/map/regs", 0x40000000), (seen[0]["path"], seen[0]["start"]))
        block = design.importDesign()
        self.assertEqual(0x40000000, block.getSubBlock("timer0").baseAddress)
        imported = tq_hbs.importFile(design.file, "area", [SOC])
        self.assertEqual(4, imported["summary"]["instances"])
        self.assertTrue(tq_hbs.HABMBlock.readTopBlock(imported["path"]).hasSameContent(block))


class Blocks(unittest.TestCase):
    def test_a_stub_takes_what_another_tree_holds(self):
        top, child = tq_hbs.HABMBlock("soc"), tq_hbs.HABMBlock("uart")
        child.createMemoryMap("map")
        place = top.createSubBlock("uart0", "stub")
        old, beside = place.createMemoryMap("old"), top.createMemoryMap("top")
        self.assertRaisesRegex(tq_hbs.CommandError, "no stub", top.mergeTopBlock, "uart0", child)
        self.assertRaisesRegex(tq_hbs.CommandError, "same tree", top.mergeTopBlock, "uart0", top, True)
        self.assertEqual("old", old.name)
        place.isBlockStub = True
        top.mergeTopBlock("uart0", child)
        child.delete()
        self.assertRaisesRegex(tq_hbs.DeletedError, "memory map /uart0/old was", lambda: old.name)
        self.assertIs(place, top.getSubBlock("uart0"))
        self.assertEqual(("uart", "/uart0/map", "top"),
                         (place.moduleName, place.getMemoryMap("map").path, beside.name))


if __name__ == "__main__":
    unittest.main()
