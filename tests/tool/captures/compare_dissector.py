#!/usr/bin/env python3
"""Compares what tshark shows of a capture with what mesh-l2vpn decodes.

    compare_dissector.py MESH-L2VPN WRITE_CAPTURE COUNT
"""
import json
import re
import struct
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
    # tshark shortens long bytes.
    cut = shown.rstrip(".\u2026")
    return value == shown or (cut != shown and len(cut) >= 16 and value.startswith(cut))


def fields_are_same(record, tree):
    return set(record) == set(tree) and all(is_same(record[name], *tree[name]) for name in record)


def long_list(items):
    """A capture of one list whose items all point to one empty table."""
    packet = struct.pack("<4sHHIIIIQ", b"MESH", 1, 32, 1, 2, 0xC900380B, 0, 0)
    packet += struct.pack("<I4H3I", 12, 8, 8, 0, 4, 8, 4, items)
    packet += b"".join(struct.pack("<I", 4 * (items - item) + 4) for item in range(items)) + struct.pack("<HHI", 4, 4, 4)
    blocks = [(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)), (1, struct.pack("<HHI", 147, 0, 0)),
              (6, struct.pack("<5I", 0, 0, 0, len(packet), len(packet)) + packet)]
    return b"".join(struct.pack("<II", kind, 12 + len(body)) + body + struct.pack("<I", 12 + len(body))
                    for kind, body in blocks)


def check_long_packet(work, script):
    """The tree of one packet is bounded, whatever the packet asks for."""
    with open(f"{work}/long.pcapng", "wb") as file:
        file.write(long_list(16000))
    lines = run("tshark", "-X", f"lua_script:{script}", "-r", f"{work}/long.pcapng", "-V").stdout.splitlines()
    if not any("more than 20000 lines are not shown" in line for line in lines) or len(lines) > 20200:
        sys.exit(f"{len(lines)} lines of a long packet, without a note: {lines[-3:]}")
    if not any("[9]: l2vpn_cfg_query_dfx_item" in line for line in lines):
        sys.exit(f"the items of a long packet are not shown: {lines[-3:]}")


def main():
    tool, write_capture, count = sys.argv[1:4]
    with tempfile.TemporaryDirectory() as work:
        for damage in [], ["damaged"]:
            capture, script = f"{work}/all.pcapng", f"{work}/mesh_l2vpn.lua"
            subprocess.run([write_capture, capture, count, *damage], check=True)
            with open(script, "w", encoding="utf-8") as file:
                file.write(run(tool, "dissector").stdout)
            tables = [json.loads(line) for line in run(tool, "-q", "decode", "--all", capture).stdout.splitlines()]
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
            if len(names) != len(run(tool, "list").stdout.splitlines()) - 1:
                sys.exit(f"{len(names)} messages were compared")
            faults = sum("faults" in table for table in tables)
            print(f"{count} tables of {len(names)} messages, {faults} of them with faults: no difference")
        check_long_packet(work, script)


main()
