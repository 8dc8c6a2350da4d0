"""Verdicts, guesses and explanations."""
import html

import pytest

import mesh_l2vpn as m

UPDATE = m.l2vpn_sync_vpls_ac_update(f0=7, f1={"f0": 42})


def test_verdict_says_where_and_why():
    data = m.l2vpn_sync_vpls_ac().pack()
    damaged = data[:40] + b"\x0d" + data[41:]
    verdict = m.verify(damaged, m.l2vpn_sync_vpls_ac)
    assert verdict == m.Verdict(False, False, 40, "f8", "13 bytes instead of 12")
    assert not verdict
    assert m.verify(data, m.l2vpn_sync_vpls_ac)


def test_tolerated_fault_is_accepted():
    verdict = m.verify(UPDATE.pack()[:-1], type(UPDATE))
    assert verdict.accepted and verdict.tolerated and verdict.path == "f1.f9"
    assert m.unpack(UPDATE.pack()[:-1], type(UPDATE)).f0 == 7


@pytest.mark.parametrize("data", [b"", b"abc", b"\xff" * 64, bytes(64)])
def test_bytes_that_are_no_message(data):
    assert not m.verify(data, m.l2vpn_sync_stp)
    with pytest.raises(m.Rejected):
        m.unpack(data, m.l2vpn_sync_stp)


def test_identify_names_the_candidates():
    for data in (UPDATE.pack(), UPDATE.image()):
        assert m.identify(data)[0] == m.Candidate(m.l2vpn_sync_vpls_ac_update, "exact")
    with pytest.raises(m.BadInput):
        m.identify(b"none of it")


def test_explanation_is_text_and_a_page():
    explanation = m.explain(UPDATE.pack())
    assert explanation == m.explain(UPDATE.pack(), type(UPDATE))
    assert "f1.f0" in explanation and "no fault, receivers accept it" in explanation
    assert "<html" in explanation.html()
    shown = explanation._repr_html_()
    assert shown.startswith("<iframe srcdoc=")
    assert html.escape(explanation.html()) in shown


def test_rejected_message_is_explained_too():
    data = UPDATE.image()
    assert "fault" in m.explain(b"\xff" + data[1:], type(UPDATE))
    with pytest.raises(m.BadInput):
        m.explain(b"")


def test_call_that_needs_too_much_memory():
    items = m.l2vpn_cfg_query_dfx_rec(f1=[{}] * 100).pack()
    assert len(m.unpack(items, m.l2vpn_cfg_query_dfx_rec).f1) == 100
    m.set_limit(1_000_000)
    try:
        with pytest.raises(m.OutOfMemory, match="the limit is 1000000"):
            m.unpack(items, m.l2vpn_cfg_query_dfx_rec)
    finally:
        m.set_limit(0)
    with pytest.raises(m.OutOfMemory, match="the limit is 67108864"):
        m.l2vpn_cfg_query_dfx_rec(f1=[{}] * 5000).pack()
