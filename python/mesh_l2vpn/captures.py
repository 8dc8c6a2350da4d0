"""Captures: the pcapng files that mesh-l2vpn and Wireshark read, one packet per message.

Both directions hold one block at a time. docs/tool.md describes the format.
"""
import os
import struct
from typing import TYPE_CHECKING, BinaryIO, Dict, Iterator, List, Optional, Tuple, Type, Union

from .errors import Error, WrongUse
from .table import Table

if TYPE_CHECKING:
    from types import TracebackType

_SECTION, _INTERFACE, _OBSOLETE, _SIMPLE, _STATISTICS, _PACKET = 0x0A0D0D0A, 1, 2, 3, 5, 6
_BYTE_ORDER_MAGIC = 0x1A2B3C4D
_LINK_TYPE_USER_0 = 147

_END_OF_OPTIONS = 0
_USER_APPLICATION = 4  # of a section
_TIMESTAMP_RESOLUTION = 9  # of an interface
_DROP_COUNT = 4  # of a packet
_RECEIVED_PACKETS, _DROPPED_PACKETS = 4, 5  # of statistics

_HEADER = struct.Struct("<4sHHIIIIQ")  # before each table
_MAGIC, _VERSION = b"MESH", 1

_LARGEST_BLOCK = 256 << 20
_PIECE = 1 << 20
_MOST_INTERFACES = 65536

_Path = Union[str, "os.PathLike[str]"]


class CaptureError(Error, ValueError):
    """A capture has a fault. What stands before it has been read."""


class Captured(Table):
    """A message in a capture."""

    __slots__ = ("missed_before", "cut_off")

    missed_before: int
    """Calls that the recorder missed since the previous message."""
    cut_off: int
    """Bytes at the end of the table that the capture lacks."""


class _Interface:
    def __init__(self, is_ours: bool, units_per_second: int) -> None:
        self.is_ours = is_ours
        self.units_per_second = units_per_second
        self.dropped = 0  # from its latest statistics, which count from the beginning


