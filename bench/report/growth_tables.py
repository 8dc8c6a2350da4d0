"""The tables of growth: with the batch, with a byte string, with the threads."""

from report.table import Cell, Table
from report.targets import FLATNESS, THREAD_LOSS


def batches(results):
    numbers = sorted({r.number for r in results.of_group("batch") if r.number is not None})
    table = Table("Cost against batch size",
                  "Nanoseconds a record, and the same less what one allocation and its release "
                  "of the batch's size cost by themselves; last, how far the dearest lies above "
                  f"the cheapest, aimed at {100 * FLATNESS:.0f} % without the allocator.",
                  ["message", *(f"{number}" for number in numbers), "apart"])
    for message in results.messages("batch"):
        costs = [results.ns("batch", message, "batch", number) for number in numbers]
        if None not in costs and costs:
            table.rows.append(_batch_row(message, costs))
        own = [less_allocator(results, message, number) for number in numbers]
        if None not in own and own:
            row = _batch_row("less the allocator", own)
            row[-1] = Cell(row[-1], _apart(own) <= FLATNESS)
            table.rows.append(row)
    return table


def less_allocator(results, message, number):
    """What a record of a batch costs without its share of the allocation; None if not measured."""
    costs = [results.ns("batch", message, what, number) for what in ("batch", "allocator")]
    return None if None in costs else costs[0] - costs[1]


def _batch_row(name, costs):
    return [name, *(f"{ns:.2f}" for ns in costs), f"{100 * _apart(costs):.0f} %"]


def _apart(costs):
    return max(costs) / min(costs) - 1


def lengths(results):
    message = "dbginfo_key_l2vpn"
    operations = {"copy": "copy", "pack_full": "pack", "unpack_compact_full": "unpack and free"}
    table = Table("Cost against the length of a byte string",
                  f"{message}: nanoseconds a record, and in brackets what each byte beyond the "
                  "line before costs.",
                  ["bytes", *operations.values()])
    before = {}
    for number in results.numbers("length", message, "copy"):
        row = [f"{number:,}"]
        for operation in operations:
            ns = results.ns("length", message, operation, number)
            if ns is None:
                return table
            earlier = before.get(operation)
            step = "" if earlier is None else f" ({(ns - earlier[1]) / (number - earlier[0]):.3f})"
            row.append(f"{ns:.1f}{step}")
            before[operation] = (number, ns)
        table.rows.append(row)
    return table


def threads(results):
    message = "l2vpn_sync_vll_pw"
    table = Table("Two threads",
                  f"{message}: million records a second, by the clock on the wall; what two do "
                  "beside one; and what a record costs a thread's processor beside one thread alone.",
                  ["operation", "one thread", "two threads", "gain", "processor time"])
    operations = dict.fromkeys(r.operation for r in results.of_group("thread"))
    for operation in operations:
        one, two = (results.find("thread", message, operation, count) for count in (1, 2))
        if one is not None and two is not None:
            gain = one.ns / two.ns
            table.rows.append([operation, f"{1e3 / one.ns:.0f}", f"{1e3 / two.ns:.0f}",
                               Cell(f"{gain:.2f}", gain >= 2 * (1 - THREAD_LOSS)),
                               Cell(f"{two.cpu_ns / one.cpu_ns:.2f}",
                                    two.cpu_ns / one.cpu_ns <= 1 + THREAD_LOSS)])
    return table
