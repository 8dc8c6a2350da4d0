#!/usr/bin/env python3
"""Writes __init__.pyi: every field of every message, for editors and type checkers.

write_stubs.py OUTPUT    with PYTHONPATH at the package
"""
import sys

import mesh_l2vpn
from mesh_l2vpn import Field

HEAD = '''from typing import Any, ClassVar, Iterable, MutableSequence, SupportsIndex, TypedDict, final

from .errors import *
from .records import Buffer as Buffer, Field as Field, Record as Record, messages as messages, unpack as unpack
'''


def value_type(field: Field) -> str:
    """What reading the field gives."""
    if field.kind == "scalar":
        return "int"
    if field.kind in ("array", "bytes"):
        return "bytes"
    name = field.record.name
    return name if field.kind == "table" else f"MutableSequence[{name}]"


def accepted_type(field: Field) -> str:
    """What the constructor takes for the field."""
    if field.kind == "scalar":
        return "SupportsIndex"
    if field.kind in ("array", "bytes"):
        return "Buffer"
    one = f"{field.record.name} | _{field.record.name}"
    return one if field.kind == "table" else f"Iterable[{one}]"


def comment(field: Field) -> str:
    return {
        "scalar": f"  # {8 * field.size} bits",
        "array": f"  # {field.size} bytes",
    }.get(field.kind, "")


def stub(message) -> "list[str]":
    names = ", ".join(f'"{field.name}"' for field in message.fields)
    return [
        "",
        f"class _{message.name}(TypedDict, total=False):",
        *(f"    {field.name}: {accepted_type(field)}" for field in message.fields),
        "",
        "@final",
        f"class {message.name}(Record):",
        f'    """{message.__doc__}"""',
        f"    __match_args__ = ({names},)",
        *(f"    {field.name}: {value_type(field)}{comment(field)}" for field in message.fields),
        "    def __init__(",
        "        self,",
        *(f"        {field.name}: {accepted_type(field)} = ...," for field in message.fields),
        "    ) -> None: ...",
    ]


lines = [HEAD.rstrip()]
for name, module in mesh_l2vpn._LATER.items():
    lines.append(f"from .{module} import {name} as {name}")
for message in mesh_l2vpn.messages.values():
    lines += stub(message)
with open(sys.argv[1], "w", encoding="utf-8") as output:
    output.write("\n".join(lines) + "\n")
