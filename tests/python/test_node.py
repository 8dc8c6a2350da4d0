"""Nodes of this process and of others, their results and their ends."""
import asyncio
import gc
import os
import signal
import subprocess
import sys
import threading
import time
import warnings

import pytest

import mesh_l2vpn as m

pytest_plugins = ["mesh_l2vpn.pytest_plugin"]

update = m.l2vpn_sync_vpls_ac_update(f0=7, f1={"f0": 42})
stp = m.l2vpn_sync_stp(f0=1)

ECHO = """
import sys
import mesh_l2vpn as m
with m.Node(2) as node:
    print("listening", flush=True)
    for received in node.receive(timeout=20):
        node.send(received.source, received.record, extra=received.extra + 1)
        if received.extra == 50:
            break
"""


@pytest.fixture
def child(mesh_nodes):
    """Starts Python programs whose nodes are in the same directory, and waits for their first line."""
    started = []

    def start(program):
        process = subprocess.Popen(
            [sys.executable, "-c", program],
            env=mesh_nodes.environment,
            stdout=subprocess.PIPE,
            text=True,
        )
        started.append(process)
        assert process.stdout.readline() == "listening\n"
        return process

    yield start
    for process in started:
        process.kill()
        process.wait()
        process.stdout.close()


def descriptors():
    return len(os.listdir("/proc/self/fd"))


def resident():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGESIZE")


def take(node, count):
    """The next messages, all of which must come."""
    return [node.receive_one(timeout=20) for _ in range(count)]


