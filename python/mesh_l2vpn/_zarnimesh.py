"""libzarnimesh through ctypes: the declarations of zarnimesh/node.h, and its results as exceptions."""
import ctypes
from ctypes import POINTER, c_char_p, c_int32, c_int64, c_uint32, c_uint64, c_void_p
from typing import Any, Optional

from . import node_errors
from ._inspect import load
from .errors import LibraryMissing
from .node_errors import NodeError

VARIABLE = "MESH_L2VPN_MIDDLEWARE"
LIBRARY = "libzarnimesh.so"

UNDELIVERED = 11

PeerHook = ctypes.CFUNCTYPE(None, c_void_p, c_void_p)


class Options(ctypes.Structure):
    _fields_ = [
        ("transport", c_uint32),
        ("address_book", c_char_p),
        ("runtime_directory", c_char_p),
        ("key_file", c_char_p),
        ("send_queue_calls", c_uint32),
        ("receive_queue_calls", c_uint32),
        ("connect_timeout_ms", c_uint32),
        ("send_timeout_ms", c_uint32),
        ("linger_ms", c_uint32),
        ("payload_limit", c_uint32),
        ("unknown", c_void_p),
        ("unknown_user", c_void_p),
        ("queue_bytes", c_uint32),
        ("heartbeat_ms", c_uint32),
        ("io_threads", c_uint32),
        ("peer", PeerHook),
        ("peer_user", c_void_p),
    ]


class PeerEvent(ctypes.Structure):
    _fields_ = [
        ("change", c_uint32),
        ("address", c_uint32),
        ("first", c_uint64),
        ("last", c_uint64),
    ]


class Tables(ctypes.Structure):
    _fields_ = [("received", c_void_p), ("count", c_uint64), ("owner", c_void_p)]


# Layouts for the module struct, as the compiler lays the C structs out.
DESCRIPTOR = "QII"  # mesh_msg_desc
RECEIVED = "@IIPIIPQQQI4x"  # mesh_received

_EXCEPTIONS = {
    1: node_errors.NoDestination,
    2: node_errors.QueueFull,
    3: node_errors.NotOpen,
    4: node_errors.Refused,
    5: node_errors.AddressInUse,
    6: node_errors.NodeOutOfMemory,
    7: node_errors.SystemFailure,
    8: node_errors.BadArgument,
    9: node_errors.Busy,
    10: node_errors.BadConfiguration,
    11: node_errors.Undelivered,
}

_library: Optional[ctypes.CDLL] = None


def loaded() -> Any:
    """Loaded with the first node, so that programs without nodes need no middleware."""
    global _library
    if _library is None:
        library = load(VARIABLE, LIBRARY, "mesh-l2vpn-workstation")
        _declare(library)
        _library = library
    return _library


def _declare(library: ctypes.CDLL) -> None:
    def declare(name: str, result: Any, *parameters: Any) -> None:
        function = getattr(library, name, None)
        if function is None:
            raise LibraryMissing(f"{library._name} has no {name}: it is older than this package")
        function.restype = result
        function.argtypes = parameters

    node = c_void_p
    declare("mesh_node_options_default", None, POINTER(Options))
    declare("mesh_node_open", c_uint32, c_uint32, POINTER(Options), POINTER(node))
    declare("mesh_node_close_counted", c_uint32, node, c_void_p)
    declare(
        "mesh_node_send", c_uint32, node, c_uint32, c_char_p, c_uint32, c_uint64, c_int32
    )
    declare("mesh_node_receive_tables", c_int64, node, c_int32, POINTER(Tables))
    declare("mesh_node_free_tables", None, POINTER(Tables))
    declare("mesh_node_descriptor", c_int32, node, POINTER(c_uint32))
    declare("mesh_node_peers", c_uint32, node, c_void_p, c_uint32, POINTER(c_uint32))
    declare("mesh_node_stats", c_uint32, node, c_void_p)
    declare("mesh_result_text", c_char_p, c_uint32)
    declare("mesh_node_last_error", c_char_p)


def failure(result: int, what: str) -> NodeError:
    """The exception of a mesh_result, with the calling thread's latest error text."""
    functions = loaded()
    text = functions.mesh_node_last_error() or functions.mesh_result_text(result)
    error = _EXCEPTIONS.get(result, NodeError)
    return error(f"{what}: {text.decode('utf-8', 'replace')}")
