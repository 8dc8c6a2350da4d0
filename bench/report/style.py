"""How the plots look: one colour for one thing throughout."""

import base64
import io
import re

import matplotlib
from matplotlib import pyplot

matplotlib.use("Agg")

INK = "#22303c"
FAINT = "#8795a1"
GRID = "#e4e9ed"
COPY = "#9aa5b1"
MISSED = "#d1603d"
OPERATIONS = {
    "copy": ("plain copy", COPY),
    "single": ("send, single", "#14506b"),
    "batch": ("send, batch", "#2a9d8f"),
    "unpack_fixed": ("unpack fixed", "#5b8fd1"),
    "pack_full": ("pack", "#7b4b94"),
    "unpack_compact_full": ("unpack compact", "#d18f2c"),
}
OURS_FIXED = "#14506b"
OURS_COMPACT = "#7b4b94"
PEERS = "#c3ccd4"
WAYS = {
    "raw": ("raw ZeroMQ", COPY),
    "tables": ("ours, tables packed before", "#2a9d8f"),
    "records": ("ours, from record to record", "#14506b"),
}
SERIES = ("#14506b", "#2a9d8f", "#d18f2c", "#7b4b94", "#d1603d")

pyplot.rcParams.update({
    "font.family": "DejaVu Sans", "font.size": 10, "text.color": INK, "axes.labelcolor": INK,
    "axes.edgecolor": FAINT, "axes.titlesize": 11, "axes.titleweight": "bold",
    "axes.titlelocation": "left", "axes.spines.top": False, "axes.spines.right": False,
    "axes.grid": True, "axes.axisbelow": True, "grid.color": GRID, "grid.linewidth": 0.8,
    "xtick.color": INK, "ytick.color": INK, "xtick.labelsize": 9, "ytick.labelsize": 9,
    "legend.frameon": False, "figure.facecolor": "white", "svg.hashsalt": "mesh_l2vpn",
    "svg.fonttype": "none",
})


def plain_numbers(axis):
    """1,000 rather than 10^3, and no labels between."""
    axis.set_major_formatter(matplotlib.ticker.FuncFormatter(lambda value, _: f"{value:,g}"))
    axis.set_minor_formatter(matplotlib.ticker.NullFormatter())


def short(message):
    return message.removeprefix("l2vpn_sync_").removeprefix("l2vpn_stat_").removesuffix("_l2vpn")


def label_ends(axes, ends):
    """Writes (x, y, text, colour) right of the lines' ends, moved apart where they would touch."""
    axes.figure.canvas.draw()
    to_pixels, gap = axes.transData, 14 * axes.figure.dpi / 100
    placed = None
    for x, y, text, colour in sorted(ends, key=lambda end: end[1]):
        _, pixel = to_pixels.transform((x, y))
        placed = pixel if placed is None else max(pixel, placed + gap)
        axes.annotate(text, (x, y), xytext=(8, (placed - pixel) * 72 / axes.figure.dpi),
                      textcoords="offset points", color=colour, va="center", fontsize=9,
                      annotation_clip=False)


def svg(figure):
    buffer = io.StringIO()
    figure.savefig(buffer, format="svg", bbox_inches="tight", metadata=dict.fromkeys(
        ("Creator", "Date", "Format", "Type")))
    pyplot.close(figure)
    return small(buffer.getvalue()).encode()


def small(text):
    """A line an element, without comments, and with positions to a tenth of a point."""
    def shorten(element):
        rounded = re.sub(r"\d+\.\d{2,}", lambda number: f"{float(number[0]):.1f}", element[0])
        return re.sub(r"\s+", " ", re.sub(r' transform="rotate\(-0 [^"]*"', "", rounded))

    text = re.sub(r"<!--.*?-->|<!DOCTYPE.*?>", "", text, flags=re.DOTALL)
    text = re.sub(r"<[^>]*>", shorten, text)
    return "".join(f"{line.strip()}\n" for line in text.splitlines() if line.strip())


def svg_address(figure):
    return "data:image/svg+xml;base64," + base64.b64encode(svg(figure)).decode()
