"""Captures: what is written is read, also by mesh-l2vpn, and what it writes is read here."""
import json
import os
import struct
import subprocess
import sys

import pytest

import mesh_l2vpn as m

pytest_plugins = ["mesh_l2vpn.pytest_plugin"]

BUILD = os.environ.get("MESH_L2VPN_BUILD", "")
TOOL = os.path.join(BUILD, "mesh-l2vpn")
SAMPLES = os.path.join(BUILD, "tests/tool/write_capture")

update = m.l2vpn_sync_vpls_ac_update(f0=7, f1={"f0": 42})


def fields(table):
    return (table.time, table.source, table.destination, table.identifier, table.extra, table.table)


@pytest.fixture
def path(tmp_path):
    return tmp_path / "capture.pcapng"


@pytest.fixture
def samples(path):
    """Writes random messages of all types, half of them damaged."""

    def write(count):
        subprocess.run([SAMPLES, path, str(count), "damaged"], check=True)
        return path

    return write


def block(kind, body, order="<"):
    length = 12 + len(body)
    return struct.pack(order + "II", kind, length) + body + struct.pack(order + "I", length)


def section(order="<"):
    return block(0x0A0D0D0A, struct.pack(order + "IHHq", 0x1A2B3C4D, 1, 0, -1), order)


def interface(options=b"", link=147, order="<"):
    return block(1, struct.pack(order + "HHI", link, 0, 0) + options, order)


def packet(table=b"abc", time=5, options=b"", number=0, original=None, order="<", magic=b"MESH"):
    data = struct.pack("<4sHHIIIIQ", magic, 1, 32, 3, 4, 5, 0, 6) + table
    head = (number, time >> 32, time & 0xFFFFFFFF, len(data), original or len(data))
    padded = data + bytes(-len(data) % 4)
    return block(6, struct.pack(order + "5I", *head) + padded + options, order)


class TestWritten:
    def test_tables_are_read(self, path):
        tables = [
            m.Table.of(update, source=1, destination=2, extra=2**64 - 1, time=2**63),
            m.Table(0x1234, b"", source=2**32 - 1),
            m.Table(update.identifier, update.sent()[:61]),
        ]
        with m.write_capture(path) as capture:
            for table in tables:
                capture.write(table)
            capture.write(tables[0], missed_before=3)
        reader = m.read_capture(path)
        read = list(reader)
        assert [fields(table) for table in read] == [fields(table) for table in tables + tables[:1]]
        assert [table.missed_before for table in read] == [0, 0, 0, 3]
        assert read[0].record == update
        assert read[1].message is None
        assert read[2].record is None
        assert reader.lost == 3
        assert reader.other_packets == 0

    def test_tables_are_those_of_a_node(self, path, mesh_nodes):
        one, two = mesh_nodes(1), mesh_nodes(2)
        one.send(2, [update] * 3, extra=4)
        arrived = [two.receive_one(timeout=20) for _ in range(3)]
        with m.write_capture(path) as capture:
            for received in arrived:
                capture.write(received)
        assert [fields(table) for table in m.read_capture(path)] == [
            fields(received) for received in arrived
        ]

    def test_copy_is_the_same(self, path, tmp_path, samples):
        samples(500)
        copy = tmp_path / "copy.pcapng"
        with m.write_capture(copy) as capture:
            for table in m.read_capture(path):
                capture.write(table)
        shown = [
            subprocess.run([TOOL, "decode", file], capture_output=True, text=True).stdout
            for file in (path, copy)
        ]
        assert shown[0].count("\n") == 500
        assert shown[0] == shown[1]

    def test_table_is_in_the_file_at_once(self, path):
        capture = m.write_capture(path)
        capture.write(m.Table.of(update))
        assert len(list(m.read_capture(path))) == 1
        capture.close()

    def test_capture_replaces_no_file_unasked(self, path):
        path.write_bytes(b"precious")
        with pytest.raises(FileExistsError):
            m.write_capture(path)
        assert path.read_bytes() == b"precious"
        m.write_capture(path, overwrite=True).close()
        assert list(m.read_capture(path)) == []

    def test_table_that_does_not_fit_leaves_the_capture_sound(self, path):
        with m.write_capture(path) as capture:
            capture.write(m.Table.of(update))
            for wrong in ({"source": -1}, {"time": 2**64}, {"extra": 2**64}):
                with pytest.raises(m.WrongUse):
                    capture.write(m.Table.of(update, **wrong))
            capture.write(m.Table.of(update))
        assert len(list(m.read_capture(path))) == 2


