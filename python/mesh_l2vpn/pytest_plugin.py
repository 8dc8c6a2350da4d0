"""The fixture `mesh_nodes`, for tests with pytest:

pytest_plugins = ["mesh_l2vpn.pytest_plugin"]

def test_update(mesh_nodes):
    one, two = mesh_nodes(1), mesh_nodes(2)
"""
import shutil
import tempfile
from typing import Iterator

import pytest

from .testing import MeshNodes


@pytest.fixture
def mesh_nodes() -> Iterator[MeshNodes]:
    """Opens as many nodes as a test wants, in a private directory. Fails if something was lost."""
    # A short path: that of a Unix socket has at most 107 bytes.
    directory = tempfile.mkdtemp(prefix="mesh-")
    nodes = MeshNodes(directory)
    try:
        yield nodes
    finally:
        lost = nodes.close()
        shutil.rmtree(directory, ignore_errors=True)
    if lost:
        pytest.fail("messages were lost: " + "; ".join(lost), pytrace=False)
