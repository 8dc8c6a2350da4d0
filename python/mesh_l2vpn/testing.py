"""Nodes for tests, in a directory of their own. pytest_plugin.py makes them a fixture."""
import os
import time
from typing import Any, Dict, List

from .node import Node
from .node_errors import NodeError
from .node_statistics import Statistics

DIRECTORY_VARIABLE = "ZARNIMESH_RUNTIME_DIR"

LOSSES = (
    "lost_calls",
    "missed_before_first",
    "undelivered_calls",
    "unconfirmed_calls",
    "discarded_calls",
    "duplicate_calls",
    "malformed",
    "refused_connections",
)


class MeshNodes:
    """Opens nodes in a private directory: `mesh_nodes(address, **options)` takes Node's options.

    After the test it closes them. The test fails if one of them counted a loss that was not allowed.
    """

    def __init__(self, directory: str) -> None:
        self.directory = directory
        self._nodes: List[Node] = []
        self._allowed: List[str] = []

    @property
    def environment(self) -> Dict[str, str]:
        """This process's environment, for programs whose nodes are to be in the same directory."""
        return {**os.environ, DIRECTORY_VARIABLE: self.directory}

    def __call__(self, address: int, **options: Any) -> Node:
        node = Node(address, runtime_directory=self.directory, **options)
        self._nodes.append(node)
        return node

    def allow(self, *losses: str) -> None:
        """Counters that may be other than 0 after this test: names of LOSSES."""
        unknown = sorted(set(losses) - set(LOSSES))
        if unknown:
            raise ValueError(f"{', '.join(unknown)}: one of {', '.join(LOSSES)} was expected")
        self._allowed += losses

    def close(self) -> List[str]:
        """Closes all nodes. Returns what was lost, a line for each node and counter."""
        self._read_the_rest()
        failures = []
        for node in self._nodes:
            try:
                node.close()
            except NodeError as error:
                if not node.closed:
                    failures.append(str(error))
                    continue
            failures += self._losses(node.address, node.statistics())
        return failures

    def _losses(self, address: int, counted: Statistics) -> List[str]:
        found = {name: getattr(counted, name) for name in LOSSES if name not in self._allowed}
        return [f"node {address}: {name} {count}" for name, count in found.items() if count]

    def _read_the_rest(self) -> None:
        """What a test has not read is not lost: senders wait until their receivers have read it."""
        open_nodes = [node for node in self._nodes if not node.closed]
        end = time.monotonic() + 2
        while True:
            for node in open_nodes:
                for _ in node.receive(0):
                    pass
            waiting = any(node.statistics().unconfirmed_calls for node in open_nodes)
            if not waiting or time.monotonic() > end:
                return
            time.sleep(0.005)
