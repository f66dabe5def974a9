"""Events, boxes, and the end of what runs."""

import os
import select
import signal
import threading
import unittest

import qncomm

PRINTER = "sim:R7G?baud=115200"


class Events(unittest.TestCase):
    def setUp(self):
        self.printer = qncomm.Control(PRINTER)
        self.addCleanup(self.printer.close)

    def test_the_port_tells_when_it_opens_and_closes(self):
        heard = []
        self.printer.on("PortStateEvent", lambda event: heard.append(event.port_busy))
        self.assertEqual(self.printer.printer_type, "R7G")
        self.assertEqual(heard, [True, False] * (len(heard) // 2))
        self.assertTrue(heard)
        self.printer.on("PortStateEvent", None)
        before = len(heard)
        self.printer.printer_type
        self.assertEqual(len(heard), before)

    def test_a_handler_stops_a_search_by_its_result_or_the_events_flag(self):
        def by_flag(event):
            event.cancel = True

        for handler in (lambda event: True, by_flag):
            self.printer.on("StatusEvent", handler)
            self.assertFalse(self.printer.do_autoconnect())

    def test_an_error_of_a_handler_is_raised_by_the_call(self):
        def fail(event):
            raise LookupError(event.status_msg)

        self.printer.on("StatusEvent", fail)
        with self.assertRaises(LookupError):
            self.printer.do_autoconnect()
        self.printer.on("StatusEvent", None)
        self.assertTrue(self.printer.do_autoconnect())

    def test_a_control_may_be_closed_in_its_own_event(self):
        self.printer.on("StatusEvent", lambda event: self.printer.close())
        with self.assertRaises(qncomm.QNError):
            self.printer.do_autoconnect()

    def test_the_classes_behind_the_control_have_events_of_their_own(self):
        told = []
        self.printer.on("clsDataLink.StatusEvent", lambda event: told.append(event.progress_perc))
        self.assertTrue(self.printer.do_autoconnect())
        self.assertEqual(told[-1], 100)

    def test_what_travels_on_the_line_is_traced(self):
        heard = {"sent": b"", "received": b"", "event": b""}

        def hear(kind, what):
            heard[kind] += what

        self.printer.on_trace(hear)
        self.assertEqual(self.printer.printer_type, "R7G")
        self.assertIn(b"SYSVAR", heard["sent"])
        self.assertIn(b"Ok\r\n", heard["received"])
        self.assertIn(b"open ", heard["event"])
        self.printer.on_trace(None)

        def fail(kind, what):
            raise LookupError(kind)

        self.printer.on_trace(fail)
        with self.assertRaises(LookupError):
            self.printer.do_autoconnect()

    def test_a_box_is_shown_by_the_host(self):
        shown = []
        self.printer.on_box(lambda text, title, buttons: shown.append((text, title, buttons)))
        self.printer.press_toolbar_key("nokey")
        self.assertEqual(len(shown), 1)

    def test_another_thread_cancels(self):
        def cancel(event):
            thread = threading.Thread(target=self.printer.cancel)
            thread.start()
            thread.join()

        self.printer.on("StatusEvent", cancel)
        try:
            self.assertFalse(self.printer.do_autoconnect())
        except qncomm.Cancelled as error:
            self.assertEqual(error.number, 18)
        self.printer.on("StatusEvent", None)
        self.assertEqual(self.printer.printer_type, "R7G")

    def test_ctrl_c_ends_what_runs_and_closes_the_port(self):
        busy = []
        self.printer.on("PortStateEvent", lambda event: busy.append(event.port_busy))
        self.printer.on("StatusEvent", lambda event: os.kill(os.getpid(), signal.SIGINT))
        interrupted = False
        try:
            found = self.printer.do_autoconnect()
        except KeyboardInterrupt:
            interrupted = True
        self.assertTrue(interrupted or not found)
        self.assertFalse(busy and busy[-1])
        self.printer.on("StatusEvent", None)
        self.assertEqual(self.printer.printer_type, "R7G")

    def test_another_loop_watches_its_descriptor(self):
        self.assertEqual(self.printer.printer_type, "R7G")
        self.printer.show()
        before = self.printer.cursor_row
        self.assertEqual(self.printer.type(b"PRINT 6*7\r"), 10)
        while self.printer.cursor_row < before + 2:
            select.select([self.printer], [], [])
            self.printer.step()
        self.printer.show(False)


if __name__ == "__main__":
    unittest.main()
