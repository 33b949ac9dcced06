"""A getter of tq_hbs beside one of an extension that returns a constant, and large tables."""

import os
import sys
import tempfile
import time
import timeit

import bare
import tq_hbs


def best(statement, names, number=200_000):
    return min(timeit.repeat(statement, timer=time.process_time, globals=names, number=number, repeat=7)) / number * 1e9


def registers_file(path, count):
    with open(path, "w") as file:
        file.write(
            '<spirit:component xmlns:spirit="s"><spirit:memoryMaps><spirit:memoryMap>'
            "<spirit:name>m</spirit:name><spirit:addressBlock>"
            "<spirit:baseAddress>0x0</spirit:baseAddress>"
        )
        for i in range(count):
            file.write(
                f"<spirit:register><spirit:name>R{i}</spirit:name><spirit:addressOffset>"
                f"0x{i * 4:X}</spirit:addressOffset><spirit:access>read-only</spirit:access>"
                "<spirit:description>one</spirit:description></spirit:register>"
            )
        file.write(
            "</spirit:addressBlock></spirit:memoryMap></spirit:memoryMaps></spirit:component>"
        )


def resident_kib():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") // 1024


def growth(action, count):
    """KiB of the second half: the first fills the allocators."""
    for _ in range(count // 2):
        action()
    before = resident_kib()
    for _ in range(count // 2):
        action()
    return resident_kib() - before


def main(count):
    tree = tq_hbs.HBSClockingAlgo("soc", plls=1)
    pll = tree.createPllConfig("PLL0", "DOMAIN0")
    names = {"pll": pll, "bare": bare.Bare()}
    for bare_name, ours in (("constant", ("vcoMul", "maxPllFreq")), ("text", ("name",))):
        plain = best(f"bare.{bare_name}", names)
        print(f"python property: bare {bare_name} {plain:.1f} ns", end="")
        for name in ours:
            cost = best(f"pll.{name}", names)
            print(f", {name} {cost:.1f} ns ({cost / plain:.2f})", end="")
        print()
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "registers.xml")
        registers_file(path, 100_000)
        table = tq_hbs.parseFile(path)
        start = time.process_time()
        for register in table:
            register.name, register.offset, register.access, register.desc
        print(f"100,000 registers, four attributes: {time.process_time() - start:.3f} s")
        touch = iter(())

        def touch_one():
            nonlocal touch
            try:
                next(touch).name
            except StopIteration:
                touch = iter(table.registers)

        print(f"{count} handles touched: {growth(touch_one, count)} KiB more")

    def create_and_drop():
        small = tq_hbs.HBSClockingAlgo("soc", plls=1)
        small.createPllConfig("PLL0", "DOMAIN0")

    print(f"{count} trees made and dropped: {growth(create_and_drop, count)} KiB more")


main(int(sys.argv[1]) if len(sys.argv) > 1 else 1_000_000)
