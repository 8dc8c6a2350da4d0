"""Nodes: they send messages to each other, and to the nodes of C and C++ programs."""
import asyncio
import ctypes
import math
import os
import struct
import threading
import time
import warnings
import weakref
from collections import deque
from typing import (
    TYPE_CHECKING,
    Any,
    AsyncIterator,
    Callable,
    Deque,
    Iterator,
    List,
    Mapping,
    Optional,
    Tuple,
    Type,
    Union,
)

from . import _arguments, _zarnimesh
from ._arguments import milliseconds, whole
from ._descriptors import described
from .node_errors import BadArgument, Busy, NodeError, NothingArrived, Undelivered
from .node_statistics import PEER, STATISTICS, PeerEvent, PeerStatistics, Statistics, peer, peer_hook
from .table import Table

if TYPE_CHECKING:
    from types import TracebackType

    from ._descriptors import Messages

_OK = 0
_NO_TIME = -1  # the node's options say how long a send waits; a receive waits for ever
_RECEIVED = struct.Struct(_zarnimesh.RECEIVED)
_LONGEST = 2**31 - 1  # milliseconds of a call


class Received(Table):
    """A message that arrived at a node."""

    __slots__ = ("incarnation", "sequence", "after_gap")

    incarnation: int
    """Random number of the sending node, new each time it opens."""
    sequence: int
    """Of the call, from 1, for each incarnation and destination. A call's messages share it."""
    after_gap: bool
    """Calls before this one did not arrive."""


def _close(handle: ctypes.c_void_p, address: int, last: Any, _hook: Any) -> int:
    """Closes a node that nobody closed. `_hook` lives until then."""
    warnings.warn(f"node {address} was not closed", ResourceWarning, stacklevel=2)
    return int(_zarnimesh.loaded().mesh_node_close_counted(handle, last))


