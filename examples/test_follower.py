"""Tests follower.c by playing its peer, the owner of the table.

FOLLOWER=build/follower pytest examples/test_follower.py
"""
import os
import subprocess
from typing import Iterator, List

import pytest

import mesh_l2vpn as m

pytest_plugins = ["mesh_l2vpn.pytest_plugin"]

OWNER, FOLLOWER = 1, 2

OLD = [m.l2vpn_sync_vpls_ac(f0=circuit, f1=1) for circuit in range(3)]
NEW = [m.l2vpn_sync_vpls_ac(f0=circuit, f1=2) for circuit in range(3)]


@pytest.fixture
def owner(mesh_nodes: m.MeshNodes) -> m.Node:
    """The node that the test plays."""
    return mesh_nodes(OWNER)


@pytest.fixture
def follower(mesh_nodes: m.MeshNodes, owner: m.Node) -> Iterator[None]:
    """The process under test. Its node is in the directory of the test's nodes."""
    process = subprocess.Popen([os.environ["FOLLOWER"]], env=mesh_nodes.environment)
    yield
    process.terminate()
    assert process.wait(timeout=10) == 0


def question(owner: m.Node) -> int:
    """Waits for the follower's question and returns its number."""
    received = owner.receive_one(timeout=5)
    assert received.message is m.l2vpn_cfg_query_dfx_key
    return received.extra


def copy_of(owner: m.Node) -> List[m.Record]:
    """Asks the follower for its copy."""
    owner.send(FOLLOWER, m.l2vpn_cfg_query_dfx_key(), extra=1000)
    answer = owner.receive_one(timeout=5)
    assert answer.extra == 1000
    records = [answer.record] + [received.record for received in owner.receive(timeout=0.1)]
    return [record for record in records if record is not None]


@pytest.mark.usefixtures("follower")
def test_follows(owner: m.Node) -> None:
    owner.send(FOLLOWER, OLD, extra=question(owner))
    assert copy_of(owner) == OLD
    owner.send(FOLLOWER, NEW[1])
    assert copy_of(owner) == [OLD[0], NEW[1], OLD[2]]


@pytest.mark.usefixtures("follower")
def test_asks_again_when_the_answer_is_lost(owner: m.Node) -> None:
    first = question(owner)  # and no answer
    second = question(owner)
    assert second > first
    owner.send(FOLLOWER, OLD, extra=second)
    assert copy_of(owner) == OLD


@pytest.mark.usefixtures("follower")
def test_ignores_a_late_answer(owner: m.Node) -> None:
    first = question(owner)
    second = question(owner)
    owner.send(FOLLOWER, NEW, extra=second)
    owner.send(FOLLOWER, OLD, extra=first)
    assert copy_of(owner) == NEW


@pytest.mark.usefixtures("follower")
def test_asks_again_after_a_damaged_message(owner: m.Node) -> None:
    damaged = m.Table(OLD[1].identifier, OLD[1].sent()[:-20])
    assert damaged.fault is not None
    first = question(owner)
    owner.send(FOLLOWER, [OLD[0], damaged, OLD[2]], extra=first)
    second = question(owner)
    assert second > first
    owner.send(FOLLOWER, NEW, extra=second)
    assert copy_of(owner) == NEW