class CaptureReader:
    """The messages of a capture, in order. Raises CaptureError at a fault."""

    def __init__(self, path: _Path) -> None:
        self._name = os.fspath(path)
        self._file: BinaryIO = open(path, "rb")
        self._order = ""  # of the bytes in this section; empty before the first
        self._position = 0  # of the block being read
        self._next_position = 0
        self._interfaces: List[_Interface] = []
        self._lost_before = 0  # in the sections before
        self._lost_by_packets = 0  # in this one
        self.other_packets = 0
        """Packets that are no messages."""

    def __enter__(self) -> "CaptureReader":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional["TracebackType"],
    ) -> None:
        self.close()

    def close(self) -> None:
        self._file.close()

    @property
    def lost(self) -> int:
        """Calls that the recorder missed, as far as the capture has been read."""
        by_statistics = sum(one.dropped for one in self._interfaces if one.is_ours)
        return self._lost_before + max(by_statistics, self._lost_by_packets)

    def __iter__(self) -> Iterator[Captured]:
        while not self._file.closed:
            block = self._read_block()
            if block is None:
                self.close()
                return
            kind, body = block
            if kind == _INTERFACE:
                self._take_interface(body)
            elif kind == _STATISTICS:
                self._take_statistics(body)
            elif kind in (_SIMPLE, _OBSOLETE):
                self.other_packets += 1
            elif kind == _PACKET:
                captured = self._take_packet(body)
                if captured is None:
                    self.other_packets += 1
                else:
                    self._lost_by_packets += captured.missed_before
                    yield captured

    def _fault(self, text: str) -> CaptureError:
        self.close()
        return CaptureError(f"{self._name}: byte {self._position}: {text}")

    def _read_block(self) -> Optional[Tuple[int, bytes]]:
        """Type and body of the next block; None at the end."""
        self._position = self._next_position
        head = self._file.read(8)
        if not head:
            if not self._order:
                raise self._fault("an empty file is not a capture")
            return None
        if len(head) < 8:
            raise self._fault("truncated inside a block")
        start = b""
        if head[:4] == struct.pack("<I", _SECTION):
            start = self._file.read(4)
            self._take_section(start)
        elif not self._order:
            raise self._fault("not a pcapng file")
        kind, length = struct.unpack(self._order + "II", head)
        if length % 4 or not 12 + len(start) <= length <= _LARGEST_BLOCK:
            raise self._fault(f"a block of {length} bytes")
        body = start + self._read_pieces(length - 8 - len(start))
        if len(body) < length - 8:
            raise self._fault(f"truncated inside a block of {length} bytes")
        if struct.unpack_from(self._order + "I", body, length - 12)[0] != length:
            raise self._fault("a block whose two lengths differ")
        self._next_position = self._position + length
        return kind, body[:-4]

    def _read_pieces(self, length: int) -> bytes:
        """Piece by piece: a block may claim to be longer than the file."""
        pieces = []
        while length > 0:
            piece = self._file.read(min(length, _PIECE))
            if not piece:
                break
            pieces.append(piece)
            length -= len(piece)
        return b"".join(pieces)

    def _take_section(self, magic: bytes) -> None:
        for order in "<>":
            if magic == struct.pack(order + "I", _BYTE_ORDER_MAGIC):
                self._lost_before = self.lost
                self._lost_by_packets = 0
                self._interfaces = []
                self._order = order
                return
        raise self._fault("a section without a byte-order magic")

    def _options(self, body: bytes, at: int) -> Dict[int, bytes]:
        options: Dict[int, bytes] = {}
        while at + 4 <= len(body):
            code, length = struct.unpack_from(self._order + "HH", body, at)
            if code == _END_OF_OPTIONS or at + 4 + length > len(body):
                break
            options.setdefault(code, body[at + 4 : at + 4 + length])
            at += 4 + _padded(length)
        return options

    def _count(self, option: Optional[bytes], otherwise: int = 0) -> int:
        if option is None or len(option) != 8:
            return otherwise
        return int(struct.unpack(self._order + "Q", option)[0])

    def _take_interface(self, body: bytes) -> None:
        if len(body) < 8:
            raise self._fault("an interface without a link type")
        if len(self._interfaces) == _MOST_INTERFACES:
            raise self._fault(f"more than {_MOST_INTERFACES} interfaces")
        units = 10**6
        resolution = self._options(body, 8).get(_TIMESTAMP_RESOLUTION)
        if resolution:
            exponent, is_binary = resolution[0] & 0x7F, resolution[0] & 0x80
            if exponent > (63 if is_binary else 18):
                raise self._fault(f"an interface with a timestamp resolution of {exponent}")
            units = (2 if is_binary else 10) ** exponent
        link = struct.unpack_from(self._order + "H", body)[0]
        self._interfaces.append(_Interface(link == _LINK_TYPE_USER_0, units))

    def _take_statistics(self, body: bytes) -> None:
        number = struct.unpack_from(self._order + "I", body)[0] if len(body) >= 12 else -1
        if not 0 <= number < len(self._interfaces):
            raise self._fault("statistics of an unknown interface")
        one = self._interfaces[number]
        one.dropped = self._count(self._options(body, 12).get(_DROPPED_PACKETS), one.dropped)

    def _take_packet(self, body: bytes) -> Optional[Captured]:
        """The table; None for another packet."""
        if len(body) < 20:
            raise self._fault("a packet without a header")
        number, high, low, length, original = struct.unpack_from(self._order + "5I", body)
        if number >= len(self._interfaces):
            raise self._fault("a packet of an unknown interface")
        if length > len(body) - 20:
            raise self._fault("a packet longer than its block")
        interface = self._interfaces[number]
        if not interface.is_ours or length < _HEADER.size:
            return None
        magic, version, head, source, destination, identifier, _zero, extra = _HEADER.unpack_from(
            body, 20
        )
        if magic != _MAGIC or version != _VERSION or not _HEADER.size <= head <= length:
            return None
        captured = Captured(
            identifier,
            body[20 + head : 20 + length],
            source=source,
            destination=destination,
            extra=extra,
            time=(high << 32 | low) * 10**9 // interface.units_per_second,
        )
        options = self._options(body, 20 + _padded(length))
        captured.missed_before = self._count(options.get(_DROP_COUNT))
        captured.cut_off = max(original - length, 0)
        return captured


