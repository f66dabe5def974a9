"""Values of Python and of the library, and the errors that calls end with."""

from __future__ import annotations

import ctypes
from collections.abc import Mapping, Sequence
from typing import Any, Generic, Iterator, Optional, TypeVar, Union, overload

from . import _library as c
from ._library import library

Item = TypeVar("Item")


class QNError(Exception):
    """An error of the control: its number, the source that raised it, and what a person is told."""

    def __init__(self, number: int, source: str, description: str) -> None:
        super().__init__(number, source, description)
        self.number = number
        self.source = source
        self.description = description

    def __str__(self) -> str:
        return f"{self.description} ({self.source}, {self.number})"


class PrinterError(QNError):
    """An error that the printer itself reported."""

    BASE = 60000

    @property
    def printer_number(self) -> int:
        """The printer's own number."""
        return self.number - self.BASE


class Cancelled(QNError):
    """The operation was ended by Control.cancel."""


def error_of(handle: Optional[int]) -> QNError:
    """What the last call on that control failed with."""
    number = library.qn_error_number(handle)
    kind = PrinterError if number >= PrinterError.BASE else QNError
    return kind(
        number,
        library.qn_error_source(handle).decode(),
        library.qn_error_description(handle).decode(),
    )


class Collection(Sequence[Item], Generic[Item]):
    """Records in their order, found by position from 0, or by key in any case.

    It stays as it is when the printer is asked again.
    """

    def __init__(self, items: Sequence[Item], key: Sequence[int] = ()) -> None:
        self._items = tuple(items)
        self._key = key
        self._places: Optional[dict[str, int]] = None

    def _key_of(self, item: Any) -> str:
        return ":".join(str(item[field]) for field in self._key)

    def _place(self, key: str) -> int:
        if self._places is None:
            pairs = ((self._key_of(item).lower(), at) for at, item in enumerate(self._items))
            self._places = dict(pairs)
        return self._places[key.lower()]

    @overload
    def __getitem__(self, index: Union[int, str]) -> Item: ...
    @overload
    def __getitem__(self, index: slice) -> Sequence[Item]: ...
    def __getitem__(self, index: Any) -> Any:
        return self._items[self._place(index) if isinstance(index, str) else index]

    def __len__(self) -> int:
        return len(self._items)

    def __iter__(self) -> Iterator[Item]:
        return iter(self._items)

    def __contains__(self, item: object) -> bool:
        if not isinstance(item, str):
            return item in self._items
        return any(key.lower() == item.lower() for key in self.keys())

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Collection) and self._items == other._items

    def __repr__(self) -> str:
        return f"Collection({list(self._items)!r})"

    def keys(self) -> list[str]:
        """The keys in their order."""
        return [self._key_of(item) for item in self._items]

    def items(self) -> list[tuple[str, Item]]:
        """Keys and records in their order."""
        return list(zip(self.keys(), self._items))

    def get(self, key: str, otherwise: Optional[Item] = None) -> Optional[Item]:
        """The record of that key, in any case, or what stands for none."""
        return self[key] if key in self else otherwise


class Settings:
    """A store of settings: in memory, in a file, or a mapping of the host's own.

    A mapping is asked for (section, key) and given texts.
    """

    def __init__(self, handle: int, keep: Any = None) -> None:
        if not handle:
            raise MemoryError("There is no memory for a store.")
        self._handle = handle
        self._keep = keep

    @classmethod
    def in_memory(cls) -> Settings:
        """A store that lives as long as it is used."""
        return cls(library.qn_settings_memory())

    @classmethod
    def in_file(cls, path: Optional[str] = None) -> Settings:
        """A store in a file that several programs may share; without a path, the user's own."""
        return cls(library.qn_settings_file(None if path is None else path.encode()))

    @classmethod
    def of(cls, mapping: dict[tuple[str, str], str]) -> Settings:
        """A store in a mapping of the host's own, which must live as long as it is used."""
        last: list[bytes] = [b""]

        def read(_user: Any, section: bytes, key: bytes, value: Any) -> int:
            found = mapping.get((section.decode(), key.decode()))
            if found is None:
                return 0
            last[0] = found.encode("cp1252", "replace")
            value[0].bytes = ctypes.cast(ctypes.c_char_p(last[0]), ctypes.c_void_p)
            value[0].length = len(last[0])
            return 1

        def write(_user: Any, section: bytes, key: bytes, value: c.Bytes) -> int:
            text = ctypes.string_at(value.bytes, value.length).decode("cp1252", "replace")
            mapping[(section.decode(), key.decode())] = text
            return 0

        functions = c.StoreFunctions(c.ReadSetting(read), c.WriteSetting(write))
        store = cls(library.qn_settings_host(ctypes.byref(functions), None), functions)
        _host_functions.append(functions)  # a control may use the store longer than its host
        return store

    def __del__(self) -> None:
        if getattr(self, "_handle", None):
            library.qn_settings_free(self._handle)


