"""Many printers at the same time, under asyncio."""

import asyncio
import unittest

import qncomm

PRINTER = "sim:R7G?baud=115200"


class Tasks(unittest.IsolatedAsyncioTestCase):
    async def test_members_are_awaited(self):
        async with qncomm.AsyncControl(PRINTER) as printer:
            self.assertEqual(await printer.printer_type(), "R7G")
            files = await printer.files("c:", refresh=True)
            self.assertIsInstance(files, qncomm.Collection)
            await printer.set("back_color", 3)
            self.assertEqual(await printer.back_color(), 3)
            await printer.set_back_color(4)
            self.assertEqual(await printer.back_color(), 4)
            outcome = await printer.module_upload(target_path="LABEL.PRG", module_text="10 END")
            self.assertEqual(outcome.target_path, "tmp:LABEL.PRG")
            with self.assertRaises(AttributeError):
                printer.no_member
            with self.assertRaises(qncomm.QNError):
                await printer.files("nowhere:")

    async def test_every_member_is_awaited_by_its_own_method(self):
        for name in dir(qncomm.Control):
            if name.startswith("_") or name != name.lower() or name in ("layer", "link", "step", "fileno"):
                continue
            self.assertTrue(callable(getattr(qncomm.AsyncControl, name)), name)

    async def test_a_control_that_is_not_open_is_an_error(self):
        with self.assertRaises(qncomm.QNError):
            await qncomm.AsyncControl(PRINTER).printer_type()

    async def test_another_task_cancels(self):
        async with qncomm.AsyncControl(PRINTER) as printer:
            await printer.on("StatusEvent", lambda event: printer.cancel())
            try:
                self.assertFalse(await printer.do_autoconnect())
            except qncomm.Cancelled as error:
                self.assertEqual(error.number, 18)

    async def test_many_printers_work_at_the_same_time(self):
        async def type_of():
            async with qncomm.AsyncControl(PRINTER) as printer:
                return await printer.printer_type()

        types = await asyncio.gather(*(type_of() for _ in range(20)))
        self.assertEqual(types, ["R7G"] * 20)

    async def test_a_cancelled_task_cancels_what_runs(self):
        async with qncomm.AsyncControl(PRINTER) as printer:
            begun = asyncio.Event()
            loop = asyncio.get_running_loop()
            await printer.on("StatusEvent", lambda event: loop.call_soon_threadsafe(begun.set) and None)
            search = asyncio.create_task(printer.do_autoconnect())
            await begun.wait()
            search.cancel()
            with self.assertRaises(asyncio.CancelledError):
                await search
            await printer.on("StatusEvent", None)
            self.assertEqual(await printer.printer_type(), "R7G")


if __name__ == "__main__":
    unittest.main()
