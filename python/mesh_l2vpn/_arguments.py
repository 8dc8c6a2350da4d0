"""The checks of what callers give to a node. Each error names the argument."""
import math
import os
from typing import Mapping, Union

from .node_errors import BadArgument

TRANSPORTS = ("ipc", "inproc")


def whole(name: str, value: int, least: int, most: int) -> int:
    if isinstance(value, bool) or not isinstance(value, int):
        raise BadArgument(f"{name}: an int was expected, not {type(value).__name__}")
    if not least <= value <= most:
        raise BadArgument(f"{name}: a number from {least} to {most} was expected, not {value}")
    return value


def milliseconds(name: str, value: float, most: int = 2**32 - 1) -> int:
    """Rounds up: a short wait must not become none."""
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        raise BadArgument(f"{name}: seconds were expected, not {type(value).__name__}")
    if not 0 <= value <= most / 1000:
        raise BadArgument(f"{name}: 0 to {most / 1000} seconds were expected, not {value}")
    return min(math.ceil(value * 1000), most)


def text(name: str, value: Union[str, "os.PathLike[str]"]) -> bytes:
    if not isinstance(value, (str, os.PathLike)):
        raise BadArgument(f"{name}: a text was expected, not {type(value).__name__}")
    encoded = os.fsencode(value)
    if b"\0" in encoded:
        raise BadArgument(f"{name}: it has a zero byte")
    return encoded


def book(name: str, value: Union[str, Mapping[int, str]]) -> bytes:
    if not isinstance(value, Mapping):
        return text(name, value)
    lines = (f"{whole(name, address, 0, 2**32 - 1)} {end}" for address, end in value.items())
    return text(name, "\n".join(lines))


def transport(name: str, value: str) -> int:
    if value not in TRANSPORTS:
        raise BadArgument(f"{name}: {' or '.join(map(repr, TRANSPORTS))}, not {value!r}")
    return TRANSPORTS.index(value)
