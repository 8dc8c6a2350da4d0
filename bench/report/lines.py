"""The plots of growth: with the batch, with the record, with a byte string, with the peers."""

from matplotlib import pyplot

from report import style, transport_tables
from report.growth_tables import less_allocator


def against_batch(results):
    messages = results.messages("batch")
    if not messages:
        return None
    figure, axes = pyplot.subplots(figsize=(9, 4.2))
    ends = []
    for message, colour in zip(messages, style.SERIES):
        numbers = results.numbers("batch", message, "batch")
        costs = [results.ns("batch", message, "batch", number) for number in numbers]
        own = [less_allocator(results, message, number) for number in numbers]
        copy = results.ns("batch", message, "copy")
        axes.plot(numbers, costs, color=colour, marker="o", markersize=4, linewidth=2)
        if None not in own:
            axes.plot(numbers, own, color=colour, linestyle=(0, (6, 2)), linewidth=1.2)
        axes.plot(numbers, [copy] * len(numbers), color=colour, linestyle=(0, (1, 3)), linewidth=1)
        ends.append((numbers[-1], costs[-1], style.short(message), colour))
    axes.set_xscale("log", base=2)
    axes.set_xticks(numbers)
    axes.set_ylim(bottom=0)
    style.plain_numbers(axes.xaxis)
    axes.set_xlabel("records in a batch (dashed: less the allocator; dotted: the plain copy of one)")
    axes.set_ylabel("nanoseconds a record")
    figure.tight_layout()
    style.label_ends(axes, ends)
    return figure


# Beyond it lie the messages with a query's items, a hundred times as long as all others.
LARGEST_SHOWN = 1000


def against_record(results):
    """Every message: cost against the bytes of its record."""
    copies = {r.message: r for r in results.of_group("sweep")
              if r.operation == "copy" and r.bytes <= LARGEST_SHOWN}
    if not copies:
        return None
    figure, panels = pyplot.subplots(2, 2, figsize=(12, 7.4), sharex=True, sharey=True)
    operations = ("single", "unpack_fixed", "pack_full", "unpack_compact_full")
    for panel, operation in zip(panels.flat, operations):
        _copy_line(panel, results, copies.values())
        _sweep_points(panel, results, copies, operation)
        panel.set_ylim(bottom=0)
        panel.set_xlim(left=0)
    panels.flat[2].legend(loc="upper left", labelcolor=style.FAINT)
    figure.supxlabel("bytes of the record and its parts", fontsize=10)
    figure.supylabel("nanoseconds a record", fontsize=10)
    figure.tight_layout()
    return figure


def _copy_line(panel, results, copies):
    """Through the records without out-of-line parts; the mean where several weigh the same."""
    costs = {}
    for copy in copies:
        if not _owns(results, copy.message):
            costs.setdefault(copy.bytes, []).append(copy.ns)
    line = [(size, sum(found) / len(found)) for size, found in sorted(costs.items())]
    panel.plot(*zip(*line), color=style.COPY, linewidth=2)
    panel.annotate("plain copy", line[-1], xytext=(6, 0), textcoords="offset points",
                   va="center", color=style.FAINT, fontsize=9)


def _sweep_points(panel, results, copies, operation):
    label, colour = style.OPERATIONS[operation]
    measured = [(copies[r.message].bytes, r.ns, _owns(results, r.message))
                for r in results.of_group("sweep")
                if r.operation == operation and r.message in copies]
    for owns, marker, kind in ((False, "o", None), (True, "^", "with byte strings")):
        points = [(size, ns) for size, ns, is_owner in measured if is_owner == owns]
        if points:
            panel.scatter(*zip(*points), s=28, color=colour, marker=marker, alpha=0.7,
                          linewidths=0, label=kind)
    panel.set_title(label, color=colour)


def _owns(results, message):
    """Messages without a fixed arrangement are those with out-of-line parts."""
    return results.find("sweep", message, "unpack_fixed") is None


def against_length(results):
    message = "dbginfo_key_l2vpn"
    operations = ("copy", "pack_full", "unpack_compact_full")
    numbers = results.numbers("length", message, "copy")
    if not numbers:
        return None
    figure, panels = pyplot.subplots(1, 2, figsize=(12, 4.2))
    for panel in panels:
        ends = []
        for operation in operations:
            label, colour = style.OPERATIONS[operation]
            label += " and free" if operation == "unpack_compact_full" else ""
            costs = [results.ns("length", message, operation, number) for number in numbers]
            panel.plot(numbers, costs, color=colour, marker="o", markersize=4, linewidth=2)
            ends.append((numbers[-1], costs[-1], label, colour))
        panel.set_xlabel("bytes of the byte string")
        if panel is panels[1]:
            panel.set_xscale("log", base=2)
            panel.set_yscale("log")
        panel.set_ylabel("nanoseconds a record")
        style.plain_numbers(panel.xaxis)
        style.plain_numbers(panel.yaxis)
        panel.tick_params(axis="x", labelrotation=30)
    panels[0].set_title("linear")
    panels[1].set_title("logarithmic")
    figure.tight_layout(w_pad=3)
    style.label_ends(panels[1], ends)
    return figure


def against_peers(results):
    """Rates with many senders, and with many receivers."""
    figure, panels = pyplot.subplots(1, 2, figsize=(12, 3.6), sharey=True)
    all_ends = []
    for panel, (kind, heading) in zip(panels, transport_tables.FANS.items()):
        ends = []
        for way, label in (("raw", "raw ZeroMQ"), ("tables", "ours")):
            rates = [results.median("records_per_second", kind, "ipc", 1, peers, way)
                     for peers in transport_tables.PEERS]
            if None in rates:
                pyplot.close(figure)
                return None
            rates = [rate / 1e3 for rate in rates]
            colour = style.WAYS[way][1]
            panel.plot(transport_tables.PEERS, rates, color=colour, marker="o", markersize=4,
                       linewidth=2)
            ends.append((transport_tables.PEERS[-1], rates[-1], label, colour))
        all_ends.append(ends)
        panel.set_title(heading)
        panel.set_xscale("log")
        panel.set_ylim(bottom=0)
        panel.set_xlabel("peers")
        style.plain_numbers(panel.xaxis)
        style.plain_numbers(panel.yaxis)
    panels[0].set_ylabel("thousand calls of one record a second")
    figure.tight_layout(w_pad=9)
    for panel, ends in zip(panels, all_ends):
        style.label_ends(panel, ends)
    return figure
