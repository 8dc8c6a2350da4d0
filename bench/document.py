#!/usr/bin/env python3
"""Writes the results of docs/transport-performance.md, and the plots of the documents, to docs/.
Needs matplotlib.

document.py DIRECTORY      with transport.json, *.cases.json or both
"""

import sys
from pathlib import Path

from report import bars, lines, results, style, table, transport_tables

DOCS = Path(__file__).parent.parent / "docs"
HEADING = "## Results\n"


def keep(name, figure):
    if figure is None:
        return
    (DOCS / "plots").mkdir(exist_ok=True)
    (DOCS / "plots" / f"{name}.svg").write_bytes(style.svg(figure))


def document_transport(measured):
    keep("transport-rate", bars.beside_raw(measured, "rate", "records_per_second", 1e-3,
                                           "thousand records a second"))
    keep("transport-latency", bars.beside_raw(measured, "latency", "median_us", 1,
                                              "round trip, microseconds"))
    keep("transport-peers", lines.against_peers(measured))
    plots = {"Rate": "transport-rate", "Latency": "transport-latency",
             "Many peers": "transport-peers"}
    parts = [transport_tables.surroundings(measured) + " Bold figures miss their aim.\n"]
    for made in transport_tables.all_tables(measured):
        parts.append(table.as_markdown(made))
        if made.title in plots:
            parts.append(f"![{made.title}](plots/{plots[made.title]}.svg)\n")
    page = DOCS / "transport-performance.md"
    before = page.read_text().split(HEADING)[0]
    page.write_text(before + HEADING + "\n" + "\n".join(parts))


def main():
    directory = Path(sys.argv[1])
    if (directory / "transport.json").exists():
        document_transport(transport_tables.Results(directory / "transport.json"))
    if any(directory.glob("*.cases.json")):
        keep("codec", bars.against_peers(results.load(directory), "full", only="l2vpn_sync_vll_pw"))


if __name__ == "__main__":
    main()
