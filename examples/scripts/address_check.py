"""Checks the address map of a configured subsystem, for CI: exits with 1 if blocks overlap.

    address_check.py DATA_AREA VENDOR:LIBRARY:NAME:VERSION [CONFIG.json]
"""

import os
import sys
from itertools import combinations

import tq_hbs


def main(data: str, vlnv: str, config: str = "") -> int:
    os.environ["TQ_DATA_PATH"] = data
    definition = tq_hbs.createSubsystemDefinition(vlnv)
    instance = tq_hbs.configureSubsystem(definition, config)
    address_map = tq_hbs.AddressMap(definition, instance)
    placed = [
        (block["base"], block["end"], block["path"])
        for block in address_map
        if block["on"] and block["base"] is not None and block["end"] is not None
    ]
    faults = 0
    for (base, end, path), (other_base, other_end, other_path) in combinations(placed, 2):
        if base <= other_end and other_base <= end:
            print(f"{path} (0x{base:X} to 0x{end:X}) overlaps {other_path} (0x{other_base:X} to 0x{other_end:X})")
            faults += 1
    print(f"{len(placed)} blocks, {faults} overlaps")
    return 1 if faults else 0


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    try:
        sys.exit(main(*sys.argv[1:]))
    except tq_hbs.Error as error:
        sys.exit(f"{sys.argv[0]}: {error}")