class TestRead:
    def test_capture_of_the_tool_has_the_same_messages(self, samples):
        path = samples(1000)
        lines = subprocess.run([TOOL, "decode", "--all", path], capture_output=True, text=True).stdout
        shown = [json.loads(line) for line in lines.splitlines()]
        read = list(m.read_capture(path))
        assert len(read) == len(shown) == 1000
        rejected = 0
        for table, line in zip(read, shown):
            assert table.message.name == line["message"]
            assert (table.source, table.destination) == (line["source"], line["destination"])
            assert (table.record is None) == ("record" not in line)
            if table.record is not None:
                assert json.loads(table.record.json()) == line["record"]
            assert (table.fault is None) == ("faults" not in line)
            rejected += table.record is None
        assert 0 < rejected < 1000

    def test_capture_of_the_other_byte_order(self, path):
        count = struct.pack(">HHQI", 4, 8, 9, 0)
        path.write_bytes(section(">") + interface(order=">") + packet(options=count, order=">"))
        (table,) = m.read_capture(path)
        assert fields(table) == (5000, 3, 4, 5, 6, b"abc")
        assert table.missed_before == 9

    @pytest.mark.parametrize(
        "resolution, nanoseconds", [(0, 7 * 10**9), (6, 7000), (9, 7), (0x80 | 1, 3_500_000_000)]
    )
    def test_times_have_the_resolution_of_their_interface(self, path, resolution, nanoseconds):
        options = struct.pack("<HHB3xHH", 9, 1, resolution, 0, 0)
        path.write_bytes(section() + interface(options) + packet(time=7))
        assert [table.time for table in m.read_capture(path)] == [nanoseconds]

    def test_other_packets_are_counted(self, path):
        path.write_bytes(
            section()
            + interface()
            + interface(link=1)
            + packet(number=1)
            + packet(magic=b"MASH")
            + block(3, bytes(8))
            + block(0x99, b"unknown.")
            + packet()
        )
        reader = m.read_capture(path)
        assert len(list(reader)) == 1
        assert reader.other_packets == 3

    def test_cut_table_says_how_much_is_missing(self, path, tmp_path):
        path.write_bytes(section() + interface() + packet(original=45))
        (table,) = m.read_capture(path)
        assert table.cut_off == 10
        copy = tmp_path / "copy.pcapng"
        with m.write_capture(copy) as capture:
            capture.write(table)
        assert [one.cut_off for one in m.read_capture(copy)] == [10]

    def test_sections_sum_up(self, path, tmp_path):
        for missed in (2, 3):
            with m.write_capture(path, overwrite=True) as capture:
                capture.write(m.Table.of(update), missed_before=missed)
            with open(tmp_path / "all.pcapng", "ab") as file:
                file.write(path.read_bytes())
        reader = m.read_capture(tmp_path / "all.pcapng")
        assert len(list(reader)) == 2
        assert reader.lost == 5

    @pytest.mark.parametrize(
        "data, text",
        [
            (b"", "byte 0: an empty file is not a capture"),
            (b"abc", "byte 0: truncated inside a block"),
            (b"{'json': 1} and more", "byte 0: not a pcapng file"),
            (block(0x0A0D0D0A, b"WRONGmagic.."), "byte 0: a section without a byte-order magic"),
            (section() + struct.pack("<II", 1, 13), "byte 28: a block of 13 bytes"),
            (section() + struct.pack("<II", 1, 8), "byte 28: a block of 8 bytes"),
            (section() + struct.pack("<II", 1, 1 << 30), "byte 28: a block of 1073741824 bytes"),
            (section() + struct.pack("<II", 1, 1 << 27), "byte 28: truncated inside a block of 134217728 bytes"),
            (section() + interface()[:-4] + b"1234", "byte 28: a block whose two lengths differ"),
            (section() + block(1, b"1234"), "byte 28: an interface without a link type"),
            (section() + interface(struct.pack("<HHB3x", 9, 1, 19)), "byte 28: an interface with a timestamp resolution of 19"),
            (section() + interface(struct.pack("<HHB3x", 9, 1, 0xC0)), "byte 28: an interface with a timestamp resolution of 64"),
            (section() + packet(), "byte 28: a packet of an unknown interface"),
            (section() + block(6, bytes(8)), "byte 28: a packet without a header"),
            (section() + interface() + block(6, struct.pack("<5I", 0, 0, 0, 9, 9)), "byte 48: a packet longer than its block"),
            (section() + block(5, struct.pack("<III", 0, 0, 0)), "byte 28: statistics of an unknown interface"),
            (section() + block(5, b""), "byte 28: statistics of an unknown interface"),
        ],
        ids=lambda value: value if isinstance(value, str) else "",
    )
    def test_fault_is_named_with_its_position(self, path, data, text):
        path.write_bytes(data)
        with pytest.raises(m.CaptureError) as caught:
            list(m.read_capture(path))
        assert str(caught.value) == f"{path}: {text}"

    def test_what_stands_before_a_fault_is_read(self, path):
        path.write_bytes(section() + interface() + packet() + packet()[:-5])
        reader = m.read_capture(path)
        read = []
        with pytest.raises(m.CaptureError, match="truncated"):
            for table in reader:
                read.append(table)
        assert [table.table for table in read] == [b"abc"]

    def test_damage_never_raises_anything_else(self, path, samples):
        samples(40)
        good = path.read_bytes()
        state = 1
        for _ in range(300):
            damaged = bytearray(good)
            for _ in range(3):
                state = state * 6364136223846793005 + 1442695040888963407 & 2**64 - 1
                damaged[(state >> 33) % len(damaged)] = state >> 25 & 0xFF
            path.write_bytes(damaged[: (state >> 17) % len(damaged) + 1])
            try:
                for table in m.read_capture(path):
                    table.record, table.fault
            except m.CaptureError:
                pass

    def test_missing_file_is_the_systems_error(self, path):
        with pytest.raises(FileNotFoundError):
            m.read_capture(path)

    def test_reader_closes_its_file(self, path):
        with m.write_capture(path) as capture:
            capture.write(m.Table.of(update))
        before = len(os.listdir("/proc/self/fd"))
        list(m.read_capture(path))
        with m.read_capture(path) as reader:
            next(iter(reader))
        assert list(reader) == []
        assert len(os.listdir("/proc/self/fd")) == before

    def test_long_capture_takes_no_more_memory(self, samples, tmp_path):
        program = (
            "import resource, sys, mesh_l2vpn as m\n"
            "with m.write_capture(sys.argv[2]) as copy:\n"
            "    for table in m.read_capture(sys.argv[1]): copy.write(table)\n"
            "print(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)\n"
        )

        def peak(count):
            path = samples(count)
            copy = tmp_path / f"copy{count}"
            output = subprocess.run(
                [sys.executable, "-c", program, path, copy], capture_output=True, check=True
            )
            return int(output.stdout)

        assert peak(20000) - peak(1000) < 1024