class TestMessages:
    def test_arrive_in_order_with_their_addresses(self, mesh_nodes):
        one, two = mesh_nodes(1), mesh_nodes(2)
        before = time.time_ns()
        one.send(2, [update, stp, update], extra=2**64 - 1)
        arrived = take(two, 3)
        assert [received.record for received in arrived] == [update, stp, update]
        assert [received.message for received in arrived] == [
            m.l2vpn_sync_vpls_ac_update,
            m.l2vpn_sync_stp,
            m.l2vpn_sync_vpls_ac_update,
        ]
        for received in arrived:
            assert (received.source, received.destination) == (1, 2)
            assert received.extra == 2**64 - 1
            assert received.sequence == 1
            assert not received.after_gap
            assert received.fault is None
            assert before <= received.time <= time.time_ns()
        assert len({received.incarnation for received in arrived}) == 1
        assert one.statistics().sent_calls == 1
        assert one.statistics().sent_records == 3

    def test_of_all_types_arrive_equal(self, mesh_nodes):
        node = mesh_nodes(1)
        values = [message() for message in m.messages.values()]
        node.send(1, values)
        assert [received.record for received in take(node, len(values))] == values

    def test_of_one_call_share_a_sequence_number(self, mesh_nodes):
        node = mesh_nodes(1)
        node.send(1, [update] * 2)
        node.send(1, update)
        assert [received.sequence for received in take(node, 3)] == [1, 1, 2]

    def test_of_any_iterable_are_sent(self, mesh_nodes):
        node = mesh_nodes(1)
        node.send(1, (m.l2vpn_sync_stp(f0=number) for number in range(3)))
        assert [received.record.f0 for received in take(node, 3)] == [0, 1, 2]
        node.send(1, [])
        node.send(1, stp)
        assert node.receive_one(timeout=20).sequence == 3

    def test_not_yet_read_come_with_the_next_iterator(self, mesh_nodes):
        node = mesh_nodes(1)
        node.send(1, [m.l2vpn_sync_stp(f0=number) for number in range(4)])
        for received in node.receive():
            if received.record.f0 == 1:
                break
        assert [received.record.f0 for received in node.receive(0.05)] == [2, 3]

    def test_that_are_damaged_are_shown(self, mesh_nodes):
        one, two = mesh_nodes(1), mesh_nodes(2)
        damaged = update.sent()[:60]
        one.send_raw(2, update.identifier, damaged, extra=5)
        received = two.receive_one(timeout=20)
        assert received.message is m.l2vpn_sync_vpls_ac_update
        assert received.table == damaged
        assert received.record is None
        assert received.fault.startswith("l2vpn_sync_vpls_ac_update rejects byte ")
        assert received.extra == 5

    def test_with_a_tolerated_fault_have_a_record_and_a_fault(self, mesh_nodes):
        node = mesh_nodes(1)
        damaged = bytearray(update.sent())
        faults = 0
        for at in range(len(damaged)):
            damaged[at] ^= 0xFF
            if m.verify(damaged, type(update)).tolerated:
                node.send_raw(1, update.identifier, damaged)
                received = node.receive_one(timeout=20)
                assert received.record is not None
                assert received.fault
                faults += 1
            damaged[at] ^= 0xFF
        assert faults > 0

    def test_of_unknown_identifiers_are_shown(self, mesh_nodes):
        node = mesh_nodes(1)
        node.send_raw(1, 0x1234, b"abc", extra=6)
        received = node.receive_one(timeout=20)
        assert (received.identifier, received.table, received.extra) == (0x1234, b"abc", 6)
        assert received.message is None
        assert received.record is None
        assert received.fault == "no message has the identifier 0x00001234"
        assert "0x00001234, 3 bytes, 1 to 1" in repr(received)

    def test_go_with_damaged_ones_in_one_call(self, mesh_nodes):
        node = mesh_nodes(1)
        damaged = m.Table(update.identifier, update.sent()[:60])
        node.send(1, [stp, damaged, stp])
        arrived = take(node, 3)
        assert [received.record for received in arrived] == [stp, None, stp]
        assert [received.sequence for received in arrived] == [1, 1, 1]
        node.send(1, arrived[1])
        assert node.receive_one(timeout=20).table == damaged.table

    def test_of_an_array_arrive_as_its_records(self, mesh_nodes):
        pytest.importorskip("numpy")
        node = mesh_nodes(1)
        array = m.array(m.l2vpn_sync_vpls_ac, 100)
        array["f0"] = range(100)
        node.send(1, array, extra=3)
        arrived = take(node, 100)
        assert [received.record for received in arrived] == list(array)
        assert {(received.extra, received.sequence) for received in arrived} == {(3, 1)}
        node.send(1, array.pack())
        assert [received.record for received in take(node, 100)] == list(array)
        for ends in ([10, 5], [2**40], [len(array.pack().data) + 1], [2**64 - 1, 8]):
            with pytest.raises(m.BadArgument):
                node.send(1, m.packed(m.l2vpn_sync_vpls_ac, bytes(array.pack().data), ends))
        node.send(1, array[:0])
        node.send(1, stp)
        assert node.receive_one(timeout=20).sequence == 4

    def test_that_are_empty_arrive(self, mesh_nodes):
        node = mesh_nodes(1)
        node.send_raw(1, update.identifier, b"")
        assert node.receive_one(timeout=20).table == b""

    def test_in_one_process_use_the_inproc_transport(self, mesh_nodes):
        one, two = mesh_nodes(1, transport="inproc"), mesh_nodes(2, transport="inproc")
        one.send(2, update)
        assert two.receive_one(timeout=20).record == update

    def test_follow_the_address_book(self, mesh_nodes):
        path = os.path.join(mesh_nodes.directory, "elsewhere")
        for book in ({7: f"ipc://{path}"}, f"7  ipc://{path}"):
            node = mesh_nodes(7, address_book=book)
            assert os.path.exists(path)
            node.send(7, update)
            assert node.receive_one(timeout=20).record == update
            node.close()


