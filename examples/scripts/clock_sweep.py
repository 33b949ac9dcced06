"""Solves a clock tree for a range of frequencies of one peripheral, and prints a CSV table.

    clock_sweep.py TREE.json PERIPHERAL FROM TO STEP
"""

import sys

import tq_hbs


def main(path: str, name: str, first: str, last: str, step: str) -> int:
    with tq_hbs.readClockTree(path) as tree:
        peripheral = tree.getPeripheral(name)
        print("request_mhz,got_mhz,pll,total_error")
        request = float(first)
        while request <= float(last):
            peripheral.requestedFreq = request
            if tree.runSolution():
                total = tree.totalRelativeError
                print(f"{request:g},{peripheral.actualFreq:.4f},{peripheral.pllName},{total:.3g}")
            else:
                print(f"{request:g},,,")
            request += float(step)
    return 0


if __name__ == "__main__":
    if len(sys.argv) != 6:
        sys.exit(__doc__)
    try:
        sys.exit(main(*sys.argv[1:]))
    except tq_hbs.Error as error:
        sys.exit(f"{sys.argv[0]}: {error}")
