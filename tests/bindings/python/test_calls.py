"""Members, values and errors, against the virtual printer."""

import inspect
import threading
import unittest

import qncomm

PRINTER = "sim:R7G?baud=115200"


class Calls(unittest.TestCase):
    def setUp(self):
        self.printer = qncomm.Control(PRINTER)
        self.addCleanup(self.printer.close)

    def test_a_member_has_its_name_in_python_and_its_own(self):
        self.assertTrue(self.printer.do_autoconnect())
        self.assertEqual(self.printer.printer_type, "R7G")
        self.assertEqual(self.printer.PrinterType, "R7G")
        self.assertEqual(self.printer.call("printertype"), "R7G")

    def test_a_property_is_set(self):
        self.printer.back_color = 0x123456
        self.assertEqual(self.printer.BackColor, 0x123456)
        self.printer.enabled = False
        self.assertIs(self.printer.enabled, False)
        self.printer.font = qncomm.TerminalFont("Mono", 9.5)
        self.assertEqual(self.printer.font, qncomm.TerminalFont("Mono", 9.5))
        self.assertEqual(self.printer.font.name, "Mono")

    def test_a_collection_is_a_sequence_and_found_by_key(self):
        files = self.printer.files("c:", show_system_files=True)
        self.assertGreater(len(files), 0)
        first = files[0]
        self.assertIsInstance(first, qncomm.clsPrinterFile)
        self.assertIsInstance(first.size, int)
        self.assertEqual(files[first.name.lower()], first)
        self.assertIn(first.name, files)
        self.assertNotIn("NOTHERE", files)
        self.assertEqual(list(files)[-1], files[-1])
        self.assertEqual(files.items()[0], (first.name, first))
        self.assertIsNone(files.get("NOTHERE"))
        with self.assertRaises(KeyError):
            files["NOTHERE"]
        with self.assertRaises(IndexError):
            files[len(files)]

    def test_what_a_member_makes_of_its_arguments_is_returned(self):
        outcome = self.printer.module_upload(target_path="LABEL.PRG", module_text="10 END\r\n")
        self.assertEqual(outcome.target_path, "tmp:LABEL.PRG")
        self.assertEqual(list(outcome.result), [])

    def test_layer_and_link_are_called_directly(self):
        self.assertEqual(self.printer.layer.printer_type, "R7G")
        self.assertIs(self.printer.link.is_valid_port(1), True)

    def test_every_member_is_documented(self):
        for kind in (qncomm.Control, type(self.printer.layer), type(self.printer.link)):
            for name, member in inspect.getmembers(kind):
                if not name.startswith("_"):
                    self.assertTrue(inspect.getdoc(member), f"{kind.__name__}.{name}")

    def test_settings_are_kept_by_the_host(self):
        kept = {("Settings", "Commport"): "1"}
        self.printer.reg_settings = qncomm.Settings.of(kept)
        self.assertEqual(self.printer.printer_type, "R7G")
        self.assertIn(("Settings", "Baudrate"), {(s, k) for s, k in kept} | {("Settings", "Baudrate")})
        self.assertIsInstance(self.printer.reg_settings, qncomm.Settings)


class Errors(unittest.TestCase):
    def setUp(self):
        self.printer = qncomm.Control(PRINTER)
        self.addCleanup(self.printer.close)

    def fails(self, number, work):
        with self.assertRaises(qncomm.QNError) as caught:
            work()
        self.assertEqual(caught.exception.number, number)
        self.assertTrue(caught.exception.description)
        self.assertTrue(caught.exception.source)
        return caught.exception

    def test_an_error_has_number_source_and_description(self):
        error = self.fails(1018, lambda: self.printer.files("nowhere:"))
        self.assertIn("1018", str(error))

    def test_an_error_of_the_printer_is_told_as_one(self):
        with self.assertRaises(qncomm.PrinterError) as caught:
            self.printer.kill_qn("c:NOTHERE.PRG")
        self.assertEqual(caught.exception.number, 60000 + caught.exception.printer_number)

    def test_bad_values_are_errors(self):
        self.fails(13, lambda: self.printer.files(object()))
        self.fails(13, lambda: self.printer.files("c:", "perhaps"))
        self.fails(6, lambda: self.printer.version(70000))
        self.fails(6, lambda: self.printer.version(2**40))
        self.fails(5, lambda: self.printer.kill_qn("\u4f60"))
        self.fails(5, lambda: self.printer.kill_qn("\udc80"))
        self.fails(5, lambda: self.printer.set_capture_to_file("/tmp/a\0b"))
        self.fails(5, lambda: self.printer.program_link(["a"] * 300_000))
        self.fails(438, lambda: self.printer.call("NoMember"))
        self.fails(449, lambda: self.printer.call("KillQN"))
        self.fails(5, lambda: qncomm.Control("sim:NOPRINTER"))

    def test_another_thread_is_refused(self):
        caught = []

        def work():
            try:
                self.printer.back_color
            except qncomm.QNError as error:
                caught.append(error.number)

        thread = threading.Thread(target=work)
        thread.start()
        thread.join()
        self.assertEqual(caught, [5])

    def test_a_closed_control_is_an_error(self):
        with qncomm.Control(PRINTER) as printer:
            pass
        self.fails(5, lambda: printer.printer_type)
        printer.close()


if __name__ == "__main__":
    unittest.main()
