"""Clock trees in Python: handles and what they outlive, searches, messages, errors."""

import gc
import importlib
import logging
import multiprocessing
import os
import signal
import sys
import threading
import time
import unittest
import unittest.mock
import weakref

import tq_hbs

CLOCKS = os.path.join(os.environ["TQ_SOURCE_DIR"], "examples", "clocks")


def small_tree():
    tree = tq_hbs.HBSClockingAlgo("soc", plls=1)
    tree.createPllConfig("PLL0", "DOMAIN0")
    tree.addPeripheral("UART0", "DOMAIN0", 100)
    return tree


def slow_tree(name="slow"):
    """A tree whose search takes minutes: two NOC peripherals are complained of per tuple."""
    tree = tq_hbs.HBSClockingAlgo(name, plls=6)
    for domain, plls in (("A", 1), ("NOC_DOMAIN", 1), ("B", 2), ("C", 2)):
        for i in range(plls):
            tree.createPllConfig(f"{domain}{i}", domain)
    tree.refClkFreq = 60
    for i, domain in enumerate(("NOC_DOMAIN", "NOC_DOMAIN", "A", "B", "C")):
        mhz = 960 if i < 2 else 0.001
        tree.addPeripheral(f"P{i}", domain, mhz).isNOCPeripheral = i < 2
    return tree


def solve_in_child(path):
    with tq_hbs.readClockTree(path) as tree:
        return tree.runSolution(threads=2)


class Handles(unittest.TestCase):
    def test_one_object_for_one_native_object(self):
        tree = small_tree()
        uart = tree.getPeripheral("UART0")
        self.assertIs(uart, tree.allPeripherals[0])
        self.assertIs(tree.getPll("PLL0"), tree.powerDomains[0].pllList[0])

    def test_handles_keep_their_tree_and_nothing_else_stays(self):
        before = tq_hbs.handleCount()
        uart = small_tree().getPeripheral("UART0")
        gc.collect()
        self.assertEqual("UART0", uart.name)
        gone = weakref.ref(uart)
        del uart
        self.assertIsNone(gone())
        self.assertEqual(before, tq_hbs.handleCount())

    def test_every_use_of_a_deleted_object_says_what_it_was(self):
        tree = small_tree()
        held = [tree.getPeripheral("UART0"), tree.getPll("PLL0"), tree.powerDomains[0], tree]
        tree.delete()
        for handle in held:
            text = repr(handle)
            self.assertIn("(deleted)", text)
            for name in (n for n in dir(type(handle)) if not n.startswith("_")):
                member = getattr(type(handle), name)
                with self.subTest(member=name), self.assertRaises((tq_hbs.DeletedError, TypeError)):
                    member(handle) if callable(member) else getattr(handle, name)
            self.assertFalse(tq_hbs.exists(handle))
        with self.assertRaisesRegex(tq_hbs.DeletedError, "^the PLL PLL0 of clock tree soc was del"):
            held[1].name

    def test_a_callback_of_a_weak_reference_may_ask_for_the_same_object(self):
        tree, found = small_tree(), []
        pll = tree.getPll("PLL0")
        gone = weakref.ref(pll, lambda _: found.append(tree.getPll("PLL0")))
        del pll
        self.assertIsNone(gone())
        self.assertIs(found[0], tree.getPll("PLL0"))

    def test_conversions_may_delete_the_object(self):
        class Deletes:
            def __fspath__(self):
                tree.delete()
                return "X"

        tree = small_tree()
        self.assertRaises(tq_hbs.DeletedError, tree.addPeripheral, Deletes(), "DOMAIN0", 1)

    def test_a_second_import_gives_the_same_classes(self):
        tree, names = small_tree(), [name for name in sys.modules if name.startswith("tq_hbs")]
        before = {name: sys.modules.pop(name) for name in names}
        try:
            again = importlib.import_module("tq_hbs")
            self.assertIs(tq_hbs.HBSPll, again.HBSPll)
            self.assertIs(tq_hbs.Error, again.Error)
            self.assertEqual("the clock tree soc", again.describe(tree))
        finally:
            sys.modules.update(before)

    def test_touched_and_dropped_objects_leave_nothing(self):
        def resident():
            with open("/proc/self/statm") as file:
                return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

        def cycle(tree):
            for pll in tree.allPlls:
                pll.name
            small_tree().report()

        tree = small_tree()
        for i in range(20_000):
            if i == 10_000:
                before = resident()
            cycle(tree)
        if "asan" not in os.environ.get("LD_PRELOAD", ""):  # keeps what was freed for a while
            self.assertLess(resident() - before, 1 << 20)

    def test_with_deletes(self):
        with small_tree() as tree:
            uart = tree.getPeripheral("UART0")
        self.assertRaises(ReferenceError, lambda: uart.name)

    def test_trees_of_the_manager_stay_until_they_are_deleted(self):
        first = tq_hbs.addClockingAlgo("twin", 1)
        second = tq_hbs.addClockingAlgo("twin", 2)
        self.assertEqual([first, second], tq_hbs.getClockingAlgos())
        with self.assertRaisesRegex(tq_hbs.CommandError, "delete that first"):
            second.delete()
        del first
        tq_hbs.getClockingAlgo("twin").delete()
        second.delete()
        self.assertEqual([], tq_hbs.getClockingAlgos())

    def test_wrong_arguments_are_refused_with_the_signature(self):
        tree = small_tree()
        for call in (
            lambda: tree.addPeripheral("X"),
            lambda: tree.addPeripheral("X", "DOMAIN0", 1, True, 5),
            lambda: tree.addPeripheral("X", "DOMAIN0", 1, enable=True),
            lambda: tree.addPeripheral("X", "DOMAIN0", 1, name="Y"),
            lambda: tree.addPeripheral("X", "DOMAIN0", "fast"),
            lambda: tree.addPeripheral(3, "DOMAIN0", 1),
            lambda: tree.runSolution(threads=2**70),
            lambda: setattr(tree, "refClkFreq", None),
            lambda: delattr(tree, "refClkFreq"),
            tq_hbs.HBSPll,
        ):
            self.assertRaises((TypeError, AttributeError), call)
        self.assertRaises(ValueError, lambda: tq_hbs.HBSClockingAlgo("x", plls=3))
        self.assertRaises(ValueError, lambda: setattr(tree, "refClkFreq", 1e300))
        self.assertRaises(LookupError, lambda: tree.getPeripheral("UART1"))

    def test_numbers_read_back_as_they_were_written(self):
        tree = small_tree()
        tree.refClkFreq = 33.333
        self.assertEqual(33.333, tree.refClkFreq)


