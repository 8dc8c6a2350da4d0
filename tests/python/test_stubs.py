"""The stubs know every field of every message, and mypy finds what does not fit."""
import ast
import os
import shutil
import subprocess
import sys
import tempfile

import pytest
from conftest import ALL

import mesh_l2vpn as m

PACKAGE = os.path.dirname(os.path.abspath(m.__file__))

TYPES = {"scalar": "int", "array": "bytes", "bytes": "bytes"}


def test_stubs_know_every_field():
    with open(os.path.join(PACKAGE, "__init__.pyi"), encoding="utf-8") as stubs:
        classes = {
            node.name: node for node in ast.parse(stubs.read()).body if isinstance(node, ast.ClassDef)
        }
    for message in ALL:
        body = classes[message.name].body
        fields = {node.target.id: ast.unparse(node.annotation) for node in body if isinstance(node, ast.AnnAssign)}
        assert fields == {
            field.name: TYPES.get(field.kind)
            or (field.record.name if field.kind == "table" else f"MutableSequence[{field.record.name}]")
            for field in message.fields
        }
        constructor = next(node for node in body if isinstance(node, ast.FunctionDef))
        assert [argument.arg for argument in constructor.args.args[1:]] == list(fields)


@pytest.fixture(scope="module")
def mypy(tmp_path_factory):
    program = shutil.which("mypy", path="/usr/bin:" + os.environ["PATH"])
    if program is None:
        pytest.skip("mypy is missing (Debian: mypy)")
    cache = tmp_path_factory.mktemp("cache")

    def run(directory, *files):
        return subprocess.run(
            [program, "--strict", "--follow-imports=silent", "--cache-dir", cache, *files],
            env={**os.environ, "MYPYPATH": os.path.dirname(PACKAGE)},
            cwd=directory,
            stdout=subprocess.PIPE,
            text=True,
            check=False,
        ).stdout

    return run


def test_mypy_finds_what_does_not_fit(tmp_path, mypy):
    wrong = {
        "m.l2vpn_sync_stp(f99=1)": 'Unexpected keyword argument "f99"',
        "m.l2vpn_sync_stp(f0='1')": 'has incompatible type "str"',
        "m.l2vpn_sync_stp().f99": 'has no attribute "f99"',
        "m.l2vpn_sync_vpls_ac_update(f1={'f99': 1})": "incompatible type",
        "m.l2vpn_sync_vpls_ac_update().f1.f8 + 1": "Unsupported operand types",
        "m.unpack(b'', m.l2vpn_sync_stp).f99": 'has no attribute "f99"',
        "m.l2vpn_sync_stp.from_json('{}').f99": 'has no attribute "f99"',
        "m.array(m.l2vpn_sync_stp, 1)[0].f99": 'has no attribute "f99"',
    }
    file = tmp_path / "wrong.py"
    file.write_text("import mesh_l2vpn as m\n" + "\n".join(wrong) + "\n")
    found = mypy(tmp_path, file)
    for number, text in enumerate(wrong.values(), 2):
        assert any(
            line.startswith(f"wrong.py:{number}: error:") and text in line for line in found.splitlines()
        ), (number, text, found)
    assert found.endswith(f"Found {len(wrong)} errors in 1 file (checked 1 source file)\n")


def test_examples_pass_mypy(tmp_path, page_programs, mypy):
    for number, program in enumerate(page_programs):
        (tmp_path / f"example{number}.py").write_text(program)
    assert "Success" in mypy(tmp_path, *tmp_path.glob("*.py"))


def test_nodes_and_captures_pass_mypy(tmp_path, mypy):
    names = ["captures", "node", "node_errors", "node_statistics", "pytest_plugin", "table", "testing"]
    names += ["_arguments", "_descriptors", "_zarnimesh"]
    files = [os.path.join(PACKAGE, name + ".py") for name in names]
    follower = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../examples/test_follower.py")
    assert "Success" in mypy(tmp_path, *files, follower)


def test_examples_run(tmp_path, page_programs):
    # A short path: that of a Unix socket has at most 107 bytes.
    with tempfile.TemporaryDirectory(prefix="mesh-") as directory:
        env = {**os.environ, "ZARNIMESH_RUNTIME_DIR": directory}
        for program in page_programs:
            subprocess.run([sys.executable, "-c", program], cwd=tmp_path, env=env, check=True)
