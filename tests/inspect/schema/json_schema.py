#!/usr/bin/env python3
"""The JSON Schema of each message takes what the tool prints, and refuses what it refuses.

json_schema.py MESH-L2VPN WRITE_CAPTURE
"""

import copy
import json
import subprocess
import sys
import tempfile
from pathlib import Path

from jsonschema import Draft202012Validator

tool, write_capture = sys.argv[1:]


def run(*words, **options):
    return subprocess.run([tool, *words], check=True, capture_output=True, text=True, **options).stdout


def damaged(record):
    """The record with one member that does not fit, in turn for each of the first ones."""
    yield {**record, "f999": 0}
    for name, value in list(record.items())[:4]:
        wrong = copy.deepcopy(record)
        wrong[name] = -1 if isinstance(value, int) else 7 if not isinstance(value, list) else {}
        yield wrong
        if isinstance(value, int):
            yield {**record, name: 2**64}
        if isinstance(value, str):
            yield {**record, name: value + "0"}


document = json.loads(run("schema"))
Draft202012Validator.check_schema(document["jsonSchema"])
validators = {}
for message in document["messages"]:
    schema = {**document["jsonSchema"], "$ref": f"#/$defs/{message['record']}"}
    validators[message["name"]] = Draft202012Validator(schema)

seen = set()
with tempfile.TemporaryDirectory() as work:
    capture = Path(work) / "all.pcapng"
    subprocess.run([write_capture, capture, str(2 * len(validators))], check=True)
    for line in run("decode", str(capture)).splitlines():
        table = json.loads(line)
        name, record = table["message"], table["record"]
        validators[name].validate(record)
        if name in seen:
            continue
        seen.add(name)
        for wrong in damaged(record):
            refused = subprocess.run([tool, "encode", "-m", name, "--compact"], input=json.dumps(wrong),
                                     capture_output=True, text=True).returncode == 1
            if not refused or validators[name].is_valid(wrong):
                sys.exit(f"{name}: encode refuses: {refused}, the schema takes: {wrong}")
if seen != set(validators):
    sys.exit(f"no record of {set(validators) - seen}")
one = json.loads(run("schema", "dbginfo_key_l2vpn"))["jsonSchema"]
Draft202012Validator(one).validate({"f0": "0x00FF", "f3": "00ff"})
