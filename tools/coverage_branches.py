#!/usr/bin/env python3
"""Sums up the coverage of templates by source position.

  tools/coverage_branches.py COVERAGE.json EXPLANATIONS.md

The engine is templates over 85 messages. A branch counts as taken when any instantiation takes it,
and as undecided at run time when the compiler knows its outcome in every instantiation that runs.
What is not taken is listed; its source line has to stand, word for word, in the explanations.
"""

import collections
import json
import os
import sys

CODE_REGION = 0
MEASURED = ("host/", "wire/", "msg/")


def positions(functions, root):
    """Regions' and branches' counts, each by file and position, over all instantiations."""
    regions = collections.Counter()
    branches = collections.defaultdict(lambda: [0, 0])
    for function in functions:
        # What is only ever evaluated by the compiler has no code; it is recorded as one region.
        if function["count"] == 0 and len(function["regions"]) == 1 and not function["branches"]:
            continue
        names = [os.path.relpath(name, root) for name in function["filenames"]]
        for *place, count, file, _, kind in function["regions"]:
            if kind == CODE_REGION and names[file].startswith(MEASURED):
                regions[(names[file], *place)] += count
        for line, column, _, _, taken, not_taken, file, _, _ in function["branches"]:
            if names[file].startswith(MEASURED):
                ways = branches[(names[file], line, column)]
                ways[0] += taken
                ways[1] += not_taken
    return regions, branches


def runs(regions, file, line, column):
    """How often the innermost region around a position runs; None where there is no code."""
    around = [
        (place, count)
        for place, count in regions.items()
        if place[0] == file and place[1:3] <= (line, column) < place[3:5]
    ]
    return max(around, key=lambda region: region[0][1:3])[1] if around else None


def lines_of(regions, root):
    """Each line with code, by its first character: whether it runs."""
    for file in sorted({place[0] for place in regions}):
        with open(os.path.join(root, file), encoding="utf-8") as source:
            for line, text in enumerate(source.read().splitlines(), 1):
                code = text.strip()
                if not code or code.startswith("//") or set(code) <= set("{}();"):
                    continue
                count = runs(regions, file, line, len(text) - len(text.lstrip()) + 1)
                if count is not None:
                    yield file, line, code, count > 0


def main():
    report, explanations = sys.argv[1:]
    root = os.path.realpath(os.path.join(os.path.dirname(__file__), ".."))
    with open(report, encoding="utf-8") as file:
        functions = json.load(file)["data"][0]["functions"]
    with open(explanations, encoding="utf-8") as file:
        explained = file.read()
    regions, branches = positions(functions, root)
    lines = list(lines_of(regions, root))

    total, missing, constant = 0, [], 0
    for (file, line, column), ways in sorted(branches.items()):
        if ways == [0, 0] and runs(regions, file, line, column):
            constant += 1
            continue
        total += 2
        missing += [
            (file, line, column, way) for way, count in zip((True, False), ways) if count == 0
        ]

    reached = [line for line in lines if line[3]]
    print(f"lines    {len(reached)} of {len(lines)} ({100 * len(reached) / len(lines):.2f} %)")
    for file, line, code, _ in (line for line in lines if not line[3]):
        print(f"  {file}:{line} never runs: {code}")
    print(f"branches {total - len(missing)} of {total}"
          f" ({100 * (total - len(missing)) / total:.2f} %),"
          f" and {constant} conditions that the compiler decides")
    unexplained = 0
    for file, line, column, way in missing:
        with open(os.path.join(root, file), encoding="utf-8") as source:
            text = source.read().splitlines()[line - 1].strip()
        known = text in explained
        unexplained += not known
        print(f"  {file}:{line}:{column} is never {str(way).lower()}"
              f"{'' if known else ' (NOT EXPLAINED)'}: {text}")
    return 1 if unexplained else 0


if __name__ == "__main__":
    sys.exit(main())
