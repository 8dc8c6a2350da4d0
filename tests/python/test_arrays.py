"""Arrays: many records are what each of them is alone."""
import pytest
from conftest import ALL, full

import mesh_l2vpn as m

numpy = pytest.importorskip("numpy")


def has_fixed_size(message):
    return all(
        field.kind in ("scalar", "array") or (field.kind == "table" and has_fixed_size(field.record))
        for field in message.fields
    )


def random_array(message, count, seed=7):
    array = m.array(message, count)
    bytes_ = numpy.random.default_rng(seed).bytes(count * message.record_size)
    array.records[:] = numpy.frombuffer(bytes_, array.records.dtype)
    return array


def test_which_messages_have_arrays(message):
    if has_fixed_size(message):
        assert m.array(message, 3)[1] == message()
    else:
        with pytest.raises(m.WrongUse, match="has no fixed size"):
            m.array(message, 3)


@pytest.mark.parametrize("message", filter(has_fixed_size, ALL), ids=lambda message: message.name)
def test_each_is_what_it_is_alone(message):
    array = random_array(message, 7)
    for form in ("pack", "sent"):
        packed = getattr(array, form)()
        assert [packed[i] for i in range(7)] == [getattr(record, form)() for record in array]
        assert packed.unpack() == array
        assert m.packed(message, packed.data, packed.ends).unpack() == array
    assert m.array(message, list(array)) == array
    if message.sent_fixed:
        assert m.packed(message, array.image().data.tobytes()).unpack() == array
    else:
        with pytest.raises(m.WrongUse):
            array.image()


def test_columns_and_rows():
    array = m.array(m.l2vpn_sync_vpls_ac_update, 4)
    array["f0"] = [1, 2, 3, 4]
    array["f1"]["f8"][2] = range(12)
    array[3] = {"f0": 9, "f1": {"f0": 1}}
    assert array[1].f0 == 2 and array[2].f1.f8 == bytes(range(12))
    assert array[3] == m.l2vpn_sync_vpls_ac_update(9, {"f0": 1}) == array[-1]
    assert [record.f0 for record in array[1:3]] == [2, 3]
    array[0:2] = array[2:4]
    assert [record.f0 for record in array] == [3, 9, 3, 9]
    assert len(array) == 4 and array != array[:3]
    assert m.array(m.l2vpn_sync_stp, []).sent().unpack() == m.array(m.l2vpn_sync_stp, 0)
    with pytest.raises(m.FieldError):
        array[0] = {"f0": -1}
    with pytest.raises(IndexError):
        array[4]


def test_slices_with_a_step_are_packed():
    array = random_array(m.l2vpn_sync_vll_pw, 9)
    assert array[::2].sent().unpack() == array[::2]
    assert array[::2].sent()[1] == array[2].sent()


def test_first_rejected_message_is_named():
    packed = m.array(m.l2vpn_sync_stp, [full(m.l2vpn_sync_stp)] * 5).pack()
    packed.data[int(packed.ends[2])] = 0xFF
    with pytest.raises(m.Rejected) as caught:
        packed.unpack()
    assert (caught.value.path, caught.value.position) == ("[3]", 0)


def test_ends_are_checked():
    data = m.array(m.l2vpn_sync_stp, 2).image().data
    with pytest.raises(m.WrongUse, match="a message ends at 81, the data at 80"):
        m.packed(m.l2vpn_sync_stp, data, [40, 81]).unpack()
    with pytest.raises(m.WrongUse, match="its end lies before its beginning"):
        m.packed(m.l2vpn_sync_stp, data, [40, 39]).unpack()
    with pytest.raises(m.BadInput, match="no whole number of images"):
        m.packed(m.l2vpn_sync_stp, data[:-1])
