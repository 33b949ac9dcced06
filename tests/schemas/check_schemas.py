#!/usr/bin/env python3
"""check_schemas.py SOURCE_DIR HBS: the schemas against examples, generated files and slips."""
import copy
import json
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile

from jsonschema import Draft7Validator, Draft202012Validator

source = pathlib.Path(sys.argv[1])
hbs = sys.argv[2]
schemas = source / "schemas"
failures = []


def expect(holds, what):
    if not holds:
        failures.append(what)


def validator(name, draft=Draft202012Validator):
    schema = json.loads((schemas / f"{name}.schema.json").read_text())
    draft.check_schema(schema)
    return draft(schema)


def load(path):
    return json.loads((source / path).read_text())


def errors(schema, document):
    return [f"{'/'.join(map(str, e.absolute_path))}: {e.message[:200]}"
            for e in schema.iter_errors(document)]


def expect_good(schema, document, what):
    found = errors(schema, document)
    expect(not found, f"{what}: {found[:3]}")


def expect_slips(schema, good, slips):
    """Each slip is a path to a value, and what stands there instead; None takes it away."""
    for path, value in slips:
        bad = copy.deepcopy(good)
        *way, last = path
        target = bad
        for step in way:
            target = target[step]
        if value is None:
            del target[last]
        else:
            target[last] = value
        expect(errors(schema, bad), f"the slip {path} = {value} passes")


def accepts(document):
    """Whether a document is valid, and why not."""
    result = subprocess.run(["xmllint", "--noout", "--schema", schemas / "handoff.xsd", document],
                            capture_output=True, text=True)
    return result.returncode == 0, result.stderr


def write_handoff(folder, name, content):
    (folder / "c.json").write_text(json.dumps(content))
    (folder / "job.json").write_text(json.dumps(
        {"connectivity": "c.json", "system": {"ps_core_name": "core"}, "design": {"OFF": "0"}}))
    output = folder / name
    result = subprocess.run([hbs, "handoff", folder / "job.json", "-o", output],
                            capture_output=True, text=True)
    expect(result.returncode == 0, f"hbs handoff: {result.stderr}")
    return output


def text(rng):
    return rng.choice(["", "x", "a<b", "&\"'", "é", "0x10", "two words", "a,b"])


def port(rng, number):
    ends = [{"INSTANCE": rng.choice(["core_top", "m0", "s1"]), "PORT": f"p{rng.randrange(5)}"}
            for _ in range(rng.randrange(3))]
    return {"NAME": f"p{number}", "DIR": "I", "SIG_IS": rng.choice(["", "CLK", "INTERRUPT"]),
            "IRQID": text(rng), "WIDTH": "1", "CONNECTIONS": ends}


def instance(rng, name):
    members = {"SDKNAME": name, "BASE_ADDR": f"0x{rng.randrange(1 << 32):X}", "HIGH_ADDR": "",
               "IP_TYPE": text(rng), "ANY": text(rng),
               "PORTS": [port(rng, i) for i in range(rng.randrange(4))],
               "PARAMETERS": {f"P{i}": text(rng) for i in range(rng.randrange(3))}}
    if rng.randrange(4) == 0:
        members["ENPARAM"] = "OFF"
    return members


def generated(rng):
    slaves = {f"s{i}": instance(rng, f"s{i}") for i in range(rng.randrange(5))}
    masters = {f"m{i}": {**instance(rng, f"m{i}"), "excluded_slaves": ["s1"]}
               for i in range(rng.randrange(3))}
    return {"metadata": {"slaves": [slaves], "masters": [masters] if masters else []}}


connectivity = validator("connectivity")
job = validator("handoff_job")
metadata = validator("hardblock_metadata")

device = pathlib.Path("examples/device")
good = load(device / "connectivity.json")
expect_good(connectivity, good, "the sample's connectivity")
expect_good(connectivity, {"metadata": {"cell": good["metadata"]}}, "cells")
slave = ["metadata", "slaves", 0, "ddr0"]
master = ["metadata", "masters", 0, "cpu0"]
expect_slips(connectivity, good, [
    (["metadata"], None), (["metadata", "masters"], None), (["metadata", "slaves"], {}),
    (slave + ["SDKNAME"], None), (slave + ["SDKNAME"], ""), (slave + ["BASE_ADDR"], 1073741824),
    (slave + ["BASE_ADDR"], "0xZZ"), (slave + ["excluded_slaves"], []), (slave + ["PORTS"], {}),
    (slave + ["PARAMETERS", "C_RANKS"], 2), (slave + ["PORTS", 0, "NAME"], None),
    (slave + ["PORTS", 1, "CONNECTIONS", 0, "PORT"], None), (slave + ["PORTS", 0, "IRQID"], 3),
    (master + ["excluded_slaves"], "uart0"), (master + ["CLASSIFICATION"], True),
    (["metadata", "external_addressing", 0, "fabric_if0", "MODE"], 1)])

good_job = load(device / "handoff_job.json")
expect_good(job, good_job, "the sample's job")
expect_slips(job, good_job, [
    (["connectivity"], None), (["designs"], {}), (["system", "device"], 5),
    (["design", "X"], 5), (["split_by_cells"], "no")])

