"""Prints the registers of an IP-XACT file as CSV.

    register_export.py REGISTERS.xml
"""

import csv
import sys

import tq_hbs


def main(path: str) -> int:
    out = csv.writer(sys.stdout, lineterminator="\n")
    out.writerow(["name", "address", "access", "description"])
    for register in tq_hbs.parseFile(path):
        address = f"0x{register.address:08X}" if register.address is not None else ""
        out.writerow([register.name, address, register.access, register.desc])
    return 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    try:
        sys.exit(main(sys.argv[1]))
    except tq_hbs.Error as error:
        sys.exit(f"{sys.argv[0]}: {error}")
