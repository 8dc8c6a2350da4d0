"""Many records of one message: C records side by side in a numpy array, packed and unpacked in one call."""
from ctypes import byref, c_size_t
from functools import lru_cache
from operator import index
from typing import Any, Generic, Iterable, Iterator, Mapping, SupportsIndex, Type, Union, overload

from . import _inspect
from .errors import BadInput, LibraryMissing, Rejected, WrongUse
from .records import AnyRecord, Buffer, Record, rejection

try:
    import numpy
except ImportError:
    raise LibraryMissing("arrays need numpy: install the Debian package python3-numpy") from None


@lru_cache(maxsize=None)
def dtype(message: Type[Record]) -> "numpy.dtype[Any]":
    """The C record as numpy knows it: scalars, byte strings as rows of bytes, records within it."""
    formats = []
    for field in message.fields:
        if field.kind == "scalar":
            formats.append(f"u{field.size}")
        elif field.kind == "array":
            formats.append(("u1", field.size))
        elif field.kind == "table":
            formats.append(dtype(field.record))
        else:
            raise WrongUse(f"{message.name}.{field.name} has no fixed size: no array can hold it")
    return numpy.dtype(
        {
            "names": [field.name for field in message.fields],
            "formats": formats,
            "offsets": [field.offset for field in message.fields],
            "itemsize": message.record_size,
        }
    )


class Array(Generic[AnyRecord]):
    """`records` is the numpy array: array["f0"] is a column, array["f1"]["f8"] one of a record within
    it, array[7] the record at 7."""

    __slots__ = ("message", "records")

    def __init__(self, message: Type[AnyRecord], records: "numpy.ndarray[Any, Any]"):
        self.message = message
        self.records = records

    def __len__(self) -> int:
        return len(self.records)

    def __iter__(self) -> Iterator[AnyRecord]:
        return (self[at] for at in range(len(self)))

    @overload
    def __getitem__(self, key: str) -> "numpy.ndarray[Any, Any]": ...

    @overload
    def __getitem__(self, key: slice) -> "Array[AnyRecord]": ...

    @overload
    def __getitem__(self, key: int) -> AnyRecord: ...

    def __getitem__(self, key: Union[str, slice, int]) -> Any:
        if isinstance(key, str):
            return self.records[key]
        if isinstance(key, slice):
            return Array(self.message, self.records[key])
        return self.message._from_record(self.records[key].tobytes(), 0)

    def __setitem__(self, key: Union[str, slice, int], value: Any) -> None:
        if isinstance(key, (str, slice)):
            self.records[key] = value.records if isinstance(value, Array) else value
            return
        record = self.message._of(value)._to_record([])
        self.records[key] = numpy.frombuffer(record, self.records.dtype)[0]

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Array) or self.message is not other.message:
            return NotImplemented
        return len(self) == len(other) and bool((self.records == other.records).all())

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return f"<{len(self)} {self.message.name}>"

    def pack(self) -> "Packed[AnyRecord]":
        """The messages in the compact arrangement."""
        return self._packed(_inspect.COMPACT)

    def image(self) -> "Packed[AnyRecord]":
        """The messages in the fixed arrangement."""
        return self._packed(_inspect.FIXED)

    def sent(self) -> "Packed[AnyRecord]":
        """The messages as they are sent."""
        return self._packed(_inspect.AS_SENT)

    def _packed(self, form):
        records = numpy.ascontiguousarray(self.records, dtype(self.message))
        ends = numpy.empty(len(records), numpy.uintp)
        if form == _inspect.COMPACT or not self.message.sent_fixed:
            self._call(records, form, None, 0, ends)
            size = int(ends[-1]) if len(ends) else 0
        else:
            size = len(records) * len(self.message().image())
        data = numpy.empty(size, numpy.uint8)
        self._call(records, form, data.ctypes.data, size, ends)
        return Packed(self.message, data, ends)

    def _call(self, records, form, data, size, ends):
        result = _inspect.pack_many(
            self.message._handle,
            records.ctypes.data,
            len(records),
            form,
            data,
            size,
            ends.ctypes.data,
            None,
        )
        if result:
            raise _inspect.failure(result)


class Packed(Generic[AnyRecord]):
    """Messages one behind the other: `data` has their bytes, message i ends at ends[i]. packed[7] is the
    message at 7."""

    __slots__ = ("message", "data", "ends")

    def __init__(
        self,
        message: Type[AnyRecord],
        data: "numpy.ndarray[Any, Any]",
        ends: "numpy.ndarray[Any, Any]",
    ):
        self.message = message
        self.data = data
        self.ends = ends

    def __len__(self) -> int:
        return len(self.ends)

    def __getitem__(self, at: int) -> bytes:
        at = range(len(self))[at]
        begin = int(self.ends[at - 1]) if at else 0
        return self.data[begin : int(self.ends[at])].tobytes()

    def __repr__(self) -> str:
        return f"<{len(self)} messages {self.message.name}, {len(self.data)} bytes>"

    def unpack(self) -> Array[AnyRecord]:
        """Their records. Raises Rejected for the first message that receivers reject."""
        # Both may have been changed since: the library reads where the ends say.
        data = numpy.ascontiguousarray(self.data, numpy.uint8)
        ends = numpy.ascontiguousarray(self.ends, numpy.uintp)
        if len(ends) and int(ends.max()) > len(data):
            raise WrongUse(f"a message ends at {int(ends.max())}, the data at {len(data)}")
        array = Array(self.message, numpy.empty(len(ends), dtype(self.message)))
        done = c_size_t()
        result = _inspect.unpack_many(
            self.message._handle,
            data.ctypes.data,
            ends.ctypes.data,
            len(ends),
            array.records.ctypes.data,
            byref(done),
        )
        if result:
            error = _inspect.failure(result)
            if not isinstance(error, BadInput):
                raise error
            cause = rejection(self[done.value], self.message)
            place = f"[{done.value}]" + (f".{cause.path}" if cause.path else "")
            raise Rejected(cause.message, cause.position, place, cause.text)
        return array


def array(
    message: Type[AnyRecord], content: Union[SupportsIndex, Iterable[Union[AnyRecord, Mapping[str, Any]]]]
) -> Array[AnyRecord]:
    """Records of a message: as many as `content` says, all zeros, or those of an iterable."""
    kind = dtype(message)
    try:
        count = index(content)
    except TypeError:
        block = bytearray().join(message._of(value)._to_record([]) for value in content)
        return Array(message, numpy.frombuffer(block, kind))
    return Array(message, numpy.zeros(count, kind))


def packed(message: Type[AnyRecord], data: Buffer, ends: Any = None) -> Packed[AnyRecord]:
    """Messages that lie one behind the other. Without `ends`: fixed images."""
    data = numpy.frombuffer(data, numpy.uint8)
    if ends is None:
        length = len(message().image())
        if len(data) % length:
            raise BadInput(f"{len(data)} bytes are no whole number of images of {length} bytes")
        ends = numpy.arange(length, len(data) + 1, length)
    return Packed(message, data, numpy.asarray(ends, numpy.uintp))