good_metadata = load(device / "sce/hardblocks/sorrel.json")
expect_good(metadata, good_metadata, "the sample's hard blocks")
pin = ["sorrel_ps", "pins", "MIO"]
access = ["sorrel_ps", "interfaces", "DDR", "access_point"]
expect_slips(metadata, good_metadata, [
    (pin + ["dir"], "in"), (pin + ["direction"], "output"), (pin + ["type"], "bus"),
    (pin + ["size_left"], 7.5), (pin + ["size_left"], "seven"), (access + ["ports"], {}),
    (access + ["parameters", "RANKS"], "2"), (access + ["port_maps", "x"], 1),
    (access + ["port_maps", "x"], "A[7"), (["sorrel_ps", "pin"], {})])



def output(*words, statuses=(0,)):
    """What hbs prints as JSON."""
    result = subprocess.run([hbs, *words, "--json"], capture_output=True, text=True)
    expect(result.returncode in statuses, f"hbs {words}: {result.returncode} {result.stderr}")
    return json.loads(result.stdout)


tree = validator("clock_tree")
for path in sorted((source / "examples/clocks").glob("*.json")):
    expect_good(tree, {"$schema": "x", **load(path)}, path)
good_tree = load("examples/clocks/programmable_soc.json")
expect_slips(tree, good_tree, [
    (["plls"], 3), (["reference_mhz"], 0), (["domains", 0, "name"], None),
    (["domains", 0, "plls", 0, "max"], 2000), (["peripherals", 0, "mhz"], "100"),
    (["peripherals", 0, "max_error_percent"], 101), (["peripherals", 0, "enable"], True)])

config = validator("addressing_config")
for path in ["config_linux.json", "config_bare_metal.json"]:
    expect_good(config, {"$schema": "x", **load(device / path)}, path)
expect_slips(config, load(device / "config_linux.json"), [
    (["parameter"], {}), (["instances"], []), (["assigns"], {})])

with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    report = validator("clock_report")
    example = source / "examples/clocks/programmable_soc.json"
    solved = output("clocks", example, "--explain", "--alternatives", "3")
    expect_good(report, solved, "a solved tree")
    expect_slips(report, solved, [(["plls"], None), (["peripherals", 0, "pll"], 3)])
    expect_good(validator("clock_assignment"), {"$schema": "x", **solved}, "a solution to check")
    (folder / "solved.json").write_text(json.dumps({"$schema": "x", **solved}))
    output("clocks", example, "--check", folder / "solved.json")
    greedy = copy.deepcopy(good_tree)
    for peripheral in greedy["peripherals"]:
        peripheral["max_error_percent"] = 0.0001
    greedy["$schema"] = "x"
    (folder / "greedy.json").write_text(json.dumps(greedy))
    expect_good(report, output("clocks", folder / "greedy.json", statuses=(1,)), "no solution")
    (folder / "bad.json").write_text('{"plls": 3}')
    diagnostics = validator("diagnostics")
    expect_good(diagnostics, output("clocks", folder / "bad.json", statuses=(2,)), "a fault")
    expect_good(diagnostics, output("handoff", source / device / "handoff_job.json", "--check",
                                    statuses=(0, 1)), "findings")

    area = folder / "device"
    shutil.copytree(source / device, area)
    for block in ["cpu", "ddr", "eth", "noc", "uart", "ps"]:
        expect_good(validator("definition_report"),
                    output("define", "--write", area / "mirrel/hardblocks", f"sorrel_{block}"),
                    f"the definition of {block}")
    addressing = ["addressing", "kestrom:hardblock:sorrel_ps:1.0", "--data", area]
    for path in ["config_linux.json", "config_bare_metal.json"]:
        words = [*addressing, "--config", source / device / path]
        expect_good(validator("address_map"), output(*words, "--registers"), f"the map of {path}")
        report_file = folder / "report.json"
        subprocess.run([hbs, *words, "--report", report_file], capture_output=True, check=True)
        expect_good(validator("addressing_report", Draft7Validator),
                    json.loads(report_file.read_text()), f"the report of {path}")
    for path in ["dma.xml", "registers.xml"]:
        expect_good(validator("registers"),
                    output("registers", source / device / path, "--fields"), path)

with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    rng = random.Random(1)
    documents = [source / "tests/handoff/golden.hwh", write_handoff(folder, "sample.hwh", good)]
    for i in range(25):
        content = generated(rng)
        expect_good(connectivity, content, f"generated file {i}")
        documents.append(write_handoff(folder, f"{i}.hwh", content))
    for document in documents:
        valid, why = accepts(document)
        expect(valid, f"{document}: {why}")

    sample = (folder / "sample.hwh").read_text()
    slips = [(' SIGNAME="', ' SIGNAM="'), ("<EXTERNALINTERFACES />", ""), ("MEMRANGE", "RANGE"),
             ('GUVVERSION="1.2"', 'GUVVERSION="1.3"'), ('INSTANCE="cpu1"', 'INSTANCE="cpu0"'),
             ('SIGIS="CLK"', 'SIGIS=""'), ("<PARAMETERS>", "text<PARAMETERS>"),
             ("C_BASEADDR", "BASE")]
    for wrong, instead in slips:
        expect(wrong in sample, f"the sample holds {wrong}")
        bad = folder / "bad.hwh"
        bad.write_text(sample.replace(wrong, instead))
        expect(not accepts(bad)[0], f"{instead} for {wrong} passes")

for failure in failures:
    print("failed:", failure)
sys.exit(1 if failures else 0)