class TestReceiving:
    def test_ends_when_nothing_arrives(self, mesh_nodes):
        node = mesh_nodes(1)
        begin = time.monotonic()
        assert list(node.receive(timeout=0.2)) == []
        assert 0.2 <= time.monotonic() - begin < 2
        with pytest.raises(m.NothingArrived) as caught:
            node.receive_one(timeout=0)
        assert isinstance(caught.value, TimeoutError)

    def test_lets_other_threads_run(self, mesh_nodes):
        node = mesh_nodes(1)
        arrived = []
        thread = threading.Thread(target=lambda: arrived.append(node.receive_one(timeout=20)))
        thread.start()
        time.sleep(0.1)
        node.send(1, update)
        thread.join(timeout=10)
        assert [received.record for received in arrived] == [update]

    def test_is_for_one_thread_at_a_time(self, mesh_nodes):
        node = mesh_nodes(1)
        arrived = []
        thread = threading.Thread(target=lambda: arrived.append(node.receive_one(timeout=20)))
        thread.start()
        while not node._receiving.locked():
            time.sleep(0.01)
        with pytest.raises(m.Busy):
            node.receive_one()
        with pytest.raises(m.Busy):
            node.close()
        node.send(1, update)
        thread.join()
        assert [received.record for received in arrived] == [update]

    def test_from_many_threads_loses_nothing(self, mesh_nodes):
        one, two = mesh_nodes(1), mesh_nodes(2)

        def send(first):
            for number in range(first, first + 250):
                one.send(2, m.l2vpn_sync_stp(f0=number))

        threads = [threading.Thread(target=send, args=(250 * number,)) for number in range(4)]
        for thread in threads:
            thread.start()
        seen = [received.record.f0 for received in take(two, 1000)]
        for thread in threads:
            thread.join()
        assert sorted(seen) == list(range(1000))

    def test_is_left_by_an_exception_of_a_signal_handler(self, mesh_nodes):
        class Interrupted(Exception):
            pass

        def interrupt(*_):
            raise Interrupted

        node = mesh_nodes(1)
        before = signal.signal(signal.SIGALRM, interrupt)
        try:
            signal.setitimer(signal.ITIMER_REAL, 0.2)
            with pytest.raises(Interrupted):
                list(node.receive(timeout=None))
        finally:
            signal.signal(signal.SIGALRM, before)
        node.send(1, update)
        assert node.receive_one(timeout=20).record == update

    def test_loses_nothing_when_signal_handlers_raise(self, mesh_nodes):
        class Interrupted(Exception):
            pass

        def interrupt(*_):
            if taking:
                raise Interrupted

        def send():
            for first in range(0, count, 50):
                one.send(2, [m.l2vpn_sync_stp(f0=first + number) for number in range(50)])

        one, two = mesh_nodes(1), mesh_nodes(2)
        count, interruptions, seen = 20000, 0, set()
        taking = False
        before = signal.signal(signal.SIGALRM, interrupt)
        thread = threading.Thread(target=send)
        thread.start()
        signal.setitimer(signal.ITIMER_REAL, 0.002, 0.002)
        try:
            while len(seen) < count:
                try:
                    taking = True
                    assert two._take(20000)
                    taking = False
                except Interrupted:
                    taking = False
                    interruptions += 1
                # Taking one from the iterator may be interrupted as well, and is the caller's matter.
                seen.update(received.record.f0 for received in two._arrived)
                two._arrived.clear()
        finally:
            signal.setitimer(signal.ITIMER_REAL, 0)
            signal.signal(signal.SIGALRM, before)
            thread.join()
        assert interruptions > 0
        assert two.statistics().lost_calls == 0

    def test_goes_on_after_a_signal(self, mesh_nodes):
        node = mesh_nodes(1)
        before = signal.signal(signal.SIGALRM, lambda *_: node.send(1, update))
        try:
            signal.setitimer(signal.ITIMER_REAL, 0.2)
            assert node.receive_one(timeout=10).record == update
        finally:
            signal.signal(signal.SIGALRM, before)


