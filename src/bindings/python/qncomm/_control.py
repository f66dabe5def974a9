"""A control, and the same for asyncio."""

from __future__ import annotations

import ctypes
import signal
import threading
from typing import Any, Callable, Optional, Self, Sequence, Union

from . import _library as c
from ._library import library
from ._members import EVENTS, FIELDS, AwaitedMembers, ControlMembers, LayerMembers, LinkMembers
from ._values import Cancelled, QNError, Settings, error_of, given, taken


class Event:
    """What an event tells: its arguments by name. What a handler sets goes back to the control."""

    def __init__(self, names: Sequence[str], values: Sequence[Any]) -> None:
        self.__dict__.update(zip(names, values))

    def __getattr__(self, name: str) -> Any:
        raise AttributeError(f"The event has no {name}; it has {', '.join(self.__dict__)}.")

    def __repr__(self) -> str:
        return f"Event({', '.join(f'{name}={value!r}' for name, value in self.__dict__.items())})"


Handler = Callable[[Event], Any]

_TRACE_KINDS = ("sent", "received", "event")


class _Interrupt:
    """Ctrl-C during a call: the control's loop wakes, and what runs is cancelled. In the main thread
    alone, and only where the host has no handler of its own."""

    def __init__(self, control: Control) -> None:
        self._control = control
        self.came = False
        self._taken = (
            control._handle is not None
            and threading.current_thread() is threading.main_thread()
            and signal.getsignal(signal.SIGINT) is signal.default_int_handler
        )

    def _cancel(self, _number: int, _frame: Any) -> None:
        self.came = True
        self._control.cancel()

    def __enter__(self) -> _Interrupt:
        if self._taken:
            self._wakeup = signal.set_wakeup_fd(self._control._wake, warn_on_full_buffer=False)
            signal.signal(signal.SIGINT, self._cancel)
        return self

    def __exit__(self, *_: Any) -> None:
        if self._taken:
            signal.signal(signal.SIGINT, signal.default_int_handler)
            signal.set_wakeup_fd(self._wakeup)


