"""Messages as the middleware takes them."""
import ctypes
import struct
import sys
from typing import TYPE_CHECKING, Any, Iterable, List, Tuple, Union

from . import _zarnimesh
from .node_errors import BadArgument
from .records import Record
from .table import Table

if TYPE_CHECKING:
    from .arrays import Array, Packed

    Messages = Union[Record, Table, Iterable[Union[Record, Table]], Array[Any], Packed[Any]]


def described(values: "Messages") -> Tuple[bytes, int, Any]:
    """The middleware's descriptors of messages, their number, and what they point to."""
    arrays = sys.modules.get("mesh_l2vpn.arrays")
    if arrays is not None and isinstance(values, (arrays.Array, arrays.Packed)):
        return _described_array(values.sent() if isinstance(values, arrays.Array) else values)
    several: Any = [values] if isinstance(values, (Record, Table)) else values
    try:
        tables = [(value.identifier, value.sent()) for value in several]
    except (AttributeError, TypeError) as error:
        raise BadArgument(f"messages were expected: {error}") from error
    data = b"".join([table for _, table in tables])
    at = ctypes.cast(ctypes.c_char_p(data), ctypes.c_void_p).value or 0
    words: List[int] = []
    for identifier, table in tables:
        words += at, identifier, len(table)
        at += len(table)
    try:
        return struct.pack(_zarnimesh.DESCRIPTOR * len(tables), *words), len(tables), data
    except struct.error as error:
        raise BadArgument(f"identifiers have 32 bits: {error}") from error


def _described_array(packed: "Packed[Any]") -> Tuple[bytes, int, Any]:
    import numpy

    data = numpy.ascontiguousarray(packed.data, numpy.uint8)
    ends = numpy.ascontiguousarray(packed.ends, numpy.uint64)
    begins = numpy.zeros_like(ends)
    begins[1:] = ends[:-1]
    # They may have been changed: the middleware reads where they say.
    if (begins > ends).any() or (len(ends) and int(ends[-1]) > len(data)):
        raise BadArgument("the messages do not end in order, within their data")
    kind = numpy.dtype([("data", "u8"), ("identifier", "u4"), ("length", "u4")])
    descriptors = numpy.empty(len(ends), kind)
    descriptors["data"] = begins + numpy.uint64(data.ctypes.data)
    descriptors["identifier"] = packed.message.identifier
    descriptors["length"] = ends - begins
    return descriptors.tobytes(), len(ends), data