class TestAsyncReceiving:
    def test_waits_without_blocking_the_loop(self, mesh_nodes):
        one, two = mesh_nodes(1), mesh_nodes(2)

        async def talk():
            loop = asyncio.get_running_loop()
            for number in range(5):
                values = [m.l2vpn_sync_stp(f0=number)] * 3
                loop.call_later(0.05 * number, one.send, 2, values)
            seen = []
            async for received in two:
                seen.append(received.record.f0)
                if len(seen) == 15:
                    return seen

        seen = asyncio.run(asyncio.wait_for(talk(), 20))
        assert seen == sorted(list(range(5)) * 3)

    def test_serves_several_nodes_at_once(self, mesh_nodes):
        nodes = [mesh_nodes(address) for address in range(1, 5)]

        async def pass_on(node, following):
            async for received in node:
                if received.extra > 1:
                    node.send(following, update, extra=received.extra - 1)
                if received.extra <= len(nodes):
                    return

        async def ring():
            following = [2, 3, 4, 1]
            tasks = [asyncio.ensure_future(pass_on(*pair)) for pair in zip(nodes, following)]
            nodes[0].send(1, update, extra=40)
            await asyncio.gather(*tasks)

        asyncio.run(asyncio.wait_for(ring(), 20))
        assert sum(node.statistics().received_calls for node in nodes) == 40

    def test_lets_other_tasks_run_while_messages_arrive(self, mesh_nodes):
        node = mesh_nodes(1)

        async def count():
            turns = 0
            while True:
                turns += 1
                await asyncio.sleep(0)
                if turns == 50:
                    return

        async def talk():
            async def echo():
                async for received in node:
                    node.send(1, received.record)

            node.send(1, update)
            receiving = asyncio.ensure_future(echo())
            await count()
            receiving.cancel()
            with pytest.raises(asyncio.CancelledError):
                await receiving

        asyncio.run(asyncio.wait_for(talk(), 20))

    def test_ends_when_the_node_is_closed(self, mesh_nodes):
        node = mesh_nodes(1)

        async def talk():
            asyncio.get_running_loop().call_later(0.1, node.close)
            async for _ in node:
                pass

        with pytest.raises(m.NotOpen):
            asyncio.run(asyncio.wait_for(talk(), 20))

    def test_keeps_no_descriptor(self, mesh_nodes):
        node = mesh_nodes(1)

        async def one():
            async for received in node:
                return received

        async def talk():
            for number in range(20):
                waiting = asyncio.ensure_future(one())
                await asyncio.sleep(0.01)
                node.send(1, m.l2vpn_sync_stp(f0=number))
                assert (await waiting).record.f0 == number
            waiting = asyncio.ensure_future(one())
            await asyncio.sleep(0.01)
            waiting.cancel()

        asyncio.run(talk())  # opens what the node keeps
        gc.collect()
        before = descriptors()
        asyncio.run(talk())
        gc.collect()
        assert descriptors() == before


class TestOtherProcess:
    def test_answers(self, mesh_nodes, child):
        peer = child(ECHO)
        node = mesh_nodes(1)
        for number in range(51):
            value = m.l2vpn_sync_stp(f0=number)
            node.send(2, value, extra=number)
            answer = node.receive_one(timeout=10)
            assert (answer.record, answer.extra) == (value, number + 1)
        assert peer.wait(timeout=10) == 0

    def test_that_is_killed_is_no_destination(self, mesh_nodes, child):
        mesh_nodes.allow("undelivered_calls")
        changes = []
        node = mesh_nodes(1, connect_timeout=0.3, on_peer=changes.append)
        peer = child(ECHO)
        node.send(2, update)
        node.receive_one(timeout=10)
        peer.kill()
        peer.wait()
        end = time.monotonic() + 20
        with pytest.raises(m.NoDestination):
            while time.monotonic() < end:
                node.send(2, update)
        end = time.monotonic() + 5
        while time.monotonic() < end and not any(one.change == "down" for one in changes):
            time.sleep(0.02)
        assert {(one.change, one.address) for one in changes} >= {("up", 2), ("down", 2)}
        assert [peer.connected for peer in node.peers() if peer.address == 2] == [False]

    def test_that_was_restarted_misses_what_its_predecessor_had_not_read(self, mesh_nodes):
        mesh_nodes.allow("undelivered_calls", "missed_before_first", "lost_calls", "discarded_calls")
        owner, follower = mesh_nodes(1), mesh_nodes(2)
        for _ in range(3):
            owner.send(2, update)
        follower.close()
        follower = mesh_nodes(2)
        arrived = []
        while not arrived:
            # What is sent before the owner knows of the restart may be lost too.
            owner.send(2, stp)
            arrived = list(follower.receive(timeout=0.2))
        assert arrived[0].record == stp
        assert arrived[0].after_gap
        assert owner.statistics().undelivered_calls >= 3


