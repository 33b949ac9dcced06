"""Knowledge of the hard blocks of a programmable device.

Clock trees, register files, hard block metadata, address maps and hardware handoffs, as objects:

    import tq_hbs

    tree = tq_hbs.readClockTree("tree.json")
    if tree.runSolution():
        for pll in tree.allPlls:
            print(pll.name, pll.vcoFreq)

Objects belong to what they were got from, which stays alive as long as one of them is held. After
``delete()``, or at the end of a ``with``, all of them raise ``DeletedError``. What the library has
to say goes to the logger ``tq_hbs``.
"""

import logging as _logging
from typing import NamedTuple as _NamedTuple


class Diagnostic(_NamedTuple):
    """One finding: what is wrong, what was expected, and where (0 for an unknown line)."""

    severity: str
    id: str
    file: str
    line: int
    column: int
    text: str
    expected: str


_logger = _logging.getLogger("tq_hbs")
_levels = {"error": _logging.ERROR, "warning": _logging.WARNING, "remark": _logging.DEBUG}


def _log(diagnostic: Diagnostic) -> None:
    d = diagnostic
    place = ":".join(str(part) for part in (d.file, d.line, d.column) if part)
    text = d.text + (f", expected {d.expected}" if d.expected else "")
    _logger.log(
        _levels[d.severity],
        "%s%s",
        place + ": " if place else "",
        text,
        extra={"diagnostic": d},
    )


from tq_hbs._native import *  # noqa: E402,F401,F403
from tq_hbs._native import __version__  # noqa: E402,F401
