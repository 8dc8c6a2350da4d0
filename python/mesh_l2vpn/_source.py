"""The functions of a message class that touch every field, written out as source and compiled.

A record is made as an instance of its class's base, which has the slots and checks nothing, and given
its class when it is filled. Filling it through the class would call a check for each field.
"""
import ctypes
import struct

from . import _inspect
from .records import Record, Records, checked, unpack_any

_CODES = {1: "B", 2: "H", 4: "I", 8: "Q"}
_POINTER = _CODES[ctypes.sizeof(ctypes.c_void_p)]


class _Leaf:
    """A value of a record or of a record within it, as "f1.f8"."""

    def __init__(self, field, path, offset):
        self.field = field
        self.path = path
        self.offset = offset + field.offset
        self.count_offset = None if field.count_offset is None else offset + field.count_offset


def _leaves(cls, path=(), offset=0):
    for field in cls.fields:
        if field.kind == "table":
            yield from _leaves(field.record, (*path, field.name), offset + field.offset)
        else:
            yield _Leaf(field, (*path, field.name), offset)


def _tables(cls, path=()):
    """The records within a record, outermost first, with itself."""
    yield path, cls
    for field in cls.fields:
        if field.kind == "table":
            yield from _tables(field.record, (*path, field.name))


def _owner(path):
    return "_".join(("self", *path))


def _variable(path):
    return f"{_owner(path[:-1])}.{path[-1]}"


def _owners(cls):
    """Source that names the records within a record."""
    return [f"{_owner(path)} = {_variable(path)}" for path, _ in _tables(cls) if path]


def _layout(size, places):
    """A format over `size` bytes; places: (offset, length, code), not overlapping."""
    at = 0
    codes = ["="]
    for offset, length, code in sorted(places):
        codes.append(f"{offset - at}x{code}")
        at = offset + length
    codes.append(f"{size - at}x")
    return struct.Struct("".join(codes))


def _code(field):
    return _CODES[field.size] if field.kind == "scalar" else f"{field.size}s"


class _Writer:
    """Compiles functions that share one set of names."""

    def __init__(self, name):
        self._file = f"<{name}>"
        # What struct raises for a value that does not fit.
        self.names = {"errors": (struct.error, TypeError, OverflowError)}

    def function(self, signature, lines):
        source = f"def {signature}:\n" + "".join(f"    {line}\n" for line in lines)
        found = {}
        exec(compile(source, self._file, "exec"), self.names, found)
        return next(iter(found.values()))


def _filled(cls, names):
    """Source that makes a record and those within it, and source that puts them together once they are
    filled. A record is finished last: from then on it checks what is set."""
    begin, together, finish = [], [], []
    for number, (path, table) in enumerate(_tables(cls)):
        names[f"base{number}"], names[f"class{number}"] = table.__base__, table
        begin.append(f"{_owner(path)} = base{number}()")
        if table._keeps_image:
            begin.append(f"{_owner(path)}._image = None")
        if path:
            together.append(f"{_variable(path)} = {_owner(path)}")
        finish.append(f"{_owner(path)}.__class__ = class{number}")
    return begin, [*together, *finish]


def add_functions(cls):
    leaves = list(_leaves(cls))
    cls._block = ctypes.c_char * cls.record_size
    cls._owns_memory = any(leaf.count_offset is not None for leaf in leaves)
    writer = _Writer(cls.name)
    cls._values = writer.function(
        "_values(self)", [f"return ({' '.join(f'self.{field.name},' for field in cls.fields)})"]
    )
    cls._to_record, cls._from_record = _record_functions(writer, cls, leaves)
    cls._unpack = classmethod(unpack_any)
    if cls.sent_fixed:
        cls.image, decode = _image_functions(writer, cls, leaves)
        cls._unpack = staticmethod(decode)
    cls.__new__ = _constructor(writer, cls)


def _constructor(writer, cls):
    """Checks all scalars at once. One of them that does not fit is then found by its own check."""
    names = writer.names
    names["base"], names["the_class"] = cls.__base__, cls
    names["checked"], names["Records"], names["nothing"] = checked, Records, object()
    parameters, lines, scalars = ["cls"], [], []
    for field in cls.fields:
        name = field.name
        again = f"{name} = checked(the_class, '{name}', {name})"
        if field.kind == "scalar":
            parameters.append(f"{name}=0")
            scalars.append(field)
        elif field.kind == "array":
            names[f"zeros{field.size}"] = bytes(field.size)
            parameters.append(f"{name}=zeros{field.size}")
            lines.append(f"if {name}.__class__ is not bytes or len({name}) != {field.size}: {again}")
        elif field.kind == "bytes":
            parameters.append(f"{name}=b''")
            lines.append(f"if {name}.__class__ is not bytes: {again}")
        else:
            names[f"item_{name}"] = field.record
            parameters.append(f"{name}=nothing")
            made = f"item_{name}()" if field.kind == "table" else f"Records(item_{name})"
            lines.append(f"if {name} is nothing: {name} = {made}")
            lines.append(f"elif {name}.__class__ is not item_{name}: {again}")
    values = ", ".join(field.name for field in scalars)
    names["check"] = struct.Struct("=" + "".join(map(_code, scalars))).pack
    # A record that keeps its image checks its scalars by writing it.
    check = names["image_of"].replace("self.", "") if cls._keeps_image else f"check({values})"
    lines += ["try:", f"    image = {check}", "except errors:", "    image = None"]
    lines += [f"    {f.name} = checked(the_class, '{f.name}', {f.name})" for f in scalars]
    lines.append("self = base()")
    lines += [f"self.{field.name} = {field.name}" for field in cls.fields]
    if cls._keeps_image:
        lines.append("self._image = image")
    lines += ["self.__class__ = the_class", "return self"]
    return writer.function(f"__new__({', '.join(parameters)})", lines)


