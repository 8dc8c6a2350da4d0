#!/usr/bin/env python3
"""Breaks the sources in one place at a time, and reports which changes no test notices.

    tools/mutate/mutate.py                      # 400 mutants of host/, wire/ and msg/
    tools/mutate/mutate.py --survivors          # those again that survived, with the slow tests too
    tools/mutate/mutate.py --all wire/schema.hpp

Fails for a survivor that docs/mutation.md does not explain, and for an explanation whose mutant a test
kills or that has no mutant.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import random
import re
import resource
import threading
from pathlib import Path

import mutants
from suites import SUITES
from trial import Base, Verdict, Worker

ROOT = Path(__file__).resolve().parents[2]
PAGE = "docs/mutation.md"
# What a compiler or a test may take: a mutant can ask for memory in an endless loop. Tests map far more
# address space than they fill.
MEMORY = 6 << 30


def explained(page):
    """(file, before, after) of the mutants that the page explains."""
    found = set()
    for file, block in re.findall(r"^`([\w./]+)`: [^`]*(?:`[^`]+`[^`]*)*?\n\n```diff\n(.*?)^```", page,
                                  re.MULTILINE | re.DOTALL):
        lines = block.splitlines()
        before = ""
        for line in lines:
            if line.startswith("-"):
                before = line[1:].strip()
            else:
                found.add((file, before, line[1:].strip()))
    return found


def selected(candidates, seed):
    """Every file and operator in turn, files first."""
    groups = collections.defaultdict(list)
    for mutant in candidates:
        groups[mutant.file, mutant.operator].append(mutant)
    shuffled = random.Random(seed)
    for group in groups.values():
        shuffled.shuffle(group)
    order, rank = [], collections.Counter()
    turns = {}
    for file, operator in shuffled.sample(sorted(groups), len(groups)):
        turns[file, operator] = rank[file]
        rank[file] += 1
    while groups:
        for key in sorted(groups, key=turns.get):
            order.append(groups[key].pop())
            if not groups[key]:
                del groups[key]
    return order


def save(path, verdicts):
    path.write_text(json.dumps([(one.file, one.context, verdict.kind, verdict.by)
                                for one, verdict in verdicts.items()], indent=0))


def table(title, results, key):
    columns = ("killed", "proof", "equivalent", "survived")
    rows = collections.defaultdict(collections.Counter)
    for mutant, verdict in results:
        rows[key(mutant)][verdict.kind] += 1
        rows["all"][verdict.kind] += 1
    print(f"\n| {title} | mutants | killed by a test | killed by a proof | equivalent | survived | score |")
    print("|---|---|---|---|---|---|---|")
    for name in sorted(rows, key=lambda name: (name == "all", name)):
        row = rows[name]
        killed, lives = row["killed"] + row["proof"], row["survived"]
        score = f"{100 * killed / (killed + lives):.1f} %" if killed + lives else "-"
        print("|", " | ".join([name, str(sum(row.values())), *(str(row[column]) for column in columns), score]), "|")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", nargs="*", help="only these files or folders")
    parser.add_argument("--suite", choices=SUITES, default="engine")
    parser.add_argument("--count", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--all", action="store_true", help="every mutant")
    parser.add_argument("--survivors", action="store_true", help="those that survived the last run")
    parser.add_argument("--resume", action="store_true", help="keep the verdicts on functions that are unchanged, and go on")
    parser.add_argument("--list", action="store_true", help="list the mutants, build nothing")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--directory", type=Path, default=ROOT / "build/mutate")
    options = parser.parse_args()
    options.directory = options.directory.absolute()

    suite = SUITES[options.suite]
    files = sorted(path.relative_to(ROOT) for room in suite.sources for path in ROOT.glob(room)
                   if path.name not in suite.excluded)
    texts = {str(file): (ROOT / file).read_text() for file in files}
    following = mutants.enumerators(texts.values())
    candidates = [mutant for file, text in texts.items() for mutant in mutants.mutants_of(file, text, following)]
    known = explained((ROOT / PAGE).read_text()) if (ROOT / PAGE).exists() else set()
    stale = {key for key in known if key[0] in texts or not (ROOT / key[0]).exists()} - {(one.file, one.before, one.after) for one in candidates}
    for file, before, after in sorted(stale):
        print(f"{PAGE} explains a mutant that does not exist:\n  {file}\n  - {before}\n  + {after}")
    chosen = [one for one in candidates if one.file.startswith(tuple(options.files or [""]))]
    order = selected(chosen, options.seed)
    last = options.directory / f"{options.suite}.json"
    earlier = {}
    if options.survivors or options.resume:
        named = {(one.file, one.context): one for one in candidates}
        earlier = {named[tuple(key)]: Verdict(kind, by) for *key, kind, by in json.loads(last.read_text())
                   if tuple(key) in named}
        order = [one for one in order if one not in earlier]
    if options.survivors:
        order = [one for one in chosen if earlier.get(one, Verdict("")).kind in ("survived", "refuted")]
    if options.list:
        for one in order:
            print(f"{one.file}: {one.operator}\n  - {one.before}\n  + {one.after}")
        print(len(order), "mutants")
        return len(stale) > 0

    os.nice(max(0, 10 - os.nice(0)))
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    base = Base(ROOT, options.directory, suite)
    for test, seconds in base.seconds.items():
        print(f"{seconds:6.1f} s  {test.target} {test.script or test.filter}", flush=True)
    kills = collections.defaultdict(collections.Counter)
    lock, results = threading.Lock(), {}
    waiting = iter(enumerate(order))
    count = len(order) if options.all or options.survivors else options.count - sum(
        verdict.kind != "invalid" for verdict in earlier.values())

    def work(number):
        worker = Worker(base, options.directory / f"worker{number}")
        while True:
            with lock:
                if sum(verdict.kind != "invalid" for _, verdict in results.values()) >= count:
                    return
                index, mutant = next(waiting, (None, None))
            if mutant is None:
                return
            seen = kills[mutant.file]
            test, verdict = worker.trial(mutant, texts[mutant.file], options.survivors, lambda tests: sorted(
                tests, key=lambda test: (-seen[test] / (0.5 + base.seconds[test]), base.seconds[test])))
            if (mutant.file, mutant.before, mutant.after) in known:
                verdict = Verdict("equivalent" if verdict.kind == "survived" else "refuted", verdict.by)
            with lock:
                if test:
                    seen[test] += 1
                results[index] = mutant, verdict
                save(last, {**earlier, **dict(results.values())})
                print(f"{len(results)} {verdict.kind} {verdict.by}\n  {mutant.file}: {mutant.operator}\n"
                      f"  - {mutant.before}\n  + {mutant.after}", flush=True)

    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for future in [pool.submit(work, number) for number in range(options.jobs)]:
            future.result()

    verdicts = {**earlier, **dict(results.values())}
    valid = [(one, verdict) for one, verdict in verdicts.items() if verdict.kind != "invalid"]
    table("folder", valid, lambda mutant: os.path.dirname(mutant.file) + "/")
    table("operator", valid, lambda mutant: mutant.operator)
    failed = [(mutant, verdict) for mutant, verdict in valid if verdict.kind in ("survived", "refuted")]
    for one, verdict in failed:
        print(f"{verdict.kind} {verdict.by}: {one.file}\n  - {one.before}\n  + {one.after}")
    print(f"{len(verdicts) - len(valid)} changes are no valid C++ and do not count")
    return 1 if failed or stale else 0


if __name__ == "__main__":
    raise SystemExit(main())
