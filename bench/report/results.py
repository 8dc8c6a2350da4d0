"""What the benchmark measured, by group, message, operation and number."""

import json
import statistics
from dataclasses import dataclass, replace
from pathlib import Path


@dataclass(frozen=True)
class Result:
    group: str
    message: str
    operation: str
    number: int | None  # the batch, the length, the threads, where one of them is varied
    ns: float  # a record, of all threads together
    cpu_ns: float  # a record, of one thread's processor
    bytes: float  # a record
    spread: float | None  # standard deviation over mean, of the repetitions


class Results:
    """Of each case the median over the runs, which are medians over their repetitions."""

    def __init__(self, results, context):
        self.context = context
        cases = {}
        for r in results:
            cases.setdefault((r.group, r.message, r.operation, r.number), []).append(r)
        self._by_case = {case: _median_of(runs) for case, runs in cases.items()}

    def find(self, group, message, operation, number=None):
        return self._by_case.get((group, message, operation, number))

    def ns(self, group, message, operation, number=None):
        result = self.find(group, message, operation, number)
        return None if result is None else result.ns

    def all(self):
        return list(self._by_case.values())

    def of_group(self, group):
        return [r for r in self.all() if r.group == group]

    def messages(self, group):
        return list(dict.fromkeys(r.message for r in self.of_group(group)))

    def numbers(self, group, message, operation):
        return sorted(r.number for r in self.of_group(group)
                      if (r.message, r.operation) == (message, operation) and r.number is not None)


def _median_of(runs):
    def median(attribute):
        values = [getattr(run, attribute) for run in runs]
        return None if None in values else statistics.median(values)
    return replace(runs[0], ns=median("ns"), cpu_ns=median("cpu_ns"), spread=median("spread"))


def load(directory):
    results, context = [], {}
    for path in sorted(Path(directory).glob("*.cases.json")):
        document = json.loads(path.read_text())
        context = {**document["context"], "runs": context.get("runs", 0) + 1}
        results += _results_of(document["benchmarks"])
    if not results:
        raise SystemExit(f"{directory}: no *.cases.json, or none with a case")
    return Results(results, context)


def _results_of(entries):
    """In the order in which the cases stand in the program."""
    entries = sorted(entries, key=lambda entry: entry.get("family_index", 0))
    spreads = {e["run_name"]: e["ns_per_record"] for e in entries
               if e.get("aggregate_name") == "cv"}
    medians = [e for e in entries if e.get("aggregate_name") == "median"]
    for entry in medians or entries:
        if entry.get("error_occurred"):
            raise SystemExit(f"{entry['name']}: {entry.get('error_message')}")
        group, message, operation, *rest = entry["run_name"].split("/")
        number = int(rest[0]) if rest and rest[0].isdigit() else None
        yield Result(group, message, operation, number, entry["ns_per_record"],
                     entry["cpu_time"] / entry["records"], entry["bytes_per_record"],
                     spreads.get(entry["run_name"]))
