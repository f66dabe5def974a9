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
            with self.assertRaises(AttributeError):
                printer.no_member
            with self.assertRaises(qncomm.QNError):
                await printer.files("nowhere:")

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
