"""The shared library as ctypes sees it: its structures and the functions that the module uses."""

from __future__ import annotations

import ctypes
import os
from ctypes import POINTER, c_char_p, c_int, c_int32, c_int64, c_size_t, c_void_p

NOTHING, BOOLEAN, INTEGER, REAL, TEXT, SETTINGS, LIST, RECORD = range(8)
OK, FAILED, CANCELLED, FREED = range(4)


class Bytes(ctypes.Structure):
    _fields_ = [("bytes", c_void_p), ("length", c_size_t)]


class Items(ctypes.Structure):
    """A list or a record: where its values or fields are, and how many."""

    _fields_ = [("items", c_void_p), ("count", c_size_t)]


class As(ctypes.Union):
    _fields_ = [
        ("boolean", c_int),
        ("integer", c_int32),
        ("real", ctypes.c_double),
        ("text", Bytes),
        ("settings", c_void_p),
        ("list", Items),
    ]


class Value(ctypes.Structure):
    _fields_ = [("type", c_int), ("held", As)]


class Field(ctypes.Structure):
    _fields_ = [("name", c_char_p), ("value", Value)]


class Options(ctypes.Structure):
    _fields_ = [
        ("size", c_size_t),
        ("texts", c_int),
        ("remembered", c_int),
        ("listen", c_int),
        ("rows", ctypes.c_int16),
        ("columns", ctypes.c_int16),
        ("scroll_back", c_int32),
    ]


class Box(ctypes.Structure):
    _fields_ = [("text", c_char_p), ("title", c_char_p), ("buttons", c_int), ("icon", c_int)]


EventHandler = ctypes.CFUNCTYPE(c_int, c_void_p, POINTER(Value), c_size_t)
BoxHandler = ctypes.CFUNCTYPE(c_int, c_void_p, POINTER(Box))
TraceHandler = ctypes.CFUNCTYPE(None, c_void_p, c_int64, c_int, Bytes)
SignalHandler = ctypes.CFUNCTYPE(None, c_void_p)
ReadSetting = ctypes.CFUNCTYPE(c_int, c_void_p, c_char_p, c_char_p, POINTER(Bytes))
WriteSetting = ctypes.CFUNCTYPE(c_int, c_void_p, c_char_p, c_char_p, Bytes)


class StoreFunctions(ctypes.Structure):
    _fields_ = [("read", ReadSetting), ("write", WriteSetting)]


# What each function takes and returns; a control and a store are addresses.
_FUNCTIONS = {
    "qn_version": (c_char_p,),
    "qn_create": (c_void_p, POINTER(Options)),
    "qn_free": (c_int, c_void_p),
    "qn_error_number": (c_int32, c_void_p),
    "qn_error_source": (c_char_p, c_void_p),
    "qn_error_description": (c_char_p, c_void_p),
    "qn_bind": (c_int, c_void_p, c_int, c_char_p),
    "qn_show": (c_int, c_void_p, c_int),
    "qn_call": (c_int, c_void_p, c_char_p, POINTER(Value), c_size_t, POINTER(Value)),
    "qn_call_id": (c_int, c_void_p, c_int32, POINTER(Value), c_size_t, POINTER(Value)),
    "qn_on": (c_int, c_void_p, c_char_p, EventHandler, c_void_p),
    "qn_on_box": (c_int, c_void_p, BoxHandler, c_void_p),
    "qn_on_trace": (c_int, c_void_p, TraceHandler, c_void_p),
    "qn_on_signal": (c_int, c_void_p, SignalHandler, c_void_p),
    "qn_cancel": (None, c_void_p),
    "qn_step": (c_int, c_void_p, c_int32),
    "qn_fd": (c_int, c_void_p),
    "qn_wake_fd": (c_int, c_void_p),
    "qn_type_bytes": (c_int, c_void_p, c_char_p, c_size_t, POINTER(c_size_t)),
    "qn_settings_memory": (c_void_p,),
    "qn_settings_file": (c_void_p, c_char_p),
    "qn_settings_host": (c_void_p, POINTER(StoreFunctions), c_void_p),
    "qn_settings_keep": (c_void_p, c_void_p),
    "qn_settings_free": (None, c_void_p),
}


def _path() -> str:
    """The library that the environment names, the one that came with the module, or the system's."""
    name = "libqncomm.so.0"
    beside = os.path.join(os.path.dirname(__file__), name)
    return os.environ.get("QNCOMM_LIBRARY") or (beside if os.path.exists(beside) else name)


def _loaded() -> ctypes.CDLL:
    library = ctypes.CDLL(_path())
    for name, (result, *arguments) in _FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library


library = _loaded()


def version() -> str:
    """The version of the library that runs, such as "0.1.0"."""
    return library.qn_version().decode()