class CaptureWriter:
    """Writes a capture. Each message is passed to the system at once, so a crash loses none.

    close() adds the totals; leaving the `with` does it.
    """

    def __init__(self, path: _Path, *, overwrite: bool = False) -> None:
        self._file: BinaryIO = open(path, "wb" if overwrite else "xb", buffering=0)
        self._received = 0
        self._lost = 0
        section = struct.pack("<IHHQ", _BYTE_ORDER_MAGIC, 1, 0, 2**64 - 1)
        application = _option(_USER_APPLICATION, b"mesh-l2vpn")
        self._write_block(_SECTION, section + application + _option(_END_OF_OPTIONS, b""))
        interface = struct.pack("<HHI", _LINK_TYPE_USER_0, 0, 0)
        resolution = _option(_TIMESTAMP_RESOLUTION, b"\x09")  # nanoseconds
        self._write_block(_INTERFACE, interface + resolution + _option(_END_OF_OPTIONS, b""))

    def __enter__(self) -> "CaptureWriter":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional["TracebackType"],
    ) -> None:
        self.close()

    def write(self, table: Table, missed_before: Optional[int] = None) -> None:
        """Adds a message: one received, one of another capture, or `Table.of(value)`.

        `missed_before` counts the calls that were missed before it.
        """
        if missed_before is None:
            missed_before = table.missed_before if isinstance(table, Captured) else 0
        try:
            self._write_packet(table, missed_before)
        except struct.error as error:
            raise WrongUse(f"{table!r} does not fit a capture: {error}") from None
        self._received += 1
        self._lost += missed_before

    def _write_packet(self, table: Table, missed_before: int) -> None:
        length = _HEADER.size + len(table.table)
        original = length + (table.cut_off if isinstance(table, Captured) else 0)
        packet = [
            struct.pack("<5I", 0, table.time >> 32, table.time & 0xFFFFFFFF, length, original),
            _HEADER.pack(
                _MAGIC,
                _VERSION,
                _HEADER.size,
                table.source,
                table.destination,
                table.identifier,
                0,
                table.extra,
            ),
            table.table,
            bytes(_padded(length) - length),
        ]
        if missed_before:
            packet += [_count_option(_DROP_COUNT, missed_before), _option(_END_OF_OPTIONS, b"")]
        self._write_block(_PACKET, b"".join(packet))

    def close(self) -> None:
        if self._file.closed:
            return
        try:
            now = Table(0, b"").time
            totals = struct.pack("<III", 0, now >> 32, now & 0xFFFFFFFF)
            totals += _count_option(_RECEIVED_PACKETS, self._received)
            totals += _count_option(_DROPPED_PACKETS, self._lost)
            self._write_block(_STATISTICS, totals + _option(_END_OF_OPTIONS, b""))
        finally:
            self._file.close()

    def _write_block(self, kind: int, body: bytes) -> None:
        length = 12 + len(body)
        left = memoryview(struct.pack("<II", kind, length) + body + struct.pack("<I", length))
        while left:
            left = left[self._file.write(left) :]


def read_capture(path: _Path) -> CaptureReader:
    """Opens a capture. Iterate over it, or use it in a `with` to close it early."""
    return CaptureReader(path)


def write_capture(path: _Path, *, overwrite: bool = False) -> CaptureWriter:
    """Begins a capture, in a new file unless `overwrite` is set."""
    return CaptureWriter(path, overwrite=overwrite)


def _padded(length: int) -> int:
    return (length + 3) // 4 * 4


def _option(code: int, value: bytes) -> bytes:
    return struct.pack("<HH", code, len(value)) + value + bytes(_padded(len(value)) - len(value))


def _count_option(code: int, count: int) -> bytes:
    return _option(code, struct.pack("<Q", count))
