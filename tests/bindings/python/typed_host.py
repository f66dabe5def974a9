"""A host whose types are judged and which is never run: each line uses what the module promises."""

from typing import Optional

import qncomm


def sizes(printer: qncomm.Control) -> dict[str, int]:
    files: Optional[qncomm.Collection[qncomm.clsPrinterFile]] = printer.files("c:", refresh=True)
    return {file.name: file.size for file in files or ()}


def used(printer: qncomm.Control) -> str:
    outcome = printer.module_upload(target_path="LABEL.PRG", module_text="10 END")
    target: str = outcome.target_path
    printer.back_color = 0xFFFFFF
    colour: int = printer.back_color
    return f"{target} {colour} {printer.link.is_valid_port(1)}"


async def types(addresses: list[str]) -> list[str]:
    found: list[str] = []
    for address in addresses:
        async with qncomm.AsyncControl(address) as printer:
            name: str = await printer.printer_type()
            await printer.set_back_color(0)
            files: Optional[qncomm.Collection[qncomm.clsPrinterFile]] = await printer.files("c:")
            found.append(f"{name} {len(files or ())}")
    return found
