"""Blocks, maps, registers, sequences and hard blocks in Python."""

import os
import shutil
import tempfile
import unittest

import tq_hbs

DEVICE = os.path.join(os.environ["TQ_SOURCE_DIR"], "examples", "device")
VLNV = "kestrom:hardblock:sorrel_ps:1.0"


def setUpModule():
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    device = os.path.join(folder.name, "device")
    shutil.copytree(DEVICE, device)
    os.environ["TQ_DATA_PATH"] = device
    blocks = os.path.join(device, "mirrel", "hardblocks")
    for name in sorted(os.listdir(blocks)):
        tq_hbs.buildHardblockDefinition(blocks, name, write=True).delete()


class Blocks(unittest.TestCase):
    def test_a_tree_made_by_hand_reads_back(self):
        with tq_hbs.HABMBlock("soc") as top:
            uart = top.createSubBlock("uart0", "uart")
            regs = uart.createMemoryMap("map").createAddrBlock("regs", 0x1000, "4K")
            ctrl = regs.createRegister("CTRL", 8)
            ctrl.value = 2**100
            self.assertEqual((0x1000, 4096), (regs.offset, regs.range))
            self.assertEqual(2**100, top.findRegister("uart0/map/regs/CTRL").value)
            self.assertIs(ctrl, top.findRegisters()[0])
            self.assertEqual("the register /uart0/map/regs/CTRL", tq_hbs.describe(ctrl))
            self.assertIsNone(ctrl.reset)
            self.assertRaises(tq_hbs.CommandError, top.createSubBlock, "uart0", "uart")
            self.assertRaises(ValueError, lambda: setattr(ctrl, "access", "rw"))
            self.assertRaises(ValueError, lambda: setattr(ctrl, "value", "1e"))
            self.assertRaises(TypeError, lambda: setattr(ctrl, "value", -1))

    def test_handles_of_what_is_removed_end_and_others_stay(self):
        top = tq_hbs.HABMBlock("soc")
        inside = top.createSubBlock("a", "m").createSubBlock("b", "n").createMemoryMap("map")
        beside = top.createSubBlock("c", "m").createMemoryMap("map")
        taken = top.removeSubBlock("a")
        self.assertRaisesRegex(tq_hbs.DeletedError, "memory map /a/b/map was", lambda: inside.name)
        self.assertEqual("/c/map", beside.path)
        self.assertEqual("map", taken.getSubBlock("b").getMemoryMap("map").name)
        top.delete()
        self.assertEqual("m", taken.moduleName)

    def test_definitions_never_change(self):
        definition = tq_hbs.createSubsystemDefinition(VLNV)
        self.assertIs(definition, tq_hbs.createSubsystemDefinition(VLNV))
        part = definition.getSubBlock("uart0")
        for change in (
            lambda: setattr(definition, "enablement", "0"),
            lambda: setattr(part, "enablement", "0"),
            lambda: definition.removeSubBlock("uart0"),
            definition.delete,
            part.delete,
        ):
            self.assertRaises(tq_hbs.CommandError, change)
        self.assertRaises(LookupError, tq_hbs.createSubsystemDefinition, "a:b:c:d")


class Maps(unittest.TestCase):
    def make(self):
        definition = tq_hbs.createSubsystemDefinition(VLNV)
        instance = tq_hbs.configureSubsystem(definition, os.path.join(DEVICE, "config_linux.json"))
        return definition, instance, tq_hbs.AddressMap(definition, instance)

    def test_a_map_shows_what_the_config_left(self):
        _, _, address_map = self.make()
        uarts = {b["path"]: b for b in address_map if b["path"].startswith("uart")}
        self.assertEqual(
            {"uart0/sorrel_uart/regs": True, "uart1/sorrel_uart/regs": False},
            {path: block["on"] for path, block in uarts.items()},
        )
        self.assertEqual(0xFF000000, uarts["uart0/sorrel_uart/regs"]["base"])
        self.assertIn("0xFF000000", address_map.tables())
        self.assertIn("#define", address_map.export("h"))
        self.assertRaisesRegex(ValueError, "expected one of", address_map.export, "pdf")

    def test_a_map_ends_with_its_instance_and_when_that_loses_a_part(self):
        for loss in (
            lambda instance: instance.delete(),
            lambda instance: instance.removeSubBlock("uart0"),
        ):
            _, instance, address_map = self.make()
            loss(instance)
            self.assertRaisesRegex(tq_hbs.DeletedError, "map of sorrel_ps", address_map.json)

    def test_a_map_keeps_its_instance(self):
        address_map = self.make()[2]
        self.assertTrue(len(address_map) > 3)

    def test_the_report_is_a_dictionary(self):
        _, instance, _ = self.make()
        self.assertIsInstance(tq_hbs.generateSurfaceLevelAddressing(instance), dict)


