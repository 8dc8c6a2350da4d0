"""Records: values go in and out without loss, and nothing else goes in."""
import copy
import json
import pickle

import pytest
from conftest import ALL, full, values
from hypothesis import given
from hypothesis import settings as limits
from hypothesis import strategies as st

import mesh_l2vpn as m


def test_any_values_come_back(message):
    @limits(max_examples=15)
    @given(values(message))
    def holds(made):
        record = message(**made)
        for name, value in made.items():
            assert getattr(record, name) == (
                type(getattr(record, name))(**value) if isinstance(value, dict) else value
            ) or isinstance(value, list)
        assert m.unpack(record.pack(), message) == record
        assert m.unpack(record.sent(), message) == record
        assert message.from_json(record.json()) == record
        assert pickle.loads(pickle.dumps(record)) == record
        assert copy.deepcopy(record) == record
        assert eval(repr(record), vars(m) | dict(m.messages)) == record

    holds()


def test_full_and_zero_records(message):
    zero, all_set = message(), full(message)
    assert zero != all_set
    assert repr(zero) == f"{message.name}()"
    for record in (zero, all_set):
        assert m.unpack(record.pack(), message) == record
        assert (record.sent() == record.pack()) != message.sent_fixed
        if message.sent_fixed:
            assert record.image() == record.sent()
            assert m.unpack(record.image(), message) == record
        else:
            with pytest.raises(m.WrongUse, match="has no fixed one"):
                record.image()


def test_fields_set_one_by_one(message):
    record, other = message(), full(message)
    before = record.sent()
    for field in message.fields:
        setattr(record, field.name, getattr(other, field.name))
        assert getattr(record, field.name) == getattr(other, field.name)
    assert record == other
    assert record.pack() == other.pack()
    assert record.sent() == other.sent() != before


def wrong_values(field):
    """Values that a field refuses, with the error's text."""
    if field.kind == "scalar":
        largest = (1 << 8 * field.size) - 1
        return [
            (largest + 1, f"{largest + 1} is not within 0 and {largest}"),
            (-1, f"-1 is not within 0 and {largest}"),
            (1.0, "an integer was expected, not float"),
            ("1", "an integer was expected, not str"),
            (None, "an integer was expected, not NoneType"),
        ]
    if field.kind == "array":
        return [
            (bytes(field.size + 1), f"{field.size} bytes were expected, not {field.size + 1}"),
            (b"", f"{field.size} bytes were expected, not 0"),
            ("a" * field.size, "bytes were expected, not str"),
            (field.size, "bytes were expected, not int"),
        ]
    if field.kind == "bytes":
        return [("a", "bytes were expected, not str"), (5, "bytes were expected, not int")]
    name = field.record.name
    if field.kind == "table":
        return [
            (7, f"a {name} or a mapping was expected, not int"),
            (None, f"a {name} or a mapping was expected, not NoneType"),
        ]
    return [
        (7, f"a list of {name} was expected, not int"),
        ({}, f"a list of {name} was expected, not dict"),
        ([7], f"a {name} or a mapping was expected, not int"),
    ]


def test_wrong_values_are_refused_with_their_path(message):
    record = full(message)
    before = copy.deepcopy(record)
    for field in message.fields:
        for value, text in wrong_values(field):
            path = field.name + ("[0]" if value == [7] else "")
            for attempt in (
                lambda: setattr(record, field.name, value),
                lambda: message(**{field.name: value}),
            ):
                with pytest.raises(m.FieldError) as caught:
                    attempt()
                assert str(caught.value) == f"{path}: {text}"
                assert (caught.value.path, caught.value.text) == (path, text)
    assert record == before


def test_path_leads_into_nested_records():
    with pytest.raises(m.FieldError, match=r"^f1\.f8: 12 bytes were expected, not 2$"):
        m.l2vpn_sync_vpls_ac_update(f0=7, f1={"f8": b"12"})
    with pytest.raises(m.FieldError, match=r"^f1\.f88: l2vpn_sync_vpls_ac has no such field$"):
        m.l2vpn_sync_vpls_ac_update(f1={"f88": 0})
    items = [{}, {"f0": b""}]
    with pytest.raises(m.FieldError, match=r"^f1\[1\]\.f0: 32 bytes were expected, not 0$"):
        m.l2vpn_cfg_query_dfx_rec(f1=items)


def test_list_of_records_checks_every_change():
    record = m.l2vpn_cfg_query_dfx_rec(f1=[{"f1": 1}])
    record.f1.append({"f1": 2})
    record.f1 += [m.l2vpn_cfg_query_dfx_item(f1=3)]
    record.f1[0] = {"f1": 9}
    assert [item.f1 for item in record.f1] == [9, 2, 3]
    assert record.f1[1:] == record.f1[1:3]
    assert m.unpack(record.pack(), type(record)) == record
    for change in (
        lambda: record.f1.append(7),
        lambda: record.f1.extend([{"f2": b""}]),
        lambda: record.f1.__setitem__(0, m.l2vpn_sync_stp()),
        lambda: record.f1.__setitem__(slice(0, 1), [7]),
    ):
        with pytest.raises(m.FieldError):
            change()
    del record.f1[1:]
    record.f1.insert(0, {})
    assert record.f1 == [m.l2vpn_cfg_query_dfx_item(), m.l2vpn_cfg_query_dfx_item(f1=9)]


