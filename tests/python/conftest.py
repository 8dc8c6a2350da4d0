"""What the tests share: reference messages, and random values for any message."""
import json
import os
import sys

import pytest
from hypothesis import HealthCheck, settings
from hypothesis import strategies as st

import mesh_l2vpn as m

RELEASES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "releases")
sys.path.insert(0, RELEASES)
import release  # noqa: E402

# The machine's speed is no fault; the examples are the same in every run.
settings.register_profile(
    "repository",
    deadline=None,
    derandomize=True,
    suppress_health_check=[HealthCheck.too_slow, HealthCheck.data_too_large],
)
settings.load_profile("repository")

ALL = list(m.messages.values())


def reference(name):
    """The tables of release 1.0, each with what that release made of it."""
    with open(os.path.join(RELEASES, "1.0", name + ".json"), encoding="utf-8") as lines:
        decoded = [json.loads(line) for line in lines]
    tables = release.tables(os.path.join(RELEASES, "1.0", name + ".pcapng"))
    assert len(decoded) == len(tables)
    return list(zip(decoded, tables))


def from_json_value(message, value):
    """What the constructor takes, from the record's JSON as a Python value."""
    made = {}
    for field in message.fields:
        found = value[field.name]
        if field.kind in ("array", "bytes"):
            found = bytes.fromhex(found)
        elif field.kind == "table":
            found = from_json_value(field.record, found)
        elif field.kind == "vector":
            found = [from_json_value(field.record, item) for item in found]
        made[field.name] = found
    return made


def values(message):
    """Random values for the constructor: edges of numbers, absent fields."""

    def of(field):
        if field.kind == "scalar":
            largest = (1 << 8 * field.size) - 1
            return st.one_of(st.just(0), st.just(largest), st.integers(0, largest))
        if field.kind == "array":
            # Large ones repeat a few bytes: hypothesis spends its time elsewhere.
            few = st.binary(min_size=1, max_size=8)
            return few.map(lambda part: (part * field.size)[: field.size])
        if field.kind == "bytes":
            return st.binary(max_size=40)
        if field.kind == "table":
            return values(field.record)
        return st.lists(values(field.record), max_size=3)

    return st.fixed_dictionaries({}, optional={field.name: of(field) for field in message.fields})



def full(message, number=0x41):
    """A record of which no byte is zero."""
    made = {}
    for field in message.fields:
        number = number % 250 + 1
        if field.kind == "scalar":
            made[field.name] = int.from_bytes(bytes([number]) * field.size, "little")
        elif field.kind == "array":
            made[field.name] = bytes([number]) * field.size
        elif field.kind == "bytes":
            made[field.name] = bytes([number]) * 3
        elif field.kind == "table":
            made[field.name] = full(field.record, number)
        else:
            made[field.name] = [full(field.record, number), full(field.record, number + 1)]
    return message(**made)


@pytest.fixture(params=ALL, ids=lambda message: message.name)
def message(request):
    return request.param


@pytest.fixture
def page_programs():
    """The programs of README.md and docs/python.md."""
    programs = []
    for page in ("README.md", "docs/python.md"):
        with open(os.path.join(RELEASES, "..", "..", page), encoding="utf-8") as text:
            found = [block.split("```")[0] for block in text.read().split("```python\n")[1:]]
        assert found, page
        programs += found
    return programs
