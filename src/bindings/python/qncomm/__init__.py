"""The control for label printers that are programmed in Quorin, from Python.

    import qncomm

    with qncomm.Control("/dev/ttyUSB0") as printer:
        print(printer.printer_type)
        for file in printer.files("c:"):
            print(file.name, file.size)

A Control belongs to the thread that made it. AsyncControl is the same for asyncio: each has a thread
of its own, and every member is awaited.
"""

from ._control import AsyncControl, Control, Event
from ._library import version
from ._members import *  # noqa: F403  the records, which hosts make and compare
from ._values import Cancelled, Collection, PrinterError, QNError, Settings

__all__ = [
    "AsyncControl",
    "Cancelled",
    "Collection",
    "Control",
    "Event",
    "PrinterError",
    "QNError",
    "Settings",
    "version",
]
__version__ = version()
