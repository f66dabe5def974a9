"""What pytest finds when the module is installed: the fixture `printer`."""

from __future__ import annotations

from collections.abc import Iterator
from typing import Any

import pytest

from .testing import VirtualPrinter


def pytest_configure(config: Any) -> None:
    config.addinivalue_line("markers", "printer(model): which virtual printer the fixture is, such as R7C")


@pytest.fixture
def printer(request: Any, tmp_path: Any) -> Iterator[VirtualPrinter]:
    """A virtual printer with a control that has found it; its labels are in tmp_path."""
    mark = request.node.get_closest_marker("printer")
    model = mark.args[0] if mark else "R7G"
    with VirtualPrinter(model, str(tmp_path)) as virtual:
        yield virtual
