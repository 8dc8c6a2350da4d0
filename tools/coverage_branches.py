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


def positions(functions, root):
    """Regions' and branches' counts, each by file and position, over all instantiations."""
    regions = collections.Counter()
    branches = collections.defaultdict(lambda: [0, 0])
    for function in functions:
        names = [os.path.relpath(name, root) for name in function["filenames"]]
        for *place, count, file, _, kind in function["regions"]:
            if kind == CODE_REGION:
                regions[(names[file], *place)] += count
        for line, column, _, _, taken, not_taken, file, _, _ in function["branches"]:
            ways = branches[(names[file], line, column)]
            ways[0] += taken
            ways[1] += not_taken
    return regions, branches


def runs(regions, file, line, column):
    """How often the innermost region around a position runs."""
    around = [
        (place, count)
        for place, count in regions.items()
        if place[0] == file and place[1:3] <= (line, column) < place[3:5]
    ]
    return max(around, key=lambda region: region[0][1:3])[1] if around else 0


def main():
    report, explanations = sys.argv[1:]
    root = os.path.realpath(os.path.join(os.path.dirname(__file__), ".."))
    with open(report, encoding="utf-8") as file:
        data = json.load(file)["data"][0]
    with open(explanations, encoding="utf-8") as file:
        explained = file.read()
    regions, branches = positions(data["functions"], root)

    lines = collections.Counter()
    for file in data["files"]:
        lines.update(
            {key: file["summary"]["lines"][key] for key in ("count", "covered")}
        )

    total, missing, constant = 0, [], 0
    for (file, line, column), ways in sorted(branches.items()):
        if not file.startswith(("host/", "wire/", "msg/")):
            continue
        if ways == [0, 0] and runs(regions, file, line, column) > 0:
            constant += 1
            continue
        total += 2
        missing += [
            (file, line, column, way) for way, count in zip((True, False), ways) if count == 0
        ]

    print(f"lines    {lines['covered']} of {lines['count']}"
          f" ({100 * lines['covered'] / lines['count']:.2f} %)")
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
