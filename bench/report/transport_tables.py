"""The tables of the transport: the middleware beside raw ZeroMQ."""

import json
from pathlib import Path
from statistics import median

from report.cost_tables import NONE
from report.table import Cell, Table

TRANSPORTS = {"ipc": "ipc", "tcp": "tcp, loopback", "curve": "tcp with keys", "inproc": "inproc"}
RECORDS = (1, 16, 512)
PEERS = (10, 100, 1000)
FANS = {"fan_in": "many senders, one receiver", "fan_out": "one sender, many receivers"}

# Aimed at over ipc, as multiples of raw.
LEAST_RATE = 0.8
MOST_LATENCY = 1.25


class Results:
    """Of each case and value the median of the repetitions."""

    def __init__(self, path):
        self.context = json.loads(Path(path).read_text())
        numbers = {}
        for result in self.context.pop("results"):
            case = result.pop("case")
            for value, number in result.items():
                numbers.setdefault((value, case), []).append(number)
        if not numbers:
            raise SystemExit(f"{path}: no case was measured")
        self._medians = {key: median(each) for key, each in numbers.items()}

    def median(self, value, kind, transport, records, peers, way):
        return self._medians.get((value, f"{kind}/{transport}/{records}/{peers}/{way}"))


def surroundings(results):
    context = results.context
    return (f"{context['date']}, {context['processors']} processors, {context['compiler']}, ZeroMQ "
            f"{context['zeromq']}. Load average before: {context['load']}. Medians of "
            f"{context['repetitions']} repetitions each, ours and raw in turns.")


def all_tables(results):
    return [table for table in (rates(results), latencies(results), fans(results),
                                peer_costs(results)) if table.rows]


def rates(results):
    table = Table("Rate", "Thousand records a second, and multiples of raw. Over ipc at least "
                  f"{LEAST_RATE} is aimed at.",
                  ["transport", "records of a call", "raw", "tables packed before",
                   "record to record", "tables / raw", "records / raw"])
    _add_pairs(table, results, "rate", "records_per_second", 1e-3, ",.0f",
               lambda ratio: ratio >= LEAST_RATE)
    return table


def latencies(results):
    table = Table("Latency", "Round trip in microseconds: median / 99th percentile, and multiples "
                  f"of raw's median. Over ipc at most {MOST_LATENCY} is aimed at.",
                  ["transport", "records of a call", "raw", "tables packed before",
                   "record to record", "tables / raw", "records / raw"])
    _add_pairs(table, results, "latency", "median_us", 1, ",.1f",
               lambda ratio: ratio <= MOST_LATENCY, beside="p99_us")
    return table


def _add_pairs(table, results, kind, value, factor, form, is_good, beside=None):
    for transport, name in TRANSPORTS.items():
        for records in RECORDS:
            case = (kind, transport, records, 1)
            raw, *ours = (results.median(value, *case, way) for way in ("raw", "tables", "records"))
            if raw is None:
                continue
            cells = [_number(each, factor, form) for each in (raw, *ours)]
            if beside is not None:
                cells = [f"{cell} / {_number(results.median(beside, *case, way), factor, form)}"
                         for cell, way in zip(cells, ("raw", "tables", "records"))]
            table.rows.append([name, str(records), *cells, *(
                _ratio(each, raw, is_good if transport == "ipc" else None) for each in ours)])


def fans(results):
    table = Table("Many peers", "Calls of one record a second, over ipc. All peers are one "
                  "process, in one thread; the one on the other side is another.",
                  ["case", "peers", "raw", "tables packed before", "tables / raw"])
    for kind, name in FANS.items():
        for peers in PEERS:
            raw, ours = (results.median("records_per_second", kind, "ipc", 1, peers, way)
                         for way in ("raw", "tables"))
            if raw is not None:
                table.rows.append([name, f"{peers:,}", _number(raw, 1, ",.0f"),
                                   _number(ours, 1, ",.0f"), _ratio(ours, raw)])
    return table


def peer_costs(results):
    table = Table("What 1,000 peers take", "Of each peer: resident memory in KiB and descriptors, "
                  "after one call each. In the first two rows, of the one process that has them "
                  "all on its other side.",
                  ["case", "raw: KiB", "ours: KiB", "raw: descriptors", "ours: descriptors"])
    for kind, transport, name in (("fan_in", "ipc", "a sender, at its receiver"),
                                  ("fan_out", "ipc", "a receiver, at its sender"),
                                  ("crowd", "inproc", "a node of a crowd in one process")):
        cells = [_number(results.median(value, kind, transport, 1, PEERS[-1], way), factor, form)
                 for value, factor, form in (("peer_bytes", 1 / 1024, ",.1f"),
                                             ("peer_files", 1, ",.1f"))
                 for way in ("raw", "tables")]
        if set(cells) != {NONE}:
            table.rows.append([name, *cells])
    return table


def _number(value, factor, form):
    return NONE if value is None else format(value * factor, form)


def _ratio(ours, raw, is_good=None):
    if ours is None:
        return NONE
    ratio = round(ours / raw, 2)
    return Cell(f"{ratio:.2f}", None if is_good is None else is_good(ratio))