def test_scalars_are_exact_to_the_last_bit():
    wide = [
        (message, field)
        for message in ALL
        for field in message.fields
        if field.kind == "scalar" and field.size == 8
    ]
    assert wide
    for message, field in wide:
        for value in (2**64 - 1, 2**63 + 1, 2**53 + 1):
            record = message(**{field.name: value})
            for again in (
                m.unpack(record.pack(), message),
                m.unpack(record.sent(), message),
                message.from_json(record.json()),
            ):
                assert getattr(again, field.name) == value


@given(st.integers())
def test_any_integer_is_stored_or_refused(value):
    record = m.l2vpn_sync_stp()
    if 0 <= value < 2**32:
        record.f0 = value
        assert record.f0 == m.l2vpn_sync_stp(value).f0 == value
    else:
        with pytest.raises(m.FieldError):
            record.f0 = value
        with pytest.raises(m.FieldError):
            m.l2vpn_sync_stp(value)


def test_bytes_are_copied():
    content = bytearray(12)
    record = m.l2vpn_sync_vpls_ac(f8=content)
    content[0] = 1
    assert type(record.f8) is bytes and record.f8 == bytes(12)
    record.f8 = memoryview(content)
    assert type(record.f8) is bytes and record.f8[0] == 1


def test_names_are_fixed():
    record = m.l2vpn_sync_stp()
    with pytest.raises(AttributeError, match="l2vpn_sync_stp has no field f99"):
        record.f99 = 1
    with pytest.raises(AttributeError):
        record.name = "another"
    with pytest.raises(AttributeError):
        del record.f0
    with pytest.raises(TypeError, match="f99"):
        m.l2vpn_sync_stp(f99=1)
    with pytest.raises(TypeError):
        hash(record)
    with pytest.raises(TypeError, match="cannot be derived from"):
        type("Derived", (m.l2vpn_sync_stp,), {})


def test_records_compare_by_type_and_value():
    assert m.l2vpn_sync_stp(f0=1) == m.l2vpn_sync_stp(1)
    assert m.l2vpn_sync_stp(f0=1) != m.l2vpn_sync_stp(f0=2)
    assert m.l2vpn_sync_vpls_ac_update() != m.l2vpn_sync_vpls_ac_delete()
    assert m.l2vpn_sync_stp() != 0


def test_copies_are_shallow_or_deep_as_asked():
    update = m.l2vpn_sync_vpls_ac_update(f1={"f0": 1})
    shallow, deep = copy.copy(update), copy.deepcopy(update)
    update.f1.f0 = 2
    assert shallow.f1 is update.f1
    assert deep.f1.f0 == 1


def test_names_can_be_completed():
    assert {"f0", "f1", "pack", "json"} <= set(dir(m.l2vpn_sync_vpls_ac_update()))
    assert {message.name for message in ALL} <= set(dir(m))
    match m.l2vpn_sync_stp(1, 2, 3, 4):
        case m.l2vpn_sync_stp(first, f3=last):
            assert (first, last) == (1, 4)


def test_messages_are_found_by_name_and_identifier():
    assert len(m.messages) == 85
    assert list(m.messages) == sorted(m.messages)
    for name, message in m.messages.items():
        assert m.messages[message.identifier] is message is getattr(m, name)
        assert message.identifier in m.messages and name in m.messages
    for missing in ("l2vpn_sync", 1, "", -1, 2**32 + m.l2vpn_sync_stp.identifier):
        assert missing not in m.messages
        with pytest.raises(m.UnknownMessage):
            m.messages[missing]
    with pytest.raises(AttributeError):
        m.l2vpn_sync  # noqa: B018


def test_json_is_that_of_the_library():
    assert m.l2vpn_sync_stp.from_json('{"f0": "0xFF"}') == m.l2vpn_sync_stp(f0=255)
    assert json.loads(m.l2vpn_sync_vpls_ac(f8=b"0123456789ab").json())["f8"] == b"0123456789ab".hex()
    for text, error in (
        ("{", ""),
        ('{"f0": -1}', "^f0: expected a whole number"),
        ('{"f9": 1}', "f9"),
        ("", ""),
    ):
        with pytest.raises(m.BadInput, match=error):
            m.l2vpn_sync_stp.from_json(text)


def test_errors_are_one_family():
    errors = [error for error in vars(m).values() if isinstance(error, type) and error.__name__[0].isupper()]
    family = {error.__name__ for error in errors if issubclass(error, m.Error)}
    assert {"FieldError", "Rejected", "BadInput", "WrongUse", "OutOfMemory", "UnknownMessage"} <= family
    for error in (m.FieldError("f1", "wrong"), m.Rejected("l2vpn_sync_stp", 4, "f0", "wrong")):
        again = pickle.loads(pickle.dumps(error))
        assert (str(again), again.args) == (str(error), error.args)
