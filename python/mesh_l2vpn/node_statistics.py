"""What a node counts, and what it knows of its peers."""
import struct
from typing import Any, Callable, NamedTuple, Optional

from . import _zarnimesh

CHANGES = ("up", "down", "restarted", "gap", "high water", "low water")


class Statistics(NamedTuple):
    """A node's counters since it was opened, as zarnimesh/node.h explains them."""

    sent_calls: int
    sent_records: int
    sent_bytes: int
    failed_no_destination: int
    failed_queue_full: int
    failed_refused: int
    failed_other: int
    received_calls: int
    received_records: int
    received_bytes: int
    malformed: int
    unknown_identifiers: int
    lost_calls: int
    missed_before_first: int
    duplicate_calls: int
    undelivered_calls: int
    unconfirmed_calls: int
    discarded_calls: int
    refused_connections: int


class PeerStatistics(NamedTuple):
    """What a node knows of one peer."""

    address: int
    connected: bool
    incarnation: int
    last_heard: Optional[float]  # seconds ago; None: never
    sent_calls: int
    sent_bytes: int
    unconfirmed_calls: int
    most_unconfirmed_calls: int
    undelivered_calls: int
    received_calls: int
    received_bytes: int
    waiting_calls: int
    most_waiting_calls: int
    lost_calls: int
    missed_before_first: int


class PeerEvent(NamedTuple):
    """A change of a peer. `first` and `last` are the missing calls of a "gap"."""

    change: str  # one of CHANGES
    address: int
    first: int
    last: int


STATISTICS = struct.Struct(f"{len(Statistics._fields)}Q")
PEER = struct.Struct("II13Q")


def peer(
    address: int, connected: int, incarnation: int, last_heard_ms: int, *counts: int
) -> PeerStatistics:
    never = last_heard_ms == 2**64 - 1
    heard = None if never else last_heard_ms / 1000
    return PeerStatistics(address, bool(connected), incarnation, heard, *counts)


def peer_hook(on_peer: Callable[[PeerEvent], None]) -> Any:
    def tell(at: int, _user: Any) -> None:
        event = _zarnimesh.PeerEvent.from_address(at)
        on_peer(PeerEvent(CHANGES[event.change], event.address, event.first, event.last))

    return _zarnimesh.PeerHook(tell)