class Arguments(unittest.TestCase):
    def test_mappings_are_refused_unless_they_have_pairs(self):
        class Odd(dict):
            def items(self):
                return [1, ("a",)]

        for odd in (Odd(), {"a": 1}, {1: "a"}, [("a", "b")], None, "ab"):
            self.assertRaises(TypeError, tq_hbs.HBSHandoff, odd, {}, "x")

    def test_texts_of_any_bytes_come_back(self):
        for name in ("\udcff\xe9", "a\0b", "\U0001f600", ""):
            self.assertEqual(name, tq_hbs.HBSClockingAlgo(name, plls=1).name)
        self.assertRaises(TypeError, tq_hbs.HBSClockingAlgo, "\ud800", plls=1)
        self.assertRaises(tq_hbs.InputError, tq_hbs.readClockTree, __file__ + "\0")


class Others(unittest.TestCase):
    def test_registers(self):
        registers = tq_hbs.parseFile(os.path.join(DEVICE, "registers.xml"))
        ctrl = registers["Ctrl"]
        self.assertIs(ctrl, next(iter(registers)))
        self.assertEqual(0xF1000000, ctrl.address)
        self.assertRaises(LookupError, lambda: registers["Ctrl2"])
        self.assertRaises(tq_hbs.InputError, tq_hbs.parseFile, "nowhere.xml")

    def test_sequences_tell_when_they_are_deleted(self):
        boot = tq_hbs.createCdoSequenceWrapper("boot")
        self.assertIs(boot, tq_hbs.getCdoSequenceWrapper("boot"))
        boot.addMarker("power", "opens")
        self.assertRaisesRegex(tq_hbs.CommandError, "'power' not closed", boot.markerCheck)
        self.assertRaises(ValueError, boot.addMarker, "power", "shuts")
        self.assertRaises(tq_hbs.CommandError, tq_hbs.createCdoSequenceWrapper, "boot")
        boot.delete()
        self.assertRaisesRegex(tq_hbs.DeletedError, "^the sequence boot was", boot.markerCheck)
        self.assertRaises(tq_hbs.CommandError, tq_hbs.getCdoSequenceWrapper, "boot")
        self.assertEqual(2**64 - 1, tq_hbs.parseAddress("0xFFFFFFFFFFFFFFFF"))
        steps = tq_hbs.runSequenceScript(os.path.join(DEVICE, "sequence.cdo"))
        self.assertTrue(any(step["failure"] for step in steps))

    def test_hard_blocks(self):
        metadata = os.path.join(DEVICE, "sce", "hardblocks", "sorrel.json")
        block = tq_hbs.readHardBlocks(metadata)[0]
        self.assertEqual(["gp0_wdata_hi[6]"], block.findPins("M_AXI_GP0:WDATA[38]"))
        axi = block.getInterfaceByName("M_AXI_GP0")
        self.assertIs(axi, [i for i in block.interfaces if i.name == "M_AXI_GP0"][0])
        self.assertTrue({pin.direction for pin in block.pins} <= {"IN", "OUT", "INOUT"})
        self.assertRaises(LookupError, block.getInterfaceByName, "X")

    def test_handoff(self):
        report = tq_hbs.runHandoff(
            os.path.join(DEVICE, "handoff_job.json"), "sorrel.hwh", timeStamp=False
        )
        self.assertEqual(("cpu0", 4), (report["masters"][0]["name"], report["masters"][0]["ranges"]))


if __name__ == "__main__":
    unittest.main()
