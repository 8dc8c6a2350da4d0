"""A message as it travels: bytes with an identifier and addresses."""
import time as clock
from typing import TYPE_CHECKING, Any, Optional, Type

from .errors import Rejected, UnknownMessage
from .inspection import verify
from .records import messages, unpack

if TYPE_CHECKING:
    from .records import Record

_UNREAD: Any = object()


class Table:
    """One encoded message on its way from one node to another.

    Its bytes may be damaged, or of no known message: nothing is decoded before `record` is read.
    """

    __slots__ = ("time", "source", "destination", "identifier", "extra", "table", "_record")

    def __init__(
        self,
        identifier: int,
        table: bytes,
        *,
        source: int = 0,
        destination: int = 0,
        extra: int = 0,
        time: Optional[int] = None,
    ) -> None:
        self.time = clock.time_ns() if time is None else time
        """Nanoseconds since 1970."""
        self.source = source
        self.destination = destination
        self.identifier = identifier
        self.extra = extra
        self.table = table
        self._record: Optional["Record"] = _UNREAD

    @classmethod
    def of(
        cls,
        value: "Record",
        *,
        source: int = 0,
        destination: int = 0,
        extra: int = 0,
        time: Optional[int] = None,
    ) -> "Table":
        """A table that holds a value, as it is sent."""
        return Table(
            value.identifier,
            value.sent(),
            source=source,
            destination=destination,
            extra=extra,
            time=time,
        )

    def sent(self) -> bytes:
        """The bytes: nodes send a table as it is, also a damaged one."""
        return self.table

    @property
    def message(self) -> Optional[Type["Record"]]:
        """The class of the message; None if the identifier is unknown."""
        try:
            found: Type["Record"] = messages[self.identifier]
            return found
        except UnknownMessage:
            return None

    @property
    def record(self) -> Optional["Record"]:
        """The value; None if receivers reject the bytes or the identifier is unknown."""
        if self._record is _UNREAD:
            message = self.message
            try:
                self._record = None if message is None else unpack(self.table, message)
            except Rejected:
                self._record = None
        return self._record

    @property
    def fault(self) -> Optional[str]:
        """Why there is no record, or not a whole one; None if receivers take the bytes."""
        message = self.message
        if message is None:
            return f"no message has the identifier 0x{self.identifier:08X}"
        verdict = verify(self.table, message)
        if verdict.accepted and not verdict.tolerated:
            return None
        return str(Rejected(message.name, verdict.position, verdict.path, verdict.text))

    def __repr__(self) -> str:
        message = self.message
        name = f"0x{self.identifier:08X}" if message is None else message.name
        return (
            f"<{type(self).__name__} {name}, {len(self.table)} bytes, "
            f"{self.source} to {self.destination}, extra {self.extra}>"
        )
