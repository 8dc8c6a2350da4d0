"""What a process sees: memory, threads, a library that is missing."""
import os
import subprocess
import sys
import threading

import pytest
from conftest import ALL, full

import mesh_l2vpn as m

# MESH_L2VPN_ROUNDS=1000000 for the long run.
ROUNDS = int(os.environ.get("MESH_L2VPN_ROUNDS", "20000"))


def resident():
    with open("/proc/self/statm", encoding="ascii") as words:
        return int(words.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def one_round(number):
    """Everything that takes memory of the library's, for one message."""
    message = ALL[number % len(ALL)]
    record = full(message)
    assert m.unpack(record.pack(), message) == record
    assert m.unpack(record.sent(), message) == record
    for attempt in (
        lambda: m.unpack(record.pack()[:7], message),
        lambda: setattr(record, "f0", "wrong"),
    ):
        with pytest.raises(m.Error):
            attempt()
    if number % 10 == 0:
        assert message.from_json(record.json()) == record
        assert m.explain(record.sent(), message)
        assert m.identify(record.sent())


def test_memory_stays_constant():
    for number in range(2000):
        one_round(number)
    before = resident()
    for number in range(ROUNDS):
        one_round(number)
    # A block of 16 bytes that leaks in each round would show.
    assert resident() - before < max(2 << 20, ROUNDS * 16)


def test_threads_do_not_disturb_each_other():
    failures = []

    def work(seed):
        try:
            for number in range(200):
                one_round(seed + number)
        except BaseException as error:  # noqa: B902
            failures.append(error)

    threads = [threading.Thread(target=work, args=(seed,)) for seed in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failures == []


def test_first_use_by_many_threads_makes_one_class():
    script = """
import threading, mesh_l2vpn as m
start, found = threading.Barrier(8), []
def work():
    start.wait()
    found.append((m.l2vpn_sync_vpls_ac_update, m.l2vpn_sync_vpls_ac_update().f1.__class__))
threads = [threading.Thread(target=work) for _ in range(8)]
[thread.start() for thread in threads]
[thread.join() for thread in threads]
assert len(found) == 8 and set(found) == {(m.l2vpn_sync_vpls_ac_update, m.l2vpn_sync_vpls_ac)}, found
"""
    for _ in range(5):
        subprocess.run([sys.executable, "-c", script], check=True)


def test_missing_library_says_what_to_install():
    script = "import mesh_l2vpn"
    result = subprocess.run(
        [sys.executable, "-c", script],
        env={**os.environ, "MESH_L2VPN_INSPECT": "/nowhere/library.so"},
        stderr=subprocess.PIPE,
        text=True,
        check=False,
    )
    assert result.returncode == 1
    assert "LibraryMissing: /nowhere/library.so could not be loaded" in result.stderr
    assert "libmesh-l2vpn-inspect1" in result.stderr


def test_import_makes_no_class():
    script = "import mesh_l2vpn as m, sys; assert not m.messages._classes; assert 'numpy' not in sys.modules"
    subprocess.run([sys.executable, "-c", script], check=True)
