"""What bytes are, whether receivers take them, and what every byte means."""
import json
from typing import List, NamedTuple, Optional, Type

from . import _inspect
from .errors import BadInput
from .records import Buffer, Record, judged, messages


class Verdict(NamedTuple):
    """Whether receivers take bytes as a message. If not: the first byte at fault, the field's path, and
    what is wrong with it. `tolerated`: taken, though the record within an update or delete is at fault."""

    accepted: bool
    tolerated: bool = False
    position: int = 0
    path: str = ""
    text: str = ""

    def __bool__(self) -> bool:
        return self.accepted


class Candidate(NamedTuple):
    """A message that bytes could be."""

    message: Type[Record]
    fit: str


class Explanation(str):
    """Every byte with its meaning, every fault, the verdict. A notebook shows it as a page."""

    __slots__ = ("_message", "_data")

    def html(self) -> str:
        """The same as a web page."""
        return _explained(self._message, self._data, _inspect.HTML)

    def _repr_html_(self) -> str:
        from html import escape

        # In a frame: the page has styles and a script of its own.
        page = escape(self.html(), quote=True)
        return f'<iframe srcdoc="{page}" width="100%" height="600" frameborder="0"></iframe>'


def _explained(message, data, view):
    return _inspect.text(_inspect.explain, message._handle, data, len(data), view)


def verify(data: Buffer, message: Type[Record]) -> Verdict:
    """Whether receivers take these bytes as this message, or where and why not."""
    verdict, *fault = judged(bytes(data), message)
    return Verdict(verdict != _inspect.REJECTED, verdict == _inspect.TOLERATED, *fault)


def identify(data: Buffer) -> List[Candidate]:
    """The messages that the bytes could be, those that fit best. Raises BadInput for bytes without a
    table."""
    data = bytes(data)
    found = json.loads(_inspect.text(_inspect.identify, data, len(data)))
    return [Candidate(messages[fit["message"]], fit["fit"]) for fit in found["couldBe"]]


def explain(data: Buffer, message: Optional[Type[Record]] = None) -> Explanation:
    """What every byte means: as this message, or as the one that fits best."""
    data = bytes(data)
    if message is None:
        candidates = identify(data)
        if not candidates:
            raise BadInput("no message fits these bytes")
        message = candidates[0].message
    explanation = Explanation(_explained(message, data, _inspect.TEXT))
    explanation._message, explanation._data = message, data
    return explanation


def set_limit(size: int) -> None:
    """Bounds the memory of this thread's calls of the library, in bytes. 0: 64 MiB."""
    _inspect.set_limit(size)
