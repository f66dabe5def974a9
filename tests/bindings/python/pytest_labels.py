"""The fixture, as tests of a host use it."""

import pytest


def test_label(printer):
    assert printer.printer_type == "R7G"
    assert printer.labels == []
    printer.print_font("Hello", "SW030RSN.1", 12)
    assert len(printer.labels) == 1
    label = printer.labels[0]
    assert label.png.startswith(b"\x89PNG")
    assert min(label.size) > 100
    assert label.path.endswith(".png")


@pytest.mark.printer("R7C?baud=115200")
def test_another_model(printer):
    assert printer.printer_type == "R7C"


def test_each_test_has_a_printer_of_its_own(printer):
    assert printer.labels == []
