"""The fixture mesh_nodes, as tests of users meet it."""
import textwrap

import pytest

pytest_plugins = ["pytester"]

HEAD = """
import os
import mesh_l2vpn as m
pytest_plugins = ["mesh_l2vpn.pytest_plugin"]
value = m.l2vpn_sync_stp(f0=1)
"""


@pytest.fixture
def outcome(pytester):
    """Runs a test and returns its result."""

    def run(test):
        pytester.makepyfile(HEAD + textwrap.dedent(test))
        return pytester.runpytest_subprocess("-p", "no:cacheprovider")

    return run


def test_gives_nodes_that_talk(outcome):
    result = outcome(
        """
        def test(mesh_nodes):
            one, two = mesh_nodes(1), mesh_nodes(2)
            one.send(2, value)
            assert two.receive_one().record == value
        """
    )
    result.assert_outcomes(passed=1)


def test_uses_a_private_directory_and_removes_it(outcome):
    result = outcome(
        """
        seen = []
        def test_one(mesh_nodes):
            mesh_nodes(1)
            seen.append(mesh_nodes.directory)
            assert os.listdir(mesh_nodes.directory)
            assert os.stat(mesh_nodes.directory).st_mode & 0o777 == 0o700
            assert mesh_nodes.environment["ZARNIMESH_RUNTIME_DIR"] == mesh_nodes.directory
        def test_two(mesh_nodes):
            mesh_nodes(1)
            assert mesh_nodes.directory != seen[0]
            assert not os.path.exists(seen[0])
        """
    )
    result.assert_outcomes(passed=2)


def test_takes_unread_messages_for_no_loss(outcome):
    result = outcome(
        """
        def test(mesh_nodes):
            one, two = mesh_nodes(1), mesh_nodes(2)
            one.send(2, [value] * 3)
            one.send(2, value)
        """
    )
    result.assert_outcomes(passed=1)


def test_fails_a_test_that_lost_something(outcome):
    result = outcome(
        """
        def test(mesh_nodes):
            one, two = mesh_nodes(1), mesh_nodes(2)
            one.send(2, value)
            one.send(2, value)
            two.close()
        """
    )
    result.assert_outcomes(passed=1, errors=1)
    result.stdout.fnmatch_lines(["*messages were lost: node 1: undelivered_calls 2*"])


def test_allows_the_losses_that_a_test_names(outcome):
    result = outcome(
        """
        def test(mesh_nodes):
            mesh_nodes.allow("undelivered_calls")
            one, two = mesh_nodes(1), mesh_nodes(2)
            one.send(2, value)
            two.close()
        """
    )
    result.assert_outcomes(passed=1)


def test_rejects_unknown_names_of_losses(outcome):
    result = outcome(
        """
        def test(mesh_nodes):
            mesh_nodes.allow("lost")
        """
    )
    result.assert_outcomes(failed=1)
    result.stdout.fnmatch_lines(["*ValueError: lost: one of lost_calls, *"])


def test_passes_options_and_closes_after_a_failure(outcome):
    result = outcome(
        """
        def test_one(mesh_nodes):
            mesh_nodes(1, send_queue_calls=0)
        def test_two(mesh_nodes):
            mesh_nodes(1)
            assert False, "the body"
        def test_three(mesh_nodes):
            mesh_nodes(1)
        """
    )
    result.assert_outcomes(failed=2, passed=1)
    result.stdout.fnmatch_lines(["*send_queue_calls: a number from 1*", "*the body*"])