class Searches(unittest.TestCase):
    def test_other_threads_run_and_two_searches_take_turns(self):
        trees = [slow_tree("one"), slow_tree("two")]
        ends = []

        def solve(tree):
            try:
                tree.runSolution()
            except tq_hbs.Error as error:
                ends.append(type(error))

        threads = [threading.Thread(target=solve, args=(tree,), daemon=True) for tree in trees]
        for thread in threads:
            thread.start()
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            try:
                trees[0].name
                time.sleep(0.01)
            except tq_hbs.BusyError:
                break
        self.assertRaises(tq_hbs.BusyError, trees[0].delete)
        self.assertTrue(small_tree().validateConfig())
        # They go with the process, which ends them.

    def test_only_the_main_interpreter_has_the_package(self):
        interpreters = importlib.import_module("_xxsubinterpreters")
        other = interpreters.create()
        with self.assertRaisesRegex(Exception, "main interpreter"):
            interpreters.run_string(other, "import tq_hbs")
        interpreters.destroy(other)

    def test_ctrl_c_ends_a_search_and_leaves_the_tree(self):
        tree = slow_tree()
        pll = tree.allPlls[0]
        timer = threading.Timer(0.2, os.kill, (os.getpid(), signal.SIGINT))
        timer.start()
        with self.assertRaises(KeyboardInterrupt):
            tree.runSolution()
        self.assertEqual((0, False), (pll.vcoMul, tree.is_result_found))

    def test_children_of_a_fork_search(self):
        path = os.path.join(CLOCKS, "programmable_soc.json")
        self.assertTrue(solve_in_child(path))
        with multiprocessing.get_context("fork").Pool(2) as pool:
            self.assertEqual([True] * 3, pool.map(solve_in_child, [path] * 3))


class Messages(unittest.TestCase):
    def test_what_the_library_prints_goes_to_the_logger(self):
        tree = tq_hbs.HBSClockingAlgo("empty", plls=1)
        with self.assertLogs("tq_hbs", logging.WARNING) as logged:
            self.assertFalse(tree.runSolution())
        self.assertEqual(["WARNING:tq_hbs:No peripheral enabled"], logged.output)

    def test_what_a_handler_raises_costs_no_result_but_ctrl_c_counts(self):
        class Handler(logging.Handler):
            def emit(self, record):
                raise self.error

        handler, tree = Handler(), tq_hbs.HBSClockingAlgo("empty", plls=1)
        logging.getLogger("tq_hbs").addHandler(handler)
        self.addCleanup(logging.getLogger("tq_hbs").removeHandler, handler)
        handler.error = KeyError("a fault of the handler")
        with unittest.mock.patch("sys.unraisablehook") as hook:
            self.assertFalse(tree.runSolution())
        hook.assert_called_once()
        handler.error = KeyboardInterrupt()
        self.assertRaises(KeyboardInterrupt, tree.runSolution)

    def test_errors_of_files_have_their_place(self):
        path = "tree.json"
        with open(path, "w") as file:
            file.write('{ "plls": 1,\n  "reference_mhz": "fast" }')
        with self.assertRaises(tq_hbs.InputError) as caught:
            tq_hbs.readClockTree(path)
        error = caught.exception
        self.assertEqual((path, 2, 20), (error.file, error.line, error.column))
        self.assertEqual("error", error.diagnostics[0].severity)


if __name__ == "__main__":
    unittest.main()