class TestFailure:
    def test_of_a_destination_that_is_not_there(self, mesh_nodes):
        node = mesh_nodes(1, connect_timeout=0.1)
        with pytest.raises(m.NoDestination, match="node 1 to node 9: "):
            node.send(9, update)
        assert node.statistics().failed_no_destination == 1

    def test_of_a_full_queue(self, mesh_nodes):
        one, two = mesh_nodes(1, send_queue_calls=4), mesh_nodes(2)
        with pytest.raises(m.QueueFull):
            for _ in range(5):
                one.send(2, update, timeout=0.05)
        take(two, 4)
        one.send(2, update)
        assert two.receive_one(timeout=20).record == update

    def test_of_a_closed_node(self, mesh_nodes):
        node = mesh_nodes(1)
        node.close()
        node.close()
        assert node.closed
        assert repr(node) == "<Node 1, closed>"
        for use in (
            lambda: node.send(1, update),
            lambda: node.send_raw(1, 1, b""),
            lambda: node.receive_one(),
            lambda: node.peers(),
        ):
            with pytest.raises(m.NotOpen):
                use()
        assert node.statistics().sent_calls == 0

    def test_of_an_address_in_use(self, mesh_nodes):
        mesh_nodes(1)
        with pytest.raises(m.AddressInUse):
            mesh_nodes(1)

    def test_of_a_call_above_the_limit(self, mesh_nodes):
        node = mesh_nodes(1, payload_limit=100)
        with pytest.raises(m.Refused):
            node.send(1, update)

    def test_of_the_configuration(self, mesh_nodes):
        with pytest.raises(m.BadConfiguration, match="line 1"):
            mesh_nodes(1, address_book="nonsense")

    def test_of_calls_that_did_not_arrive(self, mesh_nodes):
        mesh_nodes.allow("undelivered_calls")
        one, two = mesh_nodes(1), mesh_nodes(2)
        one.send(2, update)
        two.close()
        with pytest.raises(m.Undelivered):
            one.close()
        assert one.closed
        assert one.statistics().undelivered_calls == 1

    def test_keeps_the_error_of_the_body(self, mesh_nodes):
        mesh_nodes.allow("undelivered_calls")
        two = mesh_nodes(2)
        with pytest.raises(KeyError):
            with mesh_nodes(1) as one:
                one.send(2, update)
                two.close()
                raise KeyError
        assert one.closed
        assert one.statistics().undelivered_calls == 1

    @pytest.mark.parametrize(
        "options, text",
        [
            ({"address": -1}, "address: a number from 0 to 4294967295 was expected, not -1"),
            ({"address": "1"}, "address: an int was expected, not str"),
            ({"send_queue_calls": 0}, "send_queue_calls: a number from 1 to 1048576"),
            ({"io_threads": True}, "io_threads: an int was expected, not bool"),
            ({"linger": -0.5}, "linger: 0 to 4294967.295 seconds were expected, not -0.5"),
            ({"linger": float("nan")}, "linger: 0 to 4294967.295 seconds"),
            ({"send_timeout": "1"}, "send_timeout: seconds were expected, not str"),
            ({"transport": "tcp"}, "transport: 'ipc' or 'inproc', not 'tcp'"),
            ({"transport": []}, "transport: 'ipc' or 'inproc', not"),
            ({"key_file": 3}, "key_file: a text was expected, not int"),
            ({"key_file": "a\0b"}, "key_file: it has a zero byte"),
            ({"address_book": {-1: "inproc://a"}}, "address_book: a number from 0"),
            ({"on_peer": 3}, "on_peer: a function was expected, not int"),
        ],
    )
    def test_of_options_tells_which_and_why(self, options, text):
        with pytest.raises(m.BadArgument) as caught:
            m.Node(**{"address": 1, **options})
        assert str(caught.value).startswith(text)

    @pytest.mark.parametrize(
        "arguments",
        [
            {"destination": -1},
            {"destination": 2**32},
            {"extra": -1},
            {"extra": 2**64},
            {"timeout": -1},
            {"timeout": 2**40},
            {"values": 3},
            {"values": [3]},
            {"values": b"abc"},
            {"values": m.l2vpn_sync_stp},
        ],
    )
    def test_of_a_wrong_argument_sends_nothing(self, mesh_nodes, arguments):
        node = mesh_nodes(1)
        with pytest.raises(m.BadArgument):
            node.send(**{"destination": 1, "values": update, **arguments})
        with pytest.raises(m.BadArgument):
            node.send_raw(1, 2**32, b"")
        with pytest.raises(m.BadArgument):
            node.receive(timeout=-1)
        assert node.statistics().sent_calls == 0

    def test_is_of_one_family(self):
        for name in ("NoDestination", "QueueFull", "NotOpen", "Refused", "AddressInUse", "Busy"):
            assert issubclass(getattr(m, name), m.NodeError)
        assert issubclass(m.NodeError, m.Error)

    @pytest.mark.parametrize(
        "library, text",
        [
            ("/nowhere/libzarnimesh.so", "could not be loaded: "),
            ("libc.so.6", "has no mesh_node_options_default: it is older than this package"),
        ],
    )
    def test_of_a_wrong_middleware_names_it(self, library, text):
        program = "import mesh_l2vpn as m\ntry: m.Node(1)\nexcept m.LibraryMissing as error: print(error)"
        output = subprocess.run(
            [sys.executable, "-c", program],
            env={**os.environ, "MESH_L2VPN_MIDDLEWARE": library},
            capture_output=True,
            text=True,
        ).stdout
        assert output.startswith(f"{library} {text}")

    def test_in_a_forked_child(self, mesh_nodes):
        node = mesh_nodes(1)
        child = os.fork()
        if child == 0:
            try:
                node.send(1, update)
                os._exit(1)
            except m.NotOpen:
                os._exit(0)
            finally:
                os._exit(2)
        assert os.waitpid(child, 0)[1] == 0


