"""A shared object's symbols, each with its message, its operation and its byte order."""

import re
import subprocess
from collections import Counter
from dataclasses import dataclass


@dataclass(frozen=True)
class Symbol:
    name: str
    address: int
    size: int
    is_code: bool
    message: str | None  # the message whose name the symbol bears; None: shared by all
    operation: str
    reversed: bool  # of the byte order that is not the host's
    cold: bool  # what the compiler has split off as unlikely


# The operation of a symbol: the first that its name fits. Compact writing serves __pack and the
# senders of compact messages alike.
_OPERATIONS = [
    (re.compile(pattern), operation) for pattern, operation in (
        (r"__unpack$", "unpack"),
        (r"_free__unpacked$|freeUnpacked|releaseParts", "free"),
        (r"__pack$", "pack"),
        (r"__send(single|batch|msg|tomsg)$", "send"),
        (r"sendBatch|encodeBatch|bindAndSend|handOver", "send"),
        (r"mesh::msg::unpack|[dD]ecode|Unpack|SlotReader|locateTable|takeBytes|allocatePart", "unpack"),
        (r"[cC]ompact|writeTable|writeVector|[sS]ize|mesh::msg::pack|packNowhere", "pack"),
    )
]
_MESSAGE = re.compile(r"(?:SchemaOf|MessageOf)<(?:::)?(\w+)>")
_EXPORTED = re.compile(r"^(\w+?)(?:__(?:pack|unpack|send(?:single|batch|msg|tomsg))"
                       r"|_free__unpacked)$")
_REVERSED = re.compile(r"ByteOrder\)1|Reversed|mesh::wire::.*reverse")


def symbols(library):
    """Code and constants that have a name and a size; of two names for one thing, the exported."""
    listing = _run("nm", "--demangle", "--defined-only", "--print-size", library)
    named = {}
    for line in listing.splitlines():
        fields = line.split(maxsplit=3)
        if len(fields) == 4 and fields[2] in "TtRrDd":
            address, size, kind, name = fields
            if kind == "T" or address not in named:
                named[address] = _symbol(name, int(address, 16), int(size, 16), kind in "Tt")
    return named.values()


def _symbol(name, address, size, is_code):
    whole = re.sub(r" \[clone.*|\.cold$", "", name)
    named = _EXPORTED.match(whole) or _MESSAGE.search(whole)
    operation = next((operation for pattern, operation in _OPERATIONS
                      if pattern.search(whole)), "other")
    return Symbol(name, address, size, is_code, named and named.group(1), operation,
                  _REVERSED.search(name) is not None, ".cold" in name)


def sections(library):
    """Sizes by name."""
    listing = _run("readelf", "--sections", "--wide", library)
    pattern = re.compile(r"\]\s+(\.\S+)\s+\S+\s+[0-9a-f]+\s+[0-9a-f]+\s+([0-9a-f]+)")
    return {name: int(size, 16) for name, size in pattern.findall(listing)}


def relocations(library):
    """How many of each kind."""
    listing = _run("readelf", "--relocs", "--wide", library)
    return Counter(re.findall(r"R_[A-Z0-9]+_[A-Z0-9_]+", listing))


def _run(*command):
    return subprocess.run([str(word) for word in command], check=True, text=True,
                          stdout=subprocess.PIPE).stdout
