"""Message classes, made from the messages' schemas when they are first asked for.

A class has a slot for each field, so that reading a field costs no call. Fields are checked when they
are set. Functions that touch every field are written out as Python source for each class (_source.py),
as dataclasses do it.
"""
import json
from collections.abc import Iterable, Mapping, MutableSequence
from operator import index
from typing import ClassVar, Iterator, NamedTuple, Optional, Tuple, Type, TypeVar, Union

from . import _inspect
from .errors import BadInput, FieldError, Rejected, UnknownMessage

Buffer = Union[bytes, bytearray, memoryview]
AnyRecord = TypeVar("AnyRecord", bound="Record")


class Field(NamedTuple):
    """A field of a message. Sizes and offsets are bytes of the C record."""

    name: str
    kind: str  # "scalar", "array", "bytes", "table" or "vector"
    size: int  # of a scalar, an array, a nested record, an item
    offset: int
    count_offset: Optional[int]
    record: "Optional[Type[Record]]"  # of a table, of a vector's items


class Record:
    """The base of all message classes."""

    __slots__ = ()
    __hash__ = None  # type: ignore[assignment]

    name: ClassVar[str]
    identifier: ClassVar[int]
    service: ClassVar[str]
    sent_fixed: ClassVar[bool]
    record_size: ClassVar[int]
    fields: ClassVar[Tuple[Field, ...]]

    def __eq__(self, other: object) -> bool:
        if self.__class__ is not other.__class__:
            return NotImplemented
        return self._values() == other._values()

    def __repr__(self) -> str:
        """Fields that are not zero."""
        zero = self.__class__()
        shown = (
            f"{field.name}={value!r}"
            for field, value, usual in zip(self.fields, self._values(), zero._values())
            if value != usual
        )
        return f"{self.name}({', '.join(shown)})"

    def __reduce__(self):
        return self.__class__, self._values()

    def pack(self) -> bytes:
        """The message in the compact arrangement, as __pack writes it."""
        return self._packed(_inspect.COMPACT)

    def image(self) -> bytes:
        """The message in the fixed arrangement."""
        return self._packed(_inspect.FIXED)

    def sent(self) -> bytes:
        """The message as it is sent."""
        return self.image() if self.sent_fixed else self.pack()

    def json(self) -> str:
        """The record as JSON on one line."""
        keep = []
        return _inspect.text(_inspect.record_to_json, self._handle, self._to_record(keep))

    @classmethod
    def from_json(cls: Type[AnyRecord], text: Union[str, Buffer]) -> AnyRecord:
        """The record of JSON: missing members are 0, numbers may be strings with 0x."""
        encoded = text.encode() if isinstance(text, str) else bytes(text)
        return unpack(
            _inspect.message(
                _inspect.from_json, cls._handle, encoded, len(encoded), _inspect.COMPACT
            ),
            cls,
        )

    @classmethod
    def _of(cls, value):
        """A record of this class, or of a mapping from names to values."""
        if value.__class__ is cls:
            return value
        if not isinstance(value, Mapping):
            raise FieldError("", f"a {cls.name} or a mapping was expected, not {_kind(value)}")
        for name in value:
            if name not in cls._checks:
                raise FieldError(str(name), f"{cls.name} has no such field")
        return cls(**value)

    def _packed(self, form):
        keep = []
        return _inspect.message(_inspect.pack, self._handle, self._to_record(keep), form)


class Records(MutableSequence):
    """A field of many records: a list that takes records of one class, or mappings."""

    __slots__ = ("_class", "_items")
    __hash__ = None  # type: ignore[assignment]

    def __init__(self, cls, values=()):
        self._class = cls
        self._items = []
        if isinstance(values, Mapping) or not isinstance(values, Iterable):
            raise FieldError("", f"a list of {cls.name} was expected, not {_kind(values)}")
        self.extend(values)

    def __getitem__(self, at):
        found = self._items[at]
        return Records(self._class, found) if isinstance(at, slice) else found

    def __setitem__(self, at, value):
        if isinstance(at, slice):
            self._items[at] = Records(self._class, value)._items
        else:
            self._items[at] = self._checked(value, at)

    def __delitem__(self, at):
        del self._items[at]

    def __len__(self):
        return len(self._items)

    def insert(self, at, value):
        self._items.insert(at, self._checked(value, at))

    def _checked(self, value, at):
        try:
            return self._class._of(value)
        except FieldError as error:
            raise _inside(f"[{at}]", error) from None

    def __eq__(self, other):
        return self._items == list(other) if isinstance(other, (Records, list)) else NotImplemented

    def __repr__(self):
        return repr(self._items)

    def __reduce__(self):
        return Records, (self._class, self._items)


def unpack(data: Buffer, message: Type[AnyRecord]) -> AnyRecord:
    """The record of a message's bytes. Raises Rejected for what receivers reject."""
    return message._unpack(data)


def unpack_any(message, data):
    """By the library: whatever is no plain fixed image."""
    data = bytes(data)
    block = message._block()
    result = _inspect.unpack(message._handle, data, len(data), block)
    if result:
        error = _inspect.failure(result)
        raise rejection(data, message) if isinstance(error, BadInput) else error
    try:
        return message._from_record(block, 0)
    finally:
        if message._owns_memory:
            _inspect.release(message._handle, block)


def rejection(data, message):
    return Rejected(message.name, *judged(data, message)[1:])