class TestPeers:
    def test_are_counted_and_told(self, mesh_nodes):
        changes = []
        one, two = mesh_nodes(1), mesh_nodes(2, on_peer=changes.append)
        one.send(2, [update] * 3)
        one.send(2, update)
        take(two, 4)
        (peer,) = two.peers()
        assert (peer.address, peer.received_calls, peer.last_heard is not None) == (1, 2, True)
        (peer,) = one.peers()
        assert (peer.address, peer.sent_calls, peer.connected) == (2, 2, True)
        end = time.monotonic() + 10
        while not changes and time.monotonic() < end:
            time.sleep(0.01)
        assert changes[0] == m.PeerEvent("up", 1, 0, 0)

    def test_are_told_to_a_function_that_may_fail(self, mesh_nodes, monkeypatch):
        def fail(event):
            raise ValueError(event.change)

        failures = []
        monkeypatch.setattr(sys, "unraisablehook", lambda one: failures.append(str(one.exc_value)))
        one, two = mesh_nodes(1), mesh_nodes(2, on_peer=fail)
        one.send(2, update)
        take(two, 1)
        end = time.monotonic() + 10
        while not failures and time.monotonic() < end:
            time.sleep(0.01)
        assert failures[0] == "up"
        one.send(2, update)
        assert two.receive_one(timeout=20).record == update

    def test_may_be_more_than_a_few(self, mesh_nodes):
        node = mesh_nodes(1)
        others = [mesh_nodes(address) for address in range(2, 42)]
        for other in others:
            other.send(1, update)
        take(node, 40)
        assert [peer.address for peer in node.peers()] == list(range(2, 42))


class TestRepeated:
    def test_talk_takes_no_memory_and_no_descriptor(self, mesh_nodes):
        one, two = mesh_nodes(1), mesh_nodes(2)

        def rounds(count):
            for _ in range(count):
                one.send(2, update, extra=3)
                received = two.receive_one(timeout=20)
                assert received.record.f1.f0 == 42
                two.send_raw(1, update.identifier, update.sent()[:60])
                assert one.receive_one(timeout=20).fault

        rounds(2000)
        gc.collect()
        memory, files = resident(), descriptors()
        rounds(10000)
        gc.collect()
        assert resident() - memory < 1 << 20
        assert descriptors() == files

    def test_opening_takes_no_memory_and_no_descriptor(self, mesh_nodes):
        def rounds(count):
            for _ in range(count):
                with mesh_nodes(1) as one, mesh_nodes(2, on_peer=print) as two:
                    one.send(2, update)
                    two.receive_one(timeout=20)
                    list(one.peers())

        rounds(30)
        gc.collect()
        memory, files = resident(), descriptors()
        rounds(100)
        gc.collect()
        assert resident() - memory < 2 << 20
        assert descriptors() == files


class TestForgotten:
    def test_node_is_closed_with_a_warning(self, mesh_nodes):
        def forget():
            m.Node(1, runtime_directory=mesh_nodes.directory)

        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            forget()
            gc.collect()
        assert [str(one.message) for one in caught] == ["node 1 was not closed"]
        mesh_nodes(1)

    def test_node_is_closed_at_the_end_of_the_program(self, mesh_nodes):
        receiver = mesh_nodes(2)
        program = (
            "import mesh_l2vpn as m\n"
            "node = m.Node(1, on_peer=lambda event: None)\n"
            "node.send(2, m.l2vpn_sync_stp(f0=5))\n"
        )
        process = subprocess.Popen([sys.executable, "-c", program], env=mesh_nodes.environment)
        assert receiver.receive_one(timeout=10).record.f0 == 5
        assert process.wait(timeout=10) == 0
