"""A virtual printer for the tests of a program: a control with a printer of its own behind it.

    with VirtualPrinter() as printer:
        my_program.print_label(printer)
        assert printer.labels[-1].size == (832, 300)

pytest has it as the fixture `printer`; `@pytest.mark.printer("R7C")` chooses another model.
"""

from __future__ import annotations

import os
import struct
import tempfile
from typing import Any

from ._control import Control


class Label:
    """A label that was printed."""

    def __init__(self, path: str) -> None:
        self.path = path

    @property
    def png(self) -> bytes:
        """Its picture, one pixel for each dot."""
        with open(self.path, "rb") as file:
            return file.read()

    @property
    def size(self) -> tuple[int, int]:
        """Its width and height in dots."""
        width, height = struct.unpack(">II", self.png[16:24])
        return width, height

    def __repr__(self) -> str:
        return f"Label({self.path!r})"


class VirtualPrinter(Control):
    """A control whose port is a virtual printer in this process, found already.

    model may have options, such as "R7G?baud=115200"; the others are those of Control. Pictures of
    the labels are kept in folder, which must be there; without one, until the printer is closed.
    """

    def __init__(self, model: str = "R7G", folder: str = "", **options: Any) -> None:
        self._folder = None if folder else tempfile.TemporaryDirectory(prefix="qncomm-labels-")
        self._labels = folder or (self._folder.name if self._folder else "")
        sign = "&" if "?" in model else "?"
        try:
            super().__init__(f"sim:{model}{sign}labels={self._labels}", **options)
            if not self.do_autoconnect():
                raise RuntimeError(f"The virtual printer {model} was not found.")
        except BaseException:
            self.close()
            raise

    @property
    def labels(self) -> list[Label]:
        """What it has printed so far, in order."""
        names = sorted(name for name in os.listdir(self._labels) if name.endswith(".png"))
        return [Label(os.path.join(self._labels, name)) for name in names]

    def close(self) -> None:
        """Ends the control, and takes away the pictures that no folder of the host holds."""
        if getattr(self, "_handle", None) is not None:
            super().close()
        if self._folder is not None:
            self._folder.cleanup()
