"""The plots with bars: against what is aimed at, against the peers, with threads, beside raw
ZeroMQ."""

from matplotlib import pyplot

from report import peer_tables, style, transport_tables
from report.targets import COLUMNS, MESSAGES, target


def against_targets(results):
    """A panel an operation, a bar a message, and a tick where it should end."""
    messages = [message for message in MESSAGES if results.ns("target", message, "copy")]
    if not messages:
        return None
    figure, panels = pyplot.subplots(2, 4, figsize=(12, 5.6), sharey=True)
    for panel, (operation, heading) in zip(panels.flat, COLUMNS.items()):
        _target_panel(panel, results, messages, operation)
        panel.set_title(heading)
    legend = panels.flat[-1]
    legend.axis("off")
    legend.barh([0], [0], color=style.SERIES[1], label="as aimed at")
    legend.barh([0], [0], color=style.MISSED, label="missed")
    legend.plot([], [], color=style.INK, marker="|", markersize=12, markeredgewidth=2,
                linestyle="none", label="aimed at")
    legend.legend(loc="center left", fontsize=10)
    figure.supxlabel("multiple of the plain copy of the record", fontsize=10)
    figure.tight_layout()
    return figure


def _target_panel(panel, results, messages, operation):
    rows, ratios, aims = [], [], []
    for row, message in enumerate(messages):
        ns = results.ns("target", message, operation)
        if ns is not None:
            rows.append(row)
            ratios.append(ns / results.ns("target", message, "copy"))
            aims.append(target(message, operation))
    colours = [style.SERIES[1] if round(ratio, 2) <= aim else style.MISSED
               for ratio, aim in zip(ratios, aims)]
    panel.barh(rows, ratios, color=colours, height=0.62)
    panel.plot(aims, rows, color=style.INK, marker="|", markersize=13, markeredgewidth=2,
               linestyle="none")
    widest = max([*ratios, *aims], default=1)
    for row, ratio, aim in zip(rows, ratios, aims):
        panel.text(max(ratio, aim) + widest * 0.03, row, f"{ratio:.1f}", va="center", fontsize=8)
    panel.set_xlim(0, widest * 1.16)
    panel.set_yticks(range(len(messages)), [style.short(message) for message in messages])
    panel.tick_params(axis="y", length=0)
    panel.grid(axis="y", visible=False)
    if not panel.yaxis_inverted():
        panel.invert_yaxis()


def against_peers(results, fill, only=None):
    """A row of panels a message; encoding on the left, decoding on the right."""
    messages = [message for message in results.messages("peer") if only in (None, message)]
    if not messages:
        return None
    height = max(2.6, 1.75 * len(messages))
    figure, panels = pyplot.subplots(len(messages), 2, figsize=(12, height),
                                     sharex=True, squeeze=False)
    for row, message in zip(panels, messages):
        for panel, direction in zip(row, ("encode", "decode")):
            _peer_panel(panel, results, message, direction, fill)
    for panel, heading in zip(panels[0], ("struct to bytes", "bytes to struct")):
        panel.annotate(heading, (0, 1), xycoords="axes fraction", xytext=(0, 24),
                       textcoords="offset points", fontsize=12, fontweight="bold")
    for panel in panels[-1]:
        panel.set_xlabel("nanoseconds a record (logarithmic)")
    figure.tight_layout(h_pad=0.6)
    return figure


def _peer_panel(panel, results, message, direction, fill):
    found = peer_tables.costs(results, message, direction, fill)
    bars = [("plain copy", results.ns("target", message, "copy"), style.COPY)]
    colours = {"ours, fixed": style.OURS_FIXED, "ours, compact": style.OURS_COMPACT}
    bars += [(name, None if result is None else result.ns, colours.get(name, style.PEERS))
             for name, result in found.items()]
    names, values, fills = zip(*bars)
    panel.barh(range(len(bars)), [value or 1 for value in values], color=fills, height=0.72)
    panel.set_xscale("log")
    panel.set_xlim(1, 2000)
    for row, value in enumerate(values):
        text = "not its arrangement" if value is None else f"{value:.{0 if value >= 20 else 1}f}"
        panel.text(1.06 * (value or 1), row, text, va="center", fontsize=8)
    panel.set_yticks(range(len(bars)), names)
    panel.tick_params(axis="y", length=0, labelsize=8)
    panel.grid(axis="y", visible=False)
    panel.invert_yaxis()
    panel.set_title(message, fontsize=9, color=style.FAINT)
    style.plain_numbers(panel.xaxis)