class Control(ControlMembers):
    """A printer's control with its port and its terminal.

    address is where the printer is: a device such as "/dev/ttyUSB0", "tcp://host:port",
    "rfc2217://host:port" or "sim:R7G"; it is bound to port 1. settings is where port and function
    keys are remembered; without one, in memory. remembered speaks at once to the printer that the
    settings remember, listen listens before it searches.

    Every member of the control is a method or property, under its name in Python ("printer_type")
    and under its own ("PrinterType"). Members that cannot be done raise QNError.
    """

    def __init__(
        self,
        address: Optional[str] = None,
        settings: Optional[Settings] = None,
        *,
        remembered: bool = False,
        listen: bool = False,
        rows: int = 0,
        columns: int = 0,
    ) -> None:
        self._handlers: dict[str, Any] = {}
        self._raised: Optional[BaseException] = None
        options = c.Options(
            ctypes.sizeof(c.Options), 0, int(remembered), int(listen), rows, columns, 0
        )
        self._handle: Optional[int] = library.qn_create(ctypes.byref(options))
        if self._handle is None:
            raise QNError(7, "QNComm", "Out of memory or descriptors")
        self._wake = library.qn_wake_fd(self._handle)
        self._woken = c.SignalHandler(lambda _: None)  # Python runs its own handlers on the way
        library.qn_on_signal(self._handle, self._woken, None)
        try:
            if address is not None:
                self.bind(1, address)
            if settings is not None:
                self.reg_settings = settings
        except BaseException:
            self.close()
            raise

    @property
    def layer(self) -> LayerMembers:
        """The printer's command layer, for what the control itself does not offer."""
        return _Layer(self)

    @property
    def link(self) -> LinkMembers:
        """The link that owns the port, for what the control itself does not offer."""
        return _Link(self)

    # -- Its end

    def close(self) -> None:
        """Closes the port and ends the control. Harmless when repeated."""
        handle, self._handle = self._handle, None
        if handle is not None and library.qn_free(handle) != c.OK:
            self._handle = handle
            raise error_of(handle)

    def __enter__(self) -> Self:
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_handle", None) is not None:
            library.qn_free(self._handle)

    # -- Calls

    def _check(self, status: int) -> None:
        raised, self._raised = self._raised, None
        if raised is not None:
            raise raised
        if status == c.OK:
            return
        if status == c.FREED:
            raise QNError(91, "QNComm", "The control was closed meanwhile.")
        error = error_of(self._handle)
        if status == c.CANCELLED:
            raise Cancelled(error.number, error.source, error.description)
        raise error

    def _do(self, name: Union[int, str], arguments: Sequence[Any]) -> tuple[Any, Any, Any]:
        values, keep = given(arguments, FIELDS) if arguments else (None, None)
        result = c.Value()
        if isinstance(name, int):
            call, member = library.qn_call_id, name  # type: Any, Any
        else:
            call, member = library.qn_call, name.encode()
        self._check(call(self._handle, member, values, len(arguments), ctypes.byref(result)))
        return result, values, keep

    def _call(self, member: int, arguments: Sequence[Any] = (), record: Any = None) -> Any:
        return taken(self._do(member, arguments)[0], record)

    def _wait(self, member: int, arguments: Sequence[Any] = (), record: Any = None) -> Any:
        with _Interrupt(self) as interrupt:
            try:
                return taken(self._do(member, arguments)[0], record)
            except Cancelled:
                if interrupt.came:
                    raise KeyboardInterrupt from None
                raise

    def _written(
        self, member: int, arguments: Sequence[Any], back: Sequence[int], record: Any = None
    ) -> list[Any]:
        with _Interrupt(self) as interrupt:
            try:
                result, values, _keep = self._do(member, arguments)
                return [taken(result, record)] + [taken(values[at]) for at in back]
            except Cancelled:
                if interrupt.came:
                    raise KeyboardInterrupt from None
                raise

    def call(self, name: str, *arguments: Any) -> Any:
        """Calls a member by its name in any case, such as "Files" or "clsQuorin.Kill". None leaves
        an argument out."""
        with _Interrupt(self):
            return taken(self._do(name, arguments)[0])

    def bind(self, port: int, address: str) -> None:
        """Binds a port's number (0 to 16) to an address."""
        self._check(library.qn_bind(self._handle, port, address.encode()))

    def show(self, shown: bool = True) -> None:
        """Has the control hold its port open and take what the printer sends, or hides it."""
        self._check(library.qn_show(self._handle, int(shown)))

    def type(self, keys: bytes) -> int:
        """Types bytes into the terminal; returns how many it took."""
        count = ctypes.c_size_t()
        self._check(library.qn_type_bytes(self._handle, keys, len(keys), ctypes.byref(count)))
        return count.value

    # -- Events and the loop

    def on(self, event: str, handler: Optional[Handler]) -> None:
        """Has the handler called for an event ("StatusEvent", "PortStateEvent", "LiveStateEvent",
        or one of "clsQuorin.…" and "clsDataLink.…"), in place of the one before; None hears no
        more. A result that is true stops a long operation; so does an error, which the call then
        raises."""
        key = (event if "." in event else "QNComm." + event).lower()
        names = EVENTS.get(key, ())

        def hear(_user: Any, values: Any, count: int) -> int:
            try:
                told = Event(names, [taken(values[at]) for at in range(count)])
                stops = handler(told) if handler is not None else False
                back, keep = given([getattr(told, name) for name in names], FIELDS)
                self._given_back = keep  # lives until the next event
                for at in range(count):
                    values[at] = back[at]
                return int(bool(stops))
            except BaseException as error:  # it may not pass the library
                self._raised = self._raised or error
                return 1

        function = c.EventHandler(hear) if handler is not None else ctypes.cast(0, c.EventHandler)
        self._check(library.qn_on(self._handle, event.encode(), function, None))
        self._handlers[key] = function

    def on_box(self, handler: Optional[Callable[[str, str, int], int]]) -> None:
        """Has message boxes shown by handler(text, title, buttons), which returns 1 for OK, 2 for
        Cancel, 6 for Yes, 7 for No."""

        def show(_user: Any, box: Any) -> int:
            try:
                text, title = box[0].text.decode(), box[0].title.decode()
                return int(handler(text, title, box[0].buttons) or 0) if handler else 0
            except BaseException as error:
                self._raised = self._raised or error
                return 0

        function = c.BoxHandler(show) if handler is not None else ctypes.cast(0, c.BoxHandler)
        self._check(library.qn_on_box(self._handle, function, None))
        self._handlers["a box"] = function

    def on_trace(self, handler: Optional[Callable[[str, bytes], Any]]) -> None:
        """Has handler(kind, what) called for all that travels on the line: "sent" and "received"
        with bytes, "event" with what happened to the port. It must not call the control; an error
        that it raises leaves the call that runs."""

        def hear(_user: Any, _ms: int, kind: int, what: c.Bytes) -> None:
            try:
                if handler is not None:
                    handler(_TRACE_KINDS[kind], ctypes.string_at(what.bytes, what.length))
            except BaseException as error:
                self._raised = self._raised or error

        function = c.TraceHandler(hear) if handler is not None else ctypes.cast(0, c.TraceHandler)
        self._check(library.qn_on_trace(self._handle, function, None))
        self._handlers["the trace"] = function

    def cancel(self) -> None:
        """From any thread: ends what runs, which then raises Cancelled."""
        if self._handle is not None:
            library.qn_cancel(self._handle)

    def step(self, seconds: float = 0.0) -> None:
        """Does what is due; when nothing is, sleeps until something is or the time has passed."""
        with _Interrupt(self) as interrupt:
            self._check(library.qn_step(self._handle, int(seconds * 1000)))
        if interrupt.came:
            raise KeyboardInterrupt

    def fileno(self) -> int:
        """A descriptor for another loop: while it is readable, call step()."""
        fd = library.qn_fd(self._handle)
        if fd < 0:
            raise error_of(self._handle)
        return fd


