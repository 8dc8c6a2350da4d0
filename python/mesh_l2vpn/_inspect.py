"""libmesh_l2vpn_inspect through ctypes: its functions, and its failures as exceptions."""
import ctypes
import errno
import os
from ctypes import POINTER, byref, c_char_p, c_int, c_size_t, c_uint32, c_void_p

from .errors import BadInput, Error, LibraryMissing, OutOfMemory, WrongUse

SONAME = "libmesh_l2vpn_inspect.so.1"

AS_SENT, FIXED, COMPACT = range(3)
TEXT, HTML = range(2)
ACCEPTED, TOLERATED, REJECTED = range(3)


class Fault(ctypes.Structure):
    _fields_ = [("position", c_uint32), ("path", ctypes.c_char * 128), ("text", ctypes.c_char * 192)]


def find(variable: str, soname: str) -> str:
    """Where a library is: what the environment variable says; else beside the package, in the build
    tree and in a prefix that is not the system's; else the loader's own search."""
    chosen = os.environ.get(variable)
    if chosen:
        return chosen
    try:
        from . import _paths
    except ImportError:
        return soname
    for directory in _paths.DIRECTORIES:
        path = os.path.join(os.path.dirname(os.path.abspath(__file__)), directory, soname)
        if os.path.exists(path):
            return path
    return soname


def load(variable: str, soname: str, package: str) -> ctypes.CDLL:
    path = find(variable, soname)
    try:
        return ctypes.CDLL(path)
    except OSError as error:
        raise LibraryMissing(
            f"{path} could not be loaded: {error}. Install the Debian package {package}, "
            f"or set {variable} to the library"
        ) from None


loaded = load("MESH_L2VPN_INSPECT", SONAME, "libmesh-l2vpn-inspect1")


# The same, with the interpreter's lock kept: for calls shorter than giving it back and taking it.
_quick = ctypes.PyDLL(loaded._name)


def _declare(name, result, *parameters, of=loaded):
    function = getattr(of, "mesh_l2vpn_" + name)
    function.restype = result
    function.argtypes = parameters
    return function


_text = POINTER(c_void_p)
message_count = _declare("message_count", c_size_t)
message_at = _declare("message_at", c_void_p, c_size_t)
message_by_name = _declare("message_by_name", c_void_p, c_char_p)
message_by_id = _declare("message_by_id", c_void_p, c_uint32)
message_name = _declare("message_name", c_char_p, c_void_p)
message_id = _declare("message_id", c_uint32, c_void_p)
message_record_size = _declare("message_record_size", c_size_t, c_void_p)
verify = _declare("verify", c_int, c_void_p, c_char_p, c_size_t, POINTER(Fault))
unpack = _declare("unpack", c_int, c_void_p, c_char_p, c_size_t, c_void_p, of=_quick)
release = _declare("release", None, c_void_p, c_void_p, of=_quick)
pack = _declare("pack", c_int, c_void_p, c_void_p, c_int, _text, POINTER(c_size_t), of=_quick)
pack_many = _declare(
    "pack_many", c_int, c_void_p, c_void_p, c_size_t, c_int, c_void_p, c_size_t, c_void_p, c_void_p
)
unpack_many = _declare(
    "unpack_many", c_int, c_void_p, c_void_p, c_void_p, c_size_t, c_void_p, c_void_p
)
to_json = _declare("to_json", c_int, c_void_p, c_char_p, c_size_t, _text)
record_to_json = _declare("record_to_json", c_int, c_void_p, c_void_p, _text)
from_json = _declare(
    "from_json", c_int, c_void_p, c_char_p, c_size_t, c_int, _text, POINTER(c_size_t)
)
explain = _declare("explain", c_int, c_void_p, c_char_p, c_size_t, c_int, _text)
identify = _declare("identify", c_int, c_char_p, c_size_t, _text)
schema = _declare("schema", c_int, c_void_p, _text)
difference = _declare(
    "difference", c_int, c_void_p, c_char_p, c_size_t, c_char_p, c_size_t, _text
)
set_limit = _declare("set_limit", None, c_size_t)
free = _declare("free", None, c_void_p, of=_quick)
last_error = _declare("last_error", c_char_p, of=_quick)

_EXCEPTIONS = {errno.EBADMSG: BadInput, errno.EINVAL: WrongUse, errno.ENOMEM: OutOfMemory}


def failure(result: int) -> Error:
    """The exception of a call that failed."""
    return _EXCEPTIONS.get(result, Error)(last_error().decode("utf-8", "replace"))


def text(function, *parameters) -> str:
    """What a function hands out as a text."""
    block = c_void_p()
    result = function(*parameters, byref(block))
    if result:
        raise failure(result)
    try:
        return ctypes.string_at(block.value).decode()
    finally:
        free(block)


def message(function, *parameters) -> bytes:
    """What a function hands out as a message."""
    block = c_void_p()
    size = c_size_t()
    result = function(*parameters, byref(block), byref(size))
    if result:
        raise failure(result)
    try:
        return ctypes.string_at(block.value, size.value)
    finally:
        free(block)
