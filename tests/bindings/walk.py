"""A random walk over the whole interface: make, look up, copy, drop and delete in any order.

    walk.py [STEPS [SEED]]

Nothing that a script does may end the process. Every error must be one of the package, or of Python
for wrong arguments.
"""

import gc
import inspect
import logging
import os
import random
import shutil
import sys
import tempfile

import tq_hbs

STEPS = int(sys.argv[1]) if len(sys.argv) > 1 else 20_000
SEED = int(sys.argv[2]) if len(sys.argv) > 2 else 1
EXAMPLES = os.path.join(os.environ["TQ_SOURCE_DIR"], "examples")
VLNV = "kestrom:hardblock:sorrel_ps:1.0"
MOST_HELD = 300
# Files and searches have tests of their own; here they would only take time.
LEFT_OUT = {
    "writeTopBlock",
    "readTopBlock",
    "buildHardblockDefinition",
    "generateHWH",
    "writeDocument",
    "runHandoff",
    "importFile",
}

logging.getLogger("tq_hbs").setLevel(logging.CRITICAL)
dice = random.Random(SEED)
held = []


def keep(value):
    if isinstance(value, (list, tuple)):
        for item in value[:3]:
            keep(item)
    elif type(value).__module__ == "tq_hbs":
        held.append(value)
    if len(held) > MOST_HELD:
        del held[dice.randrange(len(held))]


def argument():
    kind = dice.randrange(8)
    if kind < 3 and held:
        return dice.choice(held)
    if kind < 5:
        return dice.choice(("a", "b", "c", "", "a/b", "DOMAIN0", "PLL0", "/a", "4K", "opens", "é"))
    return dice.choice((0, 1, 2, -1, 4096, 33.5, 2**70, True, None, ["a"], {"a": "b"}, float("nan")))


WORDS = {
    "path": ("dma.xml", "registers.xml", "device/sequence.cdo", "tree.json"),
    "jobFile": ("device/handoff_job.json",),
    "vlnv": (VLNV,),
    "configFile": ("device/config_linux.json", "device/config_bare_metal.json"),
    "sweep": ("a.mhz=1,2", "reference=10:30:10"),
    "format": ("csv", "h", "sdc"),
    "address": (0xFF000004, 0, "0xF1000000"),
    "pattern": ("*", "uart0/*"),
    "end": ("cpu1.clk",),
    "master": ("cpu0", ""),
    "initiator": ("cpu0", "noc0"),
}


def sensible(name):
    """Arguments that often fit, by the parameter's name."""
    if name in WORDS:
        return dice.choice(WORDS[name])
    if name == "maps":
        return [thing for thing in held if isinstance(thing, tq_hbs.ConfiguredMap)][:2]
    if name in ("freq", "value", "offset", "range", "kind", "plls"):
        return dice.choice((1, 2, 100, 4096))
    if name in ("definition", "instance", "config", "block", "addrBlock", "addrSegment", "other", "child"):
        return dice.choice(held) if held else None
    return dice.choice(("a", "b", "c", "DOMAIN0"))


def call(function):
    try:
        names = [
            p.name
            for p in inspect.signature(function).parameters.values()
            if p.default is p.empty and p.name != "self"
        ]
    except ValueError:
        names = []
    chosen = [sensible(name) if dice.random() < 0.8 else argument() for name in names]
    if dice.random() < 0.05:
        chosen.append(argument())
    keep(function(*chosen))


READERS = (
    lambda: tq_hbs.readClockTree("tree.json"),
    lambda: tq_hbs.ConfiguredMap(VLNV, dice.choice(WORDS["configFile"])),
    lambda: tq_hbs.decideHandoff("device/handoff_job.json"),
    lambda: tq_hbs.readDescription("dma.xml"),
    lambda: tq_hbs.readDesign(os.path.join(EXAMPLES, "soc", "two_timers.xml")),
)


def make():
    if dice.random() < 0.02:
        keep(dice.choice(READERS)())
        return
    kind = dice.randrange(5)
    if kind == 0:
        keep(tq_hbs.HBSClockingAlgo(dice.choice("ab"), plls=dice.choice((1, 2))))
    elif kind == 1:
        keep(tq_hbs.HABMBlock(dice.choice("ab")))
    elif kind == 2:
        name, function = dice.choice(FUNCTIONS)
        call(function)
    elif kind == 3:
        keep(tq_hbs.addClockingAlgo(dice.choice("ab"), dice.choice((1, 2))))
    else:
        keep(dice.choice(tq_hbs.getCdoSequenceWrappers() or [None]))


def use(thing):
    name = dice.choice([n for n in dir(type(thing)) if n[0] != "_" and n not in LEFT_OUT])
    if name == "delete" and dice.random() < 0.7:
        return
    member = getattr(type(thing), name)
    if callable(member):
        call(getattr(thing, name))
    elif dice.random() < 0.3:
        setattr(thing, name, argument())
    else:
        keep(getattr(thing, name))


def step():
    kind = dice.random()
    if kind < 0.1 or not held:
        make()
    elif kind < 0.2:
        del held[dice.randrange(len(held))]
    elif kind < 0.25:
        held.append(dice.choice(held))
    elif kind < 0.3:
        repr(dice.choice(held))
        tq_hbs.exists(dice.choice(held))
    else:
        use(dice.choice(held))


FUNCTIONS = [
    (name, function)
    for name, function in vars(tq_hbs).items()
    if type(function).__name__ == "builtin_function_or_method" and name not in LEFT_OUT
]
folder = tempfile.TemporaryDirectory()
os.chdir(folder.name)
shutil.copytree(os.path.join(EXAMPLES, "device"), "device")
for name in ("dma.xml", "registers.xml"):
    shutil.copy(os.path.join("device", name), name)
shutil.copy(os.path.join(EXAMPLES, "clocks", "serial_buses.json"), "tree.json")
os.environ["TQ_DATA_PATH"] = os.path.abspath("device")
blocks = os.path.join("device", "mirrel", "hardblocks")
for name in sorted(os.listdir(blocks)):
    tq_hbs.buildHardblockDefinition(blocks, name, write=True).delete()
raised = {}


def empty_list():
    """The list that the process shares would grow for ever; of twins the first must go first."""
    for tree in tq_hbs.getClockingAlgos():
        tree.delete()


for i in range(STEPS):
    if i % 1000 == 0:
        empty_list()
    try:
        step()
    except (tq_hbs.Error, TypeError, AttributeError) as error:
        raised[type(error).__name__] = raised.get(type(error).__name__, 0) + 1
held.clear()
gc.collect()
empty_list()
print(f"{STEPS} steps, raised: {raised}")
assert {"DeletedError", "TypeError", "CommandError"} <= set(raised), raised
