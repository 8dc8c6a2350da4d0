#!/usr/bin/env python3
"""Small messages that ask for much: no command takes more than 64 MiB for one, or writes much more
than it reads.

    hostile.py MESH-L2VPN
"""
import os
import struct
import subprocess
import sys
import tempfile
import time

LIST = "l2vpn_cfg_query_dfx_rec"
IDENTIFIER = 0xC900380B
MIB = 1 << 20
PROGRAM = 5 * MIB  # what the tool takes without a message


def list_of(count):
    """A list up to the count of its items."""
    return struct.pack("<IHHHHIII", 12, 8, 8, 0, 4, 8, 4, count)


def one_table(count):
    """Every item is the same table."""
    words = b"".join(struct.pack("<I", 4 * (count - item)) for item in range(count))
    return list_of(count) + words + struct.pack("<IHH", 0xFFFFFFFC, 4, 0)


def one_vtable(count, last=0):
    """Every item is a table of its own, without a slot."""
    tables = b"".join(struct.pack("<I", (4 * item - 4 * count) % (1 << 32)) for item in range(count))
    return list_of(count) + struct.pack("<I", 4 * count) * count + tables + struct.pack("<HH", 4, last)


def one_text(count, size):
    """Every other item holds the same long bytes."""
    words = struct.pack("<I", 4 * count + 16) * count
    full = 24 + 4 * count
    tables = full + 16
    texts = tables + 4 * count
    empty = texts + 4 * count + 4 + size
    parts = [list_of(count), words, struct.pack("<HHHHHHHH", 14, 4, 0, 0, 0, 0, 4 * count, 0)]
    for item in range(count):
        at = tables + 4 * item
        parts.append(struct.pack("<I", (at - (empty if item % 2 else full)) % (1 << 32)))
    parts += [struct.pack("<I", 4 * (count - item)) for item in range(count)]
    return b"".join(parts) + struct.pack("<I", size) + b"a" * (size - 1) + b"b" + struct.pack("<HH", 4, 0)


def block(kind, body):
    body += bytes(-len(body) % 4)
    return struct.pack("<II", kind, 12 + len(body)) + body + struct.pack("<I", 12 + len(body))


def capture(tables):
    blocks = [block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)),
              block(1, struct.pack("<HHI", 147, 0, 0))]
    for table in tables:
        packet = b"MESH" + struct.pack("<HHIIIIQ", 1, 32, 1, 2, IDENTIFIER, 0, 0) + table
        blocks.append(block(6, struct.pack("<IIIII", 0, 0, 1, len(packet), len(packet)) + packet))
    return b"".join(blocks)


failed = False


def fail(text):
    global failed
    failed = True
    print(text)


def run(words, codes):
    """The output's length, the peak memory and the seconds that a command took."""
    start = time.monotonic()
    read, write = os.pipe()
    process = subprocess.Popen(words, stdout=write, stderr=subprocess.DEVNULL)
    os.close(write)
    length = 0
    while part := os.read(read, MIB):
        length += len(part)
    os.close(read)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode not in codes:
        fail(f"{' '.join(words)} ends with {process.returncode}")
    return length, usage.ru_maxrss * 1024, time.monotonic() - start


def main(tool):
    messages = {
        "one_table": one_table(4040),
        "more_of_one_table": one_table(8200),
        "one_vtable": one_vtable(4040),
        "other_vtable": one_vtable(4040, 1),
        "one_text": one_text(2000, 16384),
        "items.json": b'{"f1":[' + b",".join([b"{}"] * 4040) + b"]}",
        "capture": capture([one_vtable(4040)] * 30),
        "other_capture": capture([one_vtable(4040, 1), one_text(2000, 16384)] * 15),
        "items.lines": b'{"message":"%s","record":{"f1":[{"times":4294967295}]}}\n' % LIST.encode(),
        "text.lines": b'{"message":"%s","record":{"f1":[{"f0":"00*67108864"}]}}\n' % LIST.encode(),
    }
    sizes = {"zeros": 40 * MIB}
    with open("zeros", "wb") as file:
        file.truncate(40 * MIB)
    for name, contents in messages.items():
        with open(name, "wb") as file:
            file.write(contents)
        sizes[name] = len(contents)
    # What this process holds counts for its children.
    del messages, contents
    # Sanitizers take memory of their own.
    with open(tool, "rb") as file:
        is_measured = b"Sanitizer" not in file.read()
    commands = [["decode", "capture"], ["stat", "capture"], ["diff", "-m", LIST, "one_vtable", "other_vtable"],
                ["diff", "-m", LIST, "one_text", "one_vtable"], ["encode", "-m", LIST, "items.json"],
                ["encode", "-m", LIST, "zeros"], ["decode", "--binary", "-m", LIST, "zeros"]]
    commands += [["diff", "capture", "other_capture"], ["diff", "--json", "capture", "other_capture"],
                 ["decode", "--where", "f1[].f0 == 1", "other_capture"], ["encode", "--packet", "2", "other_capture"],
                 ["explain", "--packet", "2", "other_capture"], ["encode", "--capture", "items.lines"],
                 ["encode", "--capture", "text.lines"]]
    for name in ["one_table", "more_of_one_table", "one_vtable", "one_text"]:
        commands += [["decode", "-m", LIST, name], ["decode", "-m", LIST, "--base64", name], ["decode", name],
                     ["explain", "-m", LIST, name], ["explain", name], ["explain", "--html", "-m", LIST, name]]
    for command in commands:
        length, memory, seconds = run([tool, "--quiet", *command], [0, 1])
        print(f"{' '.join(command)}: {length} bytes, {memory // 1024} KiB, {seconds:.2f} s")
        read = sizes[command[-1]]
        # A page's 10,000 ranges take more than a kilobyte for each kilobyte of a message.
        if length > 2 * MIB + 16 * read:
            fail(f"{command}: {length} bytes of output for {read}")
        if is_measured and memory > 64 * MIB + PROGRAM:
            fail(f"{command}: {memory} bytes of memory")
    # What is asked for is written as it is made.
    length, memory, _ = run([tool, "decode", "--all", "-m", LIST, "one_text"], [0])
    if length < 60 * MIB:
        fail(f"--all writes {length} bytes")
    if is_measured and memory > 24 * MIB:
        fail(f"--all takes {memory} bytes of memory")
    return 1 if failed else 0


program = os.path.realpath(sys.argv[1])
with tempfile.TemporaryDirectory() as place:
    os.chdir(place)
    sys.exit(main(program))
