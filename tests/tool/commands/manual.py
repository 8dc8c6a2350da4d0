#!/usr/bin/env python3
"""The manual page has every command and every long option that --help prints, and no others. It explains
every option.

    manual.py MESH-L2VPN MANUAL
"""
import re
import subprocess
import sys

LONG = re.compile(r"--[a-z][a-z0-9-]*")


def help_of(tool, *command):
    return subprocess.run([tool, *command, "--help"], stdout=subprocess.PIPE, text=True, check=True).stdout


def section_of(text, head):
    return text.partition(f"\n{head}:\n")[2].partition("\n\n")[0]


def options_of(text):
    lines = section_of(text, "Options").splitlines()
    return {option for line in lines if line.startswith("  -") for option in LONG.findall(line.split("Excludes")[0])}


def plain(manual):
    return re.sub(r"\\f[BIRP]", "", manual).replace("\\-", "-").replace("\\(aq", "'")


def paragraphs(manual, section):
    """The first lines after each .TP of a section."""
    body = manual.partition(f"\n.SH {section}\n")[2].partition("\n.SH ")[0]
    return [re.sub(r'^\.BR? ', "", part).replace('"', "").replace(" , ", ", ")
            for part in body.split(".TP\n")[1:]]


def main():
    tool, manual = sys.argv[1:3]
    with open(manual, encoding="utf-8") as file:
        page = plain(file.read())
    general = help_of(tool)
    commands = [line.split()[0] for line in section_of(general, "Subcommands").splitlines() if line[2] != " "]
    described = {text.split()[0]: text.splitlines()[0] for text in paragraphs(page, "COMMANDS")}
    if len(commands) < 13 or set(commands) != set(described):
        sys.exit(f"the program's commands are {commands}, the page's {list(described)}")
    # Described once, for all commands that have them.
    shared = {"--help", "--middleware"}
    explained = set(LONG.findall("\n".join(paragraphs(page, "OPTIONS"))))
    count = 0
    for command in commands:
        printed = options_of(help_of(tool, command))
        written = set(LONG.findall(described[command]))
        if "-m MESSAGE" in described[command]:
            written.add("--message")
        missing, surplus = printed - written - shared, written - printed
        if missing or surplus:
            sys.exit(f"{command}: not in the page {sorted(missing)}, not in the program {sorted(surplus)}")
        if printed - explained:
            sys.exit(f"{command}: not explained in the page {sorted(printed - explained)}")
        count += len(printed)
    missing = (options_of(general) | shared) - explained
    if missing or count < 30:
        sys.exit(f"not in the page: {sorted(missing)}; {count} options of commands")
    print(f"{len(commands)} commands and {count} options of theirs are in the page")


main()
