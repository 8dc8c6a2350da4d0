#!/usr/bin/env python3
"""Runs every example of the page that shows its output ("$ command"), and compares the output with the
page. "..." in the page stands for omitted lines.

    examples.py MESH-L2VPN WRITE_CAPTURE PAGE
"""
import os
import re
import subprocess
import sys
import tempfile

# Creates the files that the examples read.
FILES = """
echo '{"f0": 7, "f1": {"f0": 42, "f6": 1042, "f8": "010000000000000000000000"}}' > update.json
mesh-l2vpn encode -m l2vpn_sync_vpls_ac_update update.json > update.bin
mesh-l2vpn encode -m l2vpn_sync_vpls_ac_update --compact update.json > unknown.bin
sed s/1042/1043/ update.json | mesh-l2vpn encode -m l2vpn_sync_vpls_ac_update > after.bin
echo '{"f0": 42, "f8": "010000000000000000000000"}' |
  mesh-l2vpn encode -m l2vpn_sync_vpls_ac --compact | head -c 74 > damaged.bin
printf '\\015' | dd of=damaged.bin bs=1 seek=44 conv=notrunc status=none
write_capture night.pcapng 1000 damaged dbginfo_cmd_key_l2vpn l2vpn_stat_pw_stat l2vpn_sync_vpls_ac
"""


# Exit codes of examples other than 0.
CODES = {"mesh-l2vpn explain": 1, "mesh-l2vpn diff": 1, "echo '{\"f0\": 7, \"f1\": {\"f8\": \"0102\"}}' |": 1}


def run(command, directory, path):
    shell = ["bash", "-c", "set -o pipefail\n" + command]
    environment = dict(os.environ, PATH=path + os.pathsep + os.environ["PATH"], NO_COLOR="1")
    done = subprocess.run(shell, cwd=directory, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return done.returncode, done.stdout


def examples_of(page):
    """Pairs of a command and what the page shows of its output."""
    for block in re.findall(r"^```\w*\n(.*?)^```$", page, flags=re.M | re.S):
        for example in re.split(r"^\$ ", block, flags=re.M)[1:]:
            yield tuple(example.split("\n", 1))


def is_shown(shown, output):
    pattern = re.sub(r"^\\\.\\\.\\\.$", r"(?:.*\\n)*.*", re.escape(shown).replace("\\\n", "\n"), flags=re.M)
    return re.fullmatch(pattern, output) is not None


def main():
    tool, write_capture, page = sys.argv[1:4]
    with open(page, encoding="utf-8") as file:
        examples = list(examples_of(file.read()))
    path = os.pathsep.join(os.path.dirname(os.path.abspath(each)) for each in (tool, write_capture))
    with tempfile.TemporaryDirectory() as directory:
        code, output = run(FILES, directory, path)
        if code != 0:
            sys.exit(output)
        for command, shown in examples:
            code, output = run(command, directory, path)
            expected = next((CODES[start] for start in CODES if command.startswith(start)), 0)
            if code != expected:
                sys.exit(f"$ {command}\n{output}\nends with {code}, not {expected}")
            if not is_shown(shown, output):
                sys.exit(f"$ {command}\n{output}\nbut the page shows\n{shown}")
    if len(examples) < 7:
        sys.exit(f"{len(examples)} examples are too few")
    print(f"{len(examples)} examples print what the page shows")


main()