def _record_functions(writer, cls, leaves):
    """To and from the C record. The blocks that a record points to live in `keep`."""
    names = writer.names
    places, arguments, before, targets, after = [], {}, [], {}, []
    for number, leaf in enumerate(leaves):
        field, value = leaf.field, _variable(leaf.path)
        if leaf.count_offset is None:
            places.append((leaf.offset, field.size, _code(field)))
            arguments[leaf.offset] = targets[leaf.offset] = value
            continue
        places.append((leaf.count_offset, 4, "I"))
        places.append((leaf.offset, ctypes.sizeof(ctypes.c_void_p), _POINTER))
        arguments[leaf.count_offset] = f"len({value})"
        arguments[leaf.offset] = f"at{number}"
        targets[leaf.count_offset], targets[leaf.offset] = f"count{number}", f"at{number}"
        names["string_at"], names["address"] = ctypes.string_at, _address
        if field.kind == "bytes":
            before.append(f"at{number} = address({value}, keep)")
            after.append(f"{value} = string_at(at{number}, count{number})")
        else:
            names[f"item{number}"] = field.record
            names["items"] = _items
            before.append(
                f"at{number} = address(b''.join([i._to_record(keep) for i in {value}]), keep)"
            )
            after.append(f"{value} = items(item{number}, at{number}, count{number})")
    layout = _layout(cls.record_size, places)
    names["pack_record"], names["unpack_record"] = layout.pack, layout.unpack_from
    begin, end = _filled(cls, names)
    to_record = writer.function(
        "_to_record(self, keep)",
        [
            *_owners(cls),
            *before,
            f"return pack_record({', '.join(arguments[at] for at in sorted(arguments))})",
        ],
    )
    from_record = writer.function(
        "_from_record(record, at)",
        [
            *begin,
            f"{''.join(targets[at] + ', ' for at in sorted(targets))}= unpack_record(record, at)",
            *after,
            *end,
            "return self",
        ],
    )
    return to_record, staticmethod(from_record)


def _address(block, keep):
    if not block:
        return 0
    keep.append(block)
    return ctypes.cast(block, ctypes.c_void_p).value


def _items(cls, at, count):
    records = Records(cls)
    if count:
        block = ctypes.string_at(at, count * cls.record_size)
        records._items = [
            cls._from_record(block, number * cls.record_size) for number in range(count)
        ]
    return records


def _image_places(image, cls, table, path=()):
    """Where the values of a fixed image are: path, position, length."""

    def word(at, code="I"):
        return struct.unpack_from("=" + code, image, at)[0]

    vtable = table - word(table, "i")
    for number, field in enumerate(cls.fields):
        at = table + word(vtable + 4 + 2 * number, "H")
        if field.kind == "scalar":
            yield (*path, field.name), at, field.size
        elif field.kind == "array":
            yield (*path, field.name), at + word(at) + 4, field.size
        else:
            yield from _image_places(image, field.record, at + word(at), (*path, field.name))


def _image_functions(writer, cls, leaves):
    """The fixed arrangement, directly: it has every value in a place of its own. The library writes
    the image of zeros, which everything else is copied from. An image that differs from it elsewhere is
    left to the library."""
    names = writer.names
    template = _inspect.message(
        _inspect.pack, cls._handle, bytes(cls.record_size), _inspect.FIXED
    )
    codes = {leaf.path: _code(leaf.field) for leaf in leaves}
    places, arguments, targets, constants = [], [], [], []
    at = 0
    values = sorted(
        _image_places(template, cls, struct.unpack_from("=I", template)[0]), key=lambda p: p[1]
    )
    for path, begin, length in [*values, (None, len(template), 0)]:
        if begin > at:
            name = f"constant{len(constants)}"
            constants.append(name)
            # As a number where there is one of the size: quicker than a string.
            places.append((at, begin - at, _CODES.get(begin - at, f"{begin - at}s")))
            arguments.append(name)
            targets.append("_" + name)
        if path is not None:
            places.append((begin, length, codes[path]))
            arguments.append(_variable(path))
            targets.append(_variable(path))
        at = begin + length
    layout = _layout(len(template), places)
    names["pack_image"], names["unpack_image"] = layout.pack, layout.unpack
    found = dict(zip(targets, layout.unpack(template)))
    names.update({name: found["_" + name] for name in constants})
    names["image_of"] = image_of = f"pack_image({', '.join(arguments)})"
    kept = ["image = self._image", "if image is not None: return image"] if cls._keeps_image else []
    image = writer.function("image(self)", [*kept, *_owners(cls), f"return {image_of}"])
    image.__doc__ = Record.image.__doc__
    begin, end = _filled(cls, names)
    decode = writer.function(
        "_unpack(data)",
        [
            f"if len(data) != {len(template)}:",
            "    return unpack_any(the_class, data)",
            *begin,
            "try:",
            f"    {', '.join(targets)} = unpack_image(data)",
            "except errors:",
            "    return unpack_any(the_class, data)",
            f"if {' or '.join(f'_{name} != {name}' for name in constants)}:",
            "    return unpack_any(the_class, data)",
            *end,
            "return self",
        ],
    )
    names["unpack_any"], names["the_class"] = unpack_any, cls
    return image, decode
