"""Messages that a release wrote: the same values, the same bytes, the same verdicts."""
import json

import pytest
from conftest import ALL, from_json_value, reference

import mesh_l2vpn as m


def test_every_message_in_both_arrangements():
    seen = set()
    for line, table in reference("messages"):
        message = m.messages[line["message"]]
        record = message(**from_json_value(message, line["record"]))
        assert m.unpack(table, message) == record
        assert message.from_json(json.dumps(line["record"])) == record
        assert json.loads(record.json()) == line["record"]
        assert m.messages[int(line["identifier"], 16)] is message
        assert m.verify(table, message) == m.Verdict(accepted=True)
        assert message in [candidate.message for candidate in m.identify(table)]
        for form in ("pack", "sent"):
            if getattr(record, form)() == table:
                seen.add((message, form))
    assert seen == {(message, form) for message in ALL for form in ("pack", "sent")}


def test_damaged_messages_have_the_same_verdict():
    kinds = set()
    for line, table in reference("damaged"):
        message = m.messages[line["message"]]
        verdict = m.verify(table, message)
        kinds.add((verdict.accepted, verdict.tolerated))
        assert verdict.accepted == bool(verdict) == ("record" in line)
        assert (verdict == m.Verdict(accepted=True)) == ("faults" not in line)
        if verdict:
            record = message(**from_json_value(message, line["record"]))
            assert m.unpack(table, message) == record
            continue
        place = f"byte {verdict.position}" + (f", {verdict.path}" if verdict.path else "")
        assert place == line["faults"][0]
        with pytest.raises(m.Rejected) as caught:
            m.unpack(table, message)
        assert caught.value.args == (message.name, verdict.position, verdict.path, verdict.text)
        assert str(caught.value) == f"{message.name} rejects {place}: {verdict.text}"
    assert kinds == {(True, False), (True, True), (False, False)}


def test_any_buffer_is_input():
    data = m.l2vpn_sync_stp(f0=1).image()
    for kind in (bytearray, memoryview):
        assert m.unpack(kind(data), m.l2vpn_sync_stp).f0 == 1
        assert m.verify(kind(data), m.l2vpn_sync_stp)
        assert m.explain(kind(data)) == m.explain(data)
    assert m.unpack(memoryview(bytes(1) + data)[1:], m.l2vpn_sync_stp).f0 == 1