_host_functions: list[c.StoreFunctions] = []


def given(arguments: Sequence[Any], fields: Mapping[type, Sequence[str]]) -> tuple[Any, list[Any]]:
    """The arguments as the library takes them, and what must live as long; fields names those of
    records."""
    keep: list[Any] = []
    values = (c.Value * len(arguments))()
    for value, argument in zip(values, arguments):
        _put(value, argument, fields, keep)
    return values, keep


def _put(value: c.Value, argument: Any, fields: Mapping[type, Sequence[str]], keep: list[Any]) -> None:
    if argument is None:
        return
    if isinstance(argument, bool):
        value.type, value.held.boolean = c.BOOLEAN, int(argument)
    elif isinstance(argument, int):
        if not -(2**31) <= argument < 2**31:
            raise QNError(6, "QNComm", "Overflow")
        value.type, value.held.integer = c.INTEGER, argument
    elif isinstance(argument, float):
        value.type, value.held.real = c.REAL, argument
    elif isinstance(argument, str):
        _put_text(value, argument, keep)
    elif isinstance(argument, Settings):
        value.type, value.held.settings = c.SETTINGS, argument._handle
        keep.append(argument)
    elif type(argument) in fields:
        _put_record(value, argument, fields, keep)
    elif isinstance(argument, Sequence):
        items, kept = given(argument, fields)
        keep += (items, kept)
        value.type, value.held.list.count = c.LIST, len(items)
        value.held.list.items = ctypes.addressof(items)
    else:
        raise QNError(13, "QNComm", f"Type mismatch: {type(argument).__name__}")


def _put_text(value: c.Value, text: str, keep: list[Any]) -> None:
    data = text.encode("utf-8", "surrogatepass")  # what is no UTF-8 is an error of the library
    keep.append(data)
    value.type = c.TEXT
    value.held.text.bytes = ctypes.cast(ctypes.c_char_p(data), ctypes.c_void_p)
    value.held.text.length = len(data)


def _put_record(value: c.Value, record: Any, fields: Mapping[type, Sequence[str]], keep: list[Any]) -> None:
    names = fields[type(record)]
    items = (c.Field * len(names))()
    for item, name, held in zip(items, names, record):
        item.name = name.encode()
        _put(item.value, held, fields, keep)
    keep.append(items)
    value.type, value.held.list.count = c.RECORD, len(items)
    value.held.list.items = ctypes.addressof(items)


def taken(value: c.Value, record: Any = None) -> Any:
    """A value of the library as one of Python; record makes the records of a list."""
    kind = value.type
    held = value.held
    if kind == c.BOOLEAN:
        return held.boolean != 0
    if kind == c.INTEGER:
        return held.integer
    if kind == c.REAL:
        return held.real
    if kind == c.TEXT:
        return ctypes.string_at(held.text.bytes, held.text.length).decode()
    if kind == c.SETTINGS:
        return Settings(library.qn_settings_keep(held.settings))
    if kind == c.LIST:
        items = (c.Value * held.list.count).from_address(held.list.items) if held.list.count else ()
        rows = [taken(item, record) for item in items]
        return rows if record is None else Collection(rows, record.KEY)
    if kind == c.RECORD:
        fields = (c.Field * held.list.count).from_address(held.list.items)
        if record is None:
            return {field.name.decode(): taken(field.value) for field in fields}
        return record(*(taken(f.value, r) for f, r in zip(fields, record.RECORDS)))
    return None
