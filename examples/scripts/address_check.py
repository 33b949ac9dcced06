"""Checks the address map of a configured subsystem, for CI: exits with 1 for an error.

    address_check.py DATA_AREA VENDOR:LIBRARY:NAME:VERSION [CONFIG.json [ALLOWED ...]]

ALLOWED are findings that are left out: KIND, or KIND:NAME as they are printed.
"""

import os
import sys

import tq_hbs


def main(data: str, vlnv: str, config: str = "", *allowed: str) -> int:
    os.environ["TQ_DATA_PATH"] = data
    with tq_hbs.ConfiguredMap(vlnv, config) as address_map:
        findings = address_map.check(allow=allowed)
        for finding in findings:
            place = f"{finding['file']}:{finding['line']}: " if finding["line"] else ""
            print(f"{place}{finding['severity']}: {finding['text']} [{finding['id']}]")
        print(f"{len(address_map)} blocks, {len(findings)} findings")
    return 1 if any(finding["severity"] == "error" for finding in findings) else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    try:
        sys.exit(main(*sys.argv[1:]))
    except tq_hbs.Error as error:
        sys.exit(f"{sys.argv[0]}: {error}")