def judged(data, message):
    """What receivers do with the bytes; the first byte at fault, the field's path, what is wrong."""
    fault = _inspect.Fault()
    verdict = _inspect.verify(message._handle, data, len(data), fault)
    return verdict, fault.position, fault.path.decode(), fault.text.decode(errors="replace")


def _kind(value):
    return type(value).__name__


def _inside(name, error):
    """The error of a field, seen from the record that holds it."""
    separator = "." if error.path and not error.path.startswith("[") else ""
    return FieldError(name + separator + error.path, error.text)


def _scalar(size):
    limit = 1 << 8 * size

    def check(value):
        try:
            number = index(value)
        except TypeError:
            raise FieldError("", f"an integer was expected, not {_kind(value)}") from None
        if not 0 <= number < limit:
            raise FieldError("", f"{number} is not within 0 and {limit - 1}")
        return number

    return check


def _string(value):
    if not isinstance(value, (bytes, bytearray, memoryview)):
        raise FieldError("", f"bytes were expected, not {_kind(value)}")
    return bytes(value)


def _array(size):
    def check(value):
        value = _string(value)
        if len(value) != size:
            raise FieldError("", f"{size} bytes were expected, not {len(value)}")
        return value

    return check


def _vector(cls):
    def check(value):
        if value.__class__ is Records and value._class is cls:
            return value
        return Records(cls, value)

    return check


def _check_of(field):
    return {
        "scalar": lambda: _scalar(field.size),
        "array": lambda: _array(field.size),
        "bytes": lambda: _string,
        "table": lambda: field.record._of,
        "vector": lambda: _vector(field.record),
    }[field.kind]()


def checked(cls, name, value):
    """A field's value as it is stored."""
    try:
        return cls._checks[name](value)
    except FieldError as error:
        raise _inside(name, error) from None


def _set_field(self, name, value):
    cls = self.__class__
    if name not in cls._checks:
        raise AttributeError(f"{cls.name} has no field {name}")
    cls._setters[name](self, checked(cls, name, value))
    if cls._keeps_image:
        cls._setters["_image"](self, None)


def _delete_field(self, name):
    raise AttributeError(f"a field of {self.name} cannot be deleted")


def _final(cls, **_):
    raise TypeError("message classes cannot be derived from")


class Messages(Mapping[Union[str, int], Type[Record]]):
    """The message classes by name, in the order of names. Also found by identifier."""

    def __init__(self):
        handles = map(_inspect.message_at, range(_inspect.message_count()))
        self._handles = {_inspect.message_name(handle).decode(): handle for handle in handles}
        self._classes = {}

    def __getitem__(self, key: Union[str, int]) -> Type[Record]:
        cls = self._classes.get(key)
        return self._make(key) if cls is None else cls

    def __iter__(self) -> Iterator[str]:
        return iter(self._handles)

    def __len__(self) -> int:
        return len(self._handles)

    def __contains__(self, key):
        return key in self._handles or self._name(key) is not None

    def __repr__(self):
        return f"<{len(self)} messages>"

    @staticmethod
    def _name(identifier):
        if not isinstance(identifier, int) or not 0 <= identifier < 1 << 32:
            return None
        handle = _inspect.message_by_id(identifier)
        return handle and _inspect.message_name(handle).decode()

    def _make(self, key):
        name = key if key in self._handles else self._name(key)
        if name is None:
            shown = f"0x{key:08X}" if isinstance(key, int) else repr(key)
            raise UnknownMessage(f"there is no message {shown}")
        if name not in self._classes:
            document = json.loads(_inspect.text(_inspect.schema, self._handles[name]))
            schemas = {record["name"]: record["slots"] for record in document["records"]}
            made = self._class(document["messages"][0], schemas[name])
            # Of two threads that make a class, one wins: there is one class of a name.
            cls = self._classes.setdefault(name, made)
            self._classes.setdefault(cls.identifier, cls)
        return self._classes[name]

    def _class(self, description, slots):
        from . import _source

        fields = tuple(
            Field(
                slot["name"],
                slot["kind"],
                slot["size"],
                slot["recordOffset"],
                slot["countOffset"],
                self[slot["record"]] if "record" in slot else None,
            )
            for slot in slots
        )
        names = tuple(field.name for field in fields)
        # The base has the slots and no checks: see _source.py.
        base = type(
            description["name"],
            (Record,),
            {
                "__slots__": (*names, "_image"),
                "__module__": __package__,
                "__match_args__": names,
                "name": description["name"],
                "identifier": int(description["identifier"], 16),
                "service": description["service"],
                "sent_fixed": description["sent"] == "fixed",
                "fields": fields,
                "record_size": description["recordSize"],
                "_handle": self._handles[description["name"]],
                # Whether a record keeps the image that its constructor wrote. One with a record within it
                # does not see that one change.
                "_keeps_image": description["sent"] == "fixed"
                and all(field.kind in ("scalar", "array") for field in fields),
                "_checks": {field.name: _check_of(field) for field in fields},
            },
        )
        cls = type(
            description["name"],
            (base,),
            {
                "__slots__": (),
                "__module__": __package__,
                "__doc__": f"{description['wireText']}, identifier {description['identifier']}",
                "__setattr__": _set_field,
                "__delattr__": _delete_field,
                "__init_subclass__": classmethod(_final),
                "_setters": {name: base.__dict__[name].__set__ for name in (*names, "_image")},
            },
        )
        _source.add_functions(cls)
        return cls


messages = Messages()