class Node:
    """An address that sends and receives. Use it in a `with`: closing waits until what was sent
    has arrived.

    Any thread may use a node; one at a time may receive.
    """

    def __init__(
        self,
        address: int,
        *,
        transport: Optional[str] = None,
        address_book: Union[str, Mapping[int, str], None] = None,
        runtime_directory: Union[str, "os.PathLike[str]", None] = None,
        key_file: Union[str, "os.PathLike[str]", None] = None,
        send_queue_calls: Optional[int] = None,
        receive_queue_calls: Optional[int] = None,
        connect_timeout: Optional[float] = None,
        send_timeout: Optional[float] = None,
        linger: Optional[float] = None,
        payload_limit: Optional[int] = None,
        queue_bytes: Optional[int] = None,
        heartbeat: Optional[float] = None,
        io_threads: Optional[int] = None,
        on_peer: Optional[Callable[[PeerEvent], None]] = None,
    ) -> None:
        self.address = whole("address", address, 0, 2**32 - 1)
        self._library = _zarnimesh.loaded()
        options = _zarnimesh.Options()
        self._library.mesh_node_options_default(ctypes.byref(options))
        for field, name, value, check in (
            ("transport", "transport", transport, _arguments.transport),
            ("address_book", "address_book", address_book, _arguments.book),
            ("runtime_directory", "runtime_directory", runtime_directory, _arguments.text),
            ("key_file", "key_file", key_file, _arguments.text),
            ("connect_timeout_ms", "connect_timeout", connect_timeout, milliseconds),
            ("send_timeout_ms", "send_timeout", send_timeout, milliseconds),
            ("linger_ms", "linger", linger, milliseconds),
            ("heartbeat_ms", "heartbeat", heartbeat, milliseconds),
        ):
            if value is not None:
                setattr(options, field, check(name, value))  # type: ignore[operator]
        for name, number, most in (
            ("send_queue_calls", send_queue_calls, 2**20),
            ("receive_queue_calls", receive_queue_calls, 2**20),
            ("payload_limit", payload_limit, 2**32 - 1),
            ("queue_bytes", queue_bytes, 2**32 - 1),
            ("io_threads", io_threads, 64),
        ):
            if number is not None:
                setattr(options, name, whole(name, number, 1, most))
        if on_peer is not None and not callable(on_peer):
            raise BadArgument(f"on_peer: a function was expected, not {type(on_peer).__name__}")
        hook = None if on_peer is None else peer_hook(on_peer)
        if hook is not None:
            options.peer = hook

        handle = ctypes.c_void_p()
        result = self._library.mesh_node_open(
            self.address, ctypes.byref(options), ctypes.byref(handle)
        )
        if result != _OK:
            raise _zarnimesh.failure(result, f"node {self.address}")
        self._handle: Optional[ctypes.c_void_p] = handle
        self._last = ctypes.create_string_buffer(STATISTICS.size)
        self._forgotten = weakref.finalize(
            self, _close, handle, self.address, self._last, hook
        )
        self._arrived: Deque[Received] = deque()
        self._tables = _zarnimesh.Tables()
        self._receiving = threading.Lock()
        self._sleepers: List[Tuple[asyncio.AbstractEventLoop, "asyncio.Future[None]"]] = []

    def __repr__(self) -> str:
        return f"<Node {self.address}{'' if self._handle else ', closed'}>"

    # Closing

    def __enter__(self) -> "Node":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional["TracebackType"],
    ) -> None:
        try:
            self.close()
        except Undelivered:
            # An error of the body is the cause, and tells more.
            if error is None:
                raise

    @property
    def closed(self) -> bool:
        return self._handle is None

    def close(self) -> None:
        """Closes the node, and waits for at most `linger` until what was sent has arrived.

        Raises Undelivered if some of it is not known to have arrived, and Busy while another thread
        receives. A second call does nothing.
        """
        if self._handle is None:
            return
        with self._alone():
            result = self._library.mesh_node_close_counted(self._handle, self._last)
        if result not in (_OK, _zarnimesh.UNDELIVERED):
            raise self._failure(result)
        self._handle = None
        self._forgotten.detach()
        for loop, sleeper in self._sleepers:
            loop.call_soon_threadsafe(_wake, sleeper)
        if result != _OK:
            raise self._failure(result)

    # Sending

    def send(
        self,
        destination: int,
        values: "Messages",
        extra: int = 0,
        timeout: Optional[float] = None,
    ) -> None:
        """Sends one message, or several of any types in one call: all of them arrive, or none. A
        table is sent as it is, for example a damaged one, or one of a capture. An array is sent without
        a loop in Python.

        Waits for a receiver and for room: `timeout` seconds at most, or as the node's options say.
        """
        whole("destination", destination, 0, 2**32 - 1)
        whole("extra", extra, 0, 2**64 - 1)
        wait = _NO_TIME if timeout is None else milliseconds("timeout", timeout, _LONGEST)
        descriptors, count, _data = described(values)
        result = self._library.mesh_node_send(
            self._handle, destination, descriptors, count, extra, wait
        )
        if result != _OK:
            raise self._failure(result, f" to node {destination}")

    def send_raw(
        self,
        destination: int,
        identifier: int,
        table: bytes,
        extra: int = 0,
        timeout: Optional[float] = None,
    ) -> None:
        """Sends any bytes under any identifier, for example damaged ones."""
        self.send(destination, Table(identifier, bytes(table)), extra, timeout)

    # Receiving

    def receive(self, timeout: Optional[float] = 1.0) -> Iterator[Received]:
        """What arrives, in order, until nothing has arrived for `timeout` seconds; None: for ever.

        What is not taken from the iterator comes with the next one.
        """
        wait = _NO_TIME if timeout is None else milliseconds("timeout", timeout, _LONGEST)
        return self._receive(wait)

    def receive_one(self, timeout: float = 1.0) -> Received:
        """The next message. Raises NothingArrived after `timeout` seconds."""
        for received in self.receive(timeout):
            return received
        raise NothingArrived(f"nothing arrived at node {self.address} in {timeout} s")

    def __aiter__(self) -> AsyncIterator[Received]:
        """`async for received in node`: without end, until the node is closed (NotOpen)."""
        return self._receive_async()

    def _receive(self, wait: int) -> Iterator[Received]:
        while True:
            received = self._next_arrived()
            if received is not None:
                yield received
            elif not self._take_within(wait):
                return

    async def _receive_async(self) -> AsyncIterator[Received]:
        file = -1
        try:
            while True:
                received = self._next_arrived()
                if received is not None:
                    yield received
                elif self._take(0):
                    await asyncio.sleep(0)  # other tasks run too while messages keep arriving
                else:
                    pending = ctypes.c_uint32()
                    own = self._library.mesh_node_descriptor(self._handle, ctypes.byref(pending))
                    if own < 0:
                        raise self._failure(-own)
                    if file < 0:
                        # A copy: closing the node must not take it from the event loop.
                        file = os.dup(own)
                    if not pending.value:
                        await self._sleep(file)
        finally:
            if file >= 0:
                os.close(file)

    async def _sleep(self, file: int) -> None:
        """Until the file is readable or the node is closed."""
        loop = asyncio.get_running_loop()
        sleeper = loop.create_future()
        entry = (loop, sleeper)
        self._sleepers.append(entry)
        loop.add_reader(file, _wake, sleeper)
        try:
            await sleeper
        finally:
            loop.remove_reader(file)
            self._sleepers.remove(entry)

    def _next_arrived(self) -> Optional[Received]:
        try:
            return self._arrived.popleft()
        except IndexError:
            return None

    def _take_within(self, wait: int) -> bool:
        """As _take. A signal ends a call of the middleware early, but not this wait."""
        end = time.monotonic() + wait / 1000
        left = wait
        while not self._take(left):
            if wait != _NO_TIME:
                left = math.ceil((end - time.monotonic()) * 1000)
                if left <= 0:
                    return False
        return True

    def _take(self, wait: int) -> bool:
        """Takes one call of the middleware. Returns whether anything came."""
        with self._alone():
            tables = self._tables
            result = 0
            # An exception of a signal handler may have left the tables of an earlier call.
            if not tables.count:
                result = self._library.mesh_node_receive_tables(
                    self._handle, wait, ctypes.byref(tables)
                )
            some: bool = tables.count > 0
            if some:
                self._arrived.extend(self._copied(tables))
                self._library.mesh_node_free_tables(ctypes.byref(tables))
        if result < 0:
            raise self._failure(-result)
        return some

    def _alone(self) -> threading.Lock:
        """To be held while receiving. In a `with`, which signal handlers cannot leave locked."""
        if self._receiving.locked():
            raise Busy(f"node {self.address}: another thread is receiving")
        return self._receiving

    def _copied(self, tables: _zarnimesh.Tables) -> List[Received]:
        now = time.time_ns()
        heads = ctypes.string_at(tables.received, tables.count * _RECEIVED.size)
        arrived = []
        for head in _RECEIVED.iter_unpack(heads):
            source, identifier, _record, _size, length, table, extra = head[:7]
            one = Received(
                identifier,
                ctypes.string_at(table, length),
                source=source,
                destination=self.address,
                extra=extra,
                time=now,
            )
            one.incarnation, one.sequence = head[7:9]
            one.after_gap = head[9] != 0
            arrived.append(one)
        return arrived

    # Looking

    def statistics(self) -> Statistics:
        """The counters; after close() the final ones."""
        counters = self._last
        if self._handle is not None:
            counters = ctypes.create_string_buffer(STATISTICS.size)
            result = self._library.mesh_node_stats(self._handle, counters)
            if result != _OK:
                raise self._failure(result)
        return Statistics._make(STATISTICS.unpack(counters.raw))

    def peers(self) -> List[PeerStatistics]:
        """The peers, in the order of their addresses."""
        count = ctypes.c_uint32(16)
        while True:
            capacity = count.value
            buffer = ctypes.create_string_buffer(capacity * PEER.size)
            result = self._library.mesh_node_peers(
                self._handle, buffer, capacity, ctypes.byref(count)
            )
            if result != _OK:
                raise self._failure(result)
            if count.value <= capacity:
                used = buffer.raw[: count.value * PEER.size]
                return [peer(*words) for words in PEER.iter_unpack(used)]

    def _failure(self, result: int, more: str = "") -> NodeError:
        return _zarnimesh.failure(result, f"node {self.address}{more}")


def _wake(sleeper: "asyncio.Future[None]") -> None:
    if not sleeper.done():
        sleeper.set_result(None)
