#!/usr/bin/env python3
"""What a release wrote, kept for the releases after it.

    release.py write MESH-L2VPN WRITE_CAPTURE DIRECTORY    makes the directory, once a release
    release.py check MESH-L2VPN DIRECTORY                  reads it with the present tool and library

The directory holds captures, and beside each what that release made of it, one line a table:

    messages.pcapng, messages.json    every message in the compact arrangement and as it is sent
    damaged.pcapng, damaged.json      damaged messages: the places of their faults, and the records of
                                      those that receivers accept

A later release may say more of a table and word a fault otherwise. It decodes the same values, accepts
the same tables, finds the same faults, and encodes the same bytes.
"""
import json
import os
import struct
import subprocess
import sys
import tempfile

PACKET = 6
HEADER = 32  # of a table, in its packet
LARGEST_DAMAGED = 4096


def blocks(capture):
    """The blocks of a capture: type, and all bytes."""
    at = 0
    while at < len(capture):
        kind, length = struct.unpack_from("<II", capture, at)
        yield kind, capture[at : at + length]
        at += length


def packet(block):
    """What precedes a table in its packet, and the table."""
    (length,) = struct.unpack_from("<I", block, 20)
    data = block[28 : 28 + length]
    return data[:HEADER], data[HEADER:]


def tables(file):
    with open(file, "rb") as capture:
        return [packet(block)[1] for kind, block in blocks(capture.read()) if kind == PACKET]


def decoded(tool, file):
    """The tool's words on each table of a capture, with the place of a fault alone."""
    output = subprocess.run([tool, "decode", file], stdout=subprocess.PIPE, check=False).stdout
    lines = [json.loads(line) for line in output.splitlines()]
    for line in lines:
        line.pop("bytes", None)
        if "faults" in line:
            line["faults"] = [fault.split(":")[0] for fault in line["faults"]]
    return lines


def write_lines(tool, directory, name):
    with open(f"{directory}/{name}.json", "w", encoding="utf-8") as file:
        for line in decoded(tool, f"{directory}/{name}.pcapng"):
            file.write(json.dumps(line, separators=(",", ":")) + "\n")


def write(tool, write_capture, directory):
    messages = len(json.loads(subprocess.check_output([tool, "list", "--json"])))
    os.makedirs(directory)
    subprocess.check_call([write_capture, f"{directory}/messages.pcapng", str(2 * messages)])
    # The first half of these is not damaged. The number of a table is its extra word.
    with tempfile.TemporaryDirectory() as scratch:
        subprocess.check_call([write_capture, f"{scratch}/all", str(4 * messages), "damaged"])
        with open(f"{scratch}/all", "rb") as capture, open(f"{directory}/damaged.pcapng", "wb") as kept:
            for kind, block in blocks(capture.read()):
                if kind == PACKET:
                    header, table = packet(block)
                    (number,) = struct.unpack_from("<Q", header, 24)
                    if number < 2 * messages or len(table) > LARGEST_DAMAGED:
                        continue
                kept.write(block)
    for name in "messages", "damaged":
        write_lines(tool, directory, name)


def fail(text):
    sys.exit(f"FAILED: {text}")


def check_lines(tool, directory, name):
    with open(f"{directory}/{name}.json", encoding="utf-8") as file:
        then = [json.loads(line) for line in file]
    now = decoded(tool, f"{directory}/{name}.pcapng")
    if not then or len(then) != len(now):
        fail(f"{name}: {len(now)} tables, {len(then)} when they were written")
    for number, (old, new) in enumerate(zip(then, now)):
        for member in sorted({*old, "faults", "record"}):
            if old.get(member) != new.get(member):
                fail(f"{name}, table {number}, {old['message']}: {member} is {new.get(member)}, "
                     f"was {old.get(member)}")
    return then


def check(tool, directory):
    lines = check_lines(tool, directory, "messages")
    encoded = tables(f"{directory}/messages.pcapng")
    for number, (line, bytes_then) in enumerate(zip(lines, encoded, strict=True)):
        if "faults" in line:
            fail(f"table {number} has faults")
        arrangement = ["--compact"] if number < len(lines) / 2 else []
        record = json.dumps(line["record"])
        command = [tool, "encode", "-m", line["message"], *arrangement]
        bytes_now = subprocess.check_output(command, input=record.encode())
        # A byte string of length 0 counts 8 bytes at the end where its pointer is not null, which
        # JSON does not tell.
        uncounted = [8 * count for count in range(record.count('""') + 1)]
        if not bytes_then.startswith(bytes_now) or len(bytes_then) - len(bytes_now) not in uncounted:
            fail(f"table {number}, {line['message']}: its record is other bytes now")
    damaged = check_lines(tool, directory, "damaged")
    rejected = sum("record" not in line for line in damaged)
    if rejected in (0, len(damaged)):
        fail("damaged tables of one verdict alone")
    print(f"{len(lines)} messages, {rejected} of {len(damaged)} damaged ones rejected")


if __name__ == "__main__":
    {"write": write, "check": check}[sys.argv[1]](*sys.argv[2:])
