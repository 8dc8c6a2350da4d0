#!/usr/bin/env python3
"""Holds what tshark shows of a capture against what mesh-l2vpn decodes of it.

    compare_dissector.py MESH-L2VPN WRITE_CAPTURE COUNT
"""
import json
import re
import subprocess
import sys
import tempfile

LINE = re.compile(r"^( *)\[?(f\d+|\[\d+\]): ?(.*?)\]?$")


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True)


def tree_of(lines):
    """The fields of one packet as nested dictionaries: a list (value, children) for each name."""
    root = {}
    stack = [(-1, root)]
    for line in lines:
        line = line.replace("[truncated]", "")
        found = LINE.match(line)
        if not found:
            continue
        indent = len(found[1])
        while stack[-1][0] >= indent:
            stack.pop()
        children = {}
        stack[-1][1][found[2].strip("[]") if found[2][0] == "[" else found[2]] = (found[3], children)
        stack.append((indent, children))
    return root


def is_zero(value):
    if isinstance(value, dict):
        return all(map(is_zero, value.values()))
    return not value or set(str(value)) == {"0"}


def is_same(value, shown, children):
    if shown == "absent":
        return is_zero(value)
    if isinstance(value, dict):
        return fields_are_same(value, children)
    if isinstance(value, list):
        return len(children) == len(value) and all(
            is_same(item, *children.get(str(number), ("", {}))) for number, item in enumerate(value))
    if isinstance(value, int):
        return str(value) == shown
    # Long bytes are cut off in the tree's text.
    cut = shown.rstrip(".\u2026")
    return value == shown or (cut != shown and len(cut) >= 16 and value.startswith(cut))


def fields_are_same(record, tree):
    return set(record) == set(tree) and all(is_same(record[name], *tree[name]) for name in record)


def main():
    tool, write_capture, count = sys.argv[1:4]
    with tempfile.TemporaryDirectory() as work:
        for damage in [], ["damaged"]:
            capture, script = f"{work}/all.pcapng", f"{work}/mesh_l2vpn.lua"
            subprocess.run([write_capture, capture, count, *damage], check=True)
            with open(script, "w", encoding="utf-8") as file:
                file.write(run(tool, "dissector").stdout)
            tables = [json.loads(line) for line in run(tool, "-q", "decode", capture).stdout.splitlines()]
            shown = run("tshark", "-X", f"lua_script:{script}", "-r", capture, "-V").stdout
            packets = re.split(r"^Frame \d+:", shown, flags=re.M)[1:]
            if len(packets) != len(tables) or len(tables) != int(count):
                sys.exit(f"{len(tables)} tables were decoded, {len(packets)} packets are shown")
            names = set()
            for number, (table, packet) in enumerate(zip(tables, packets)):
                lines = packet.split("Layer-2 VPN message: ", 1)[1].splitlines()
                has_fault = "Malformed" in packet
                if lines[0] != table["message"] or has_fault != ("faults" in table):
                    sys.exit(f"table {number}: {table}\n{packet}")
                if not has_fault and not fields_are_same(table["record"], tree_of(lines)):
                    sys.exit(f"table {number} differs: {table}\n{packet}")
                names.add(table["message"])
            if len(names) != 85:
                sys.exit(f"{len(names)} messages were compared")
            faults = sum("faults" in table for table in tables)
            print(f"{count} tables of {len(names)} messages, {faults} of them with faults: no difference")


main()
