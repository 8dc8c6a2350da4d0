"""What the pages show is what the examples are."""
import os
import re

ROOT = os.path.join(os.path.dirname(__file__), "..", "..")


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def test_test_your_feature_shows_its_program():
    program = read("examples/test_follower.py")
    blocks = re.findall(r"```python\n(.*?)```", read("docs/test-your-feature.md"), re.DOTALL)
    shown = [block for block in blocks if "write_capture" not in block]
    assert len(shown) == 7
    for block in shown:
        assert block in program
    assert len(re.findall(r"^def test_", program, re.MULTILINE)) == 4
