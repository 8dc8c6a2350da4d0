#!/usr/bin/env python3
"""The Python package beside python3-protobuf and python3-msgpack, on the same values.

python_bench.py [--quick] [--markdown]    with PYTHONPATH at the package

Encoding makes the object from its values, and the bytes from the object. Decoding makes the object from
bytes, and reads every field. The variants take turns; the least processor time of many short runs counts.
"""
import argparse
import platform
import struct
import timeit
from time import process_time

import google.protobuf
import msgpack
import numpy
from google.protobuf import descriptor_pb2, descriptor_pool, message_factory
from google.protobuf.internal import api_implementation

import mesh_l2vpn as m

MESSAGE = m.l2vpn_sync_vll_pw
ARRAY = 100_000


def example_values():
    """One value for each field, none of them small."""
    made = {}
    for number, field in enumerate(MESSAGE.fields, 1):
        repeated = bytes([0x40 + number]) * field.size
        made[field.name] = int.from_bytes(repeated, "little") if field.kind == "scalar" else repeated
    return made


def protobuf_class(values):
    types = descriptor_pb2.FieldDescriptorProto
    file = descriptor_pb2.FileDescriptorProto(name="bench.proto", package="bench", syntax="proto3")
    message = file.message_type.add(name="Record")
    for number, (name, value) in enumerate(values.items(), 1):
        kind = types.TYPE_BYTES if isinstance(value, bytes) else types.TYPE_UINT32
        message.field.add(name=name, number=number, type=kind, label=types.LABEL_OPTIONAL)
    pool = descriptor_pool.DescriptorPool()
    pool.Add(file)
    descriptor = pool.FindMessageTypeByName("bench.Record")
    return message_factory.MessageFactory(pool).GetPrototype(descriptor)


def variants(values):
    """Name: how the values are encoded, how the encoded `data` is decoded into `(f0, f1, ...)`."""
    names = list(values)
    keywords = ", ".join(f"{name}={name}" for name in names)
    members = ", ".join(f"'{name}': {name}" for name in names)
    plain = ", ".join(names)
    attributes = "(" + ", ".join(f"found.{name}" for name in names) + ")"
    items = "(" + ", ".join(f"found['{name}']" for name in names) + ")"
    places = "(" + ", ".join(f"found[{number}]" for number in range(len(names))) + ")"
    return {
        "ours, as sent": (f"Message({plain}).sent()", "unpack(data, Message)", attributes),
        "ours, as sent, by name": (f"Message({keywords}).sent()", "unpack(data, Message)", attributes),
        "ours, compact": (f"Message({plain}).pack()", "unpack(data, Message)", attributes),
        "protobuf, by name": (
            f"Protobuf({keywords}).SerializeToString()",
            "Protobuf.FromString(data)",
            attributes,
        ),
        "msgpack, a dict": (f"packb({{{members}}})", "unpackb(data)", items),
        "msgpack, a list": (f"packb([{plain}])", "unpackb(data)", places),
    }


def compiled(values, encode, decode, read):
    names = {
        "Message": MESSAGE,
        "Protobuf": protobuf_class(values),
        "unpack": m.unpack,
        "packb": msgpack.packb,
        "unpackb": msgpack.unpackb,
    }
    source = (
        f"def encode({', '.join(values)}):\n    return {encode}\n"
        f"def decode(data):\n    found = {decode}\n    return {read}\n"
    )
    exec(source, names)
    return names["encode"], names["decode"]


def measure(rounds, repetitions):
    values = example_values()
    content = tuple(values.values())
    timers, sizes = {}, {}
    for name, (encode, decode, read) in variants(values).items():
        encoder, decoder = compiled(values, encode, decode, read)
        data = encoder(*content)
        if decoder(data) != content:
            raise SystemExit(f"{name}: other values came back")
        sizes[name] = len(data)
        known = {"encoder": encoder, "decoder": decoder, "content": content, "data": data}
        timers[name, "encode"] = timeit.Timer("encoder(*content)", timer=process_time, globals=known)
        timers[name, "decode"] = timeit.Timer("decoder(data)", timer=process_time, globals=known)
    best = {}
    for _ in range(rounds):
        for case, timer in timers.items():
            time = timer.timeit(repetitions) / repetitions * 1e9
            best[case] = min(time, best.get(case, time))
    return best, sizes


def measure_arrays(rounds):
    """Records a second, in millions."""
    array = m.array(MESSAGE, [example_values()] * ARRAY)
    best = {}
    for _ in range(rounds):
        for form in ("sent", "pack"):
            packed = getattr(array, form)()
            for name, work in (("encode", getattr(array, form)), ("decode", packed.unpack)):
                time = timeit.timeit(work, timer=process_time, number=1)
                best[form, name] = max(ARRAY / time / 1e6, best.get((form, name), 0))
            if packed.unpack() != array:
                raise SystemExit("arrays: other values came back")
    return best


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--quick", action="store_true", help="a first look")
    parser.add_argument("--markdown", action="store_true", help="as for docs/python.md")
    options = parser.parse_args()
    best, sizes = measure(*((50, 200) if options.quick else (1000, 200)))
    arrays = measure_arrays(3 if options.quick else 30)
    separator = " | " if options.markdown else "  "
    edge = "|" if options.markdown else ""

    def row(*cells):
        print((edge + " " + separator.join(cells) + " " + edge).strip())

    def widths(name, *cells):
        return [f"{name:24}", *(f"{cell:>12}" for cell in cells)]

    row(*widths("", "encode, ns", "decode, ns", "encode, x", "decode, x", "bytes"))
    if options.markdown:
        row("---", *["---:"] * 5)
    for name, size in sizes.items():
        times = [best[name, way] for way in ("encode", "decode")]
        ratios = [best[name, way] / best["ours, as sent", way] for way in ("encode", "decode")]
        row(*widths(name, *(f"{time:.0f}" for time in times), *(f"{x:.2f}" for x in ratios), size))
    print()
    for form, name in (("sent", "as sent"), ("pack", "compact")):
        print(
            f"Arrays of {ARRAY:,} records, {name}: {arrays[form, 'encode']:.1f} million records a second "
            f"encoded, {arrays[form, 'decode']:.1f} decoded."
        )
    print(
        f"\nPython {platform.python_version()}, protobuf {google.protobuf.__version__} "
        f"({api_implementation.Type()}), msgpack {'.'.join(map(str, msgpack.version))}, "
        f"numpy {numpy.__version__}, {8 * struct.calcsize('P')} bits."
    )


if __name__ == "__main__":
    main()
