"""The smallest program in Python with the control in it: which printer is there, and what is on it."""

import sys

import qncomm

address = sys.argv[1] if len(sys.argv) > 1 else "/dev/ttyUSB0"
try:
    with qncomm.Control(address) as printer:
        printer.on("StatusEvent", lambda event: print(event.status_msg, file=sys.stderr))
        if not printer.do_autoconnect():  # the search tries all rates and formats
            sys.exit("No printer was found.")
        print(printer.printer_type)
        for file in printer.files("c:"):
            print(f"{file.name}, {file.size} bytes")
except qncomm.QNError as error:
    sys.exit(f"{error.source}: {error.description}")