def with_threads(results):
    """Records a second, one thread and two, and where twice the one would be."""
    operations = [operation for operation in style.OPERATIONS
                  if results.ns("thread", "l2vpn_sync_vll_pw", operation, 2)]
    if not operations:
        return None
    figure, axes = pyplot.subplots(figsize=(9, 3.6))
    for row, operation in enumerate(operations):
        label, colour = style.OPERATIONS[operation]
        one, two = (1e3 / results.ns("thread", "l2vpn_sync_vll_pw", operation, threads)
                    for threads in (1, 2))
        axes.barh(row - 0.19, one, height=0.34, color=colour, alpha=0.45)
        axes.barh(row + 0.19, two, height=0.34, color=colour)
        axes.plot([2 * one], [row + 0.19], color=style.INK, marker="|", markersize=13,
                  markeredgewidth=2)
        axes.annotate(f"{one:.0f}", (one, row - 0.19), xytext=(5, 0), textcoords="offset points",
                      va="center", fontsize=8)
        axes.annotate(f"{two:.0f}  ({two / one:.2f} times)", (max(two, 2 * one), row + 0.19),
                      xytext=(8, 0), textcoords="offset points", va="center", fontsize=8)
    axes.set_yticks(range(len(operations)), [style.OPERATIONS[name][0] for name in operations])
    axes.tick_params(axis="y", length=0)
    axes.grid(axis="y", visible=False)
    axes.margins(x=0.2)
    axes.invert_yaxis()
    axes.set_xlabel("million records a second; pale: one thread, full: two, mark: twice the one")
    figure.tight_layout()
    return figure


def beside_raw(results, kind, value, factor, unit):
    """A panel a transport; a group of bars for each size of a call, with our multiple of raw."""
    figure, panels = pyplot.subplots(1, len(transport_tables.TRANSPORTS), figsize=(12, 3.6),
                                     sharey=True)
    heights = []
    for panel, (transport, heading) in zip(panels, transport_tables.TRANSPORTS.items()):
        for group, records in enumerate(transport_tables.RECORDS):
            found = [results.median(value, kind, transport, records, 1, way) for way in style.WAYS]
            if None in found:
                continue
            heights += [factor * each for each in found]
            for row, (each, (label, colour)) in enumerate(zip(found, style.WAYS.values())):
                x, height = group + 0.28 * (row - 1), factor * each
                panel.bar(x, height, width=0.26, color=colour, label=None if group else label)
                if row > 0:
                    panel.annotate(f"{each / found[0]:.2f}", (x, height), xytext=(0, 3),
                                   textcoords="offset points", ha="center", fontsize=7,
                                   rotation=90)
        panel.set_title(heading)
        panel.set_xticks(range(len(transport_tables.RECORDS)), transport_tables.RECORDS)
        panel.grid(axis="x", visible=False)
    if not heights:
        pyplot.close(figure)
        return None
    panels[0].set_yscale("log")
    panels[0].set_ylim(min(heights) / 2, max(heights) * 3)
    style.plain_numbers(panels[0].yaxis)
    panels[0].set_ylabel(unit)
    figure.supxlabel("records of a call; on the bars: our multiple of raw ZeroMQ", fontsize=10)
    figure.tight_layout()
    figure.legend(*panels[0].get_legend_handles_labels(), loc="lower center", ncols=3,
                  bbox_to_anchor=(0.5, 0.99))
    return figure