class _Part:
    """A class behind the control; its members are called through the control."""

    def __init__(self, control: Control) -> None:
        self._call = control._call
        self._wait = control._wait
        self._written = control._written


class _Layer(_Part, LayerMembers):
    pass


class _Link(_Part, LinkMembers):
    pass


class AsyncControl(AwaitedMembers):
    """A Control for asyncio, on a thread of its own: many printers work at the same time.

    Every member is awaited: `await printer.files("c:")`, `await printer.printer_type()`; a property
    is set by `await printer.set_back_color(0)`. A task that is cancelled cancels what runs.
    Handlers of events are called on the control's thread.
    """

    def __init__(self, address: Optional[str] = None, *arguments: Any, **options: Any) -> None:
        from concurrent.futures import ThreadPoolExecutor

        self._thread = ThreadPoolExecutor(1, "qncomm")
        self._make = lambda: Control(address, *arguments, **options)
        self._control: Optional[Control] = None

    async def _run(self, work: Callable[[], Any]) -> Any:
        import asyncio

        done = asyncio.get_running_loop().run_in_executor(self._thread, work)
        try:
            return await asyncio.shield(done)
        except asyncio.CancelledError:
            self.cancel()
            await asyncio.wait([done])  # its port is closed then
            raise

    async def __aenter__(self) -> Self:
        self._control = await self._run(self._make)
        return self

    async def __aexit__(self, *_: Any) -> None:
        await self.close()

    async def close(self) -> None:
        """Closes the port and ends the control with its thread."""
        control, self._control = self._control, None
        if control is not None:
            await self._run(control.close)
        self._thread.shutdown(wait=False)

    def _open(self) -> Control:
        if self._control is None:
            raise QNError(91, "QNComm", "The control is not open: use it in `async with`.")
        return self._control

    async def _read(self, name: str) -> Any:
        control = self._open()
        return await self._run(lambda: getattr(control, name))

    async def _member(self, name: str, *arguments: Any) -> Any:
        member = getattr(self._open(), name)
        return await self._run(lambda: member(*arguments))

    async def set(self, name: str, value: Any) -> None:
        """Sets a property."""
        control = self._open()
        await self._run(lambda: setattr(control, name, value))

    async def call(self, name: str, *arguments: Any) -> Any:
        """As Control.call."""
        return await self._member("call", name, *arguments)

    async def bind(self, port: int, address: str) -> None:
        """As Control.bind."""
        await self._member("bind", port, address)

    async def show(self, shown: bool = True) -> None:
        """As Control.show."""
        await self._member("show", shown)

    async def type(self, keys: bytes) -> int:
        """As Control.type."""
        return await self._member("type", keys)

    async def on(self, event: str, handler: Optional[Handler]) -> None:
        """As Control.on."""
        await self._member("on", event, handler)

    async def on_box(self, handler: Optional[Callable[[str, str, int], int]]) -> None:
        """As Control.on_box."""
        await self._member("on_box", handler)

    async def on_trace(self, handler: Optional[Callable[[str, bytes], Any]]) -> None:
        """As Control.on_trace."""
        await self._member("on_trace", handler)

    def cancel(self) -> None:
        """From any thread: ends what runs, which then raises Cancelled."""
        if self._control is not None:
            self._control.cancel()
