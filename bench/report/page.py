"""The page: every table and every plot in one file that needs no other."""

import html

from report import all_tables, bars, lines, style, table

_STYLE = """
body { font: 16px/1.5 system-ui, sans-serif; color: #22303c; max-width: 1060px; margin: 3em auto;
       padding: 0 1.5em; }
h1 { font-size: 1.9em; margin-bottom: 0.2em; } h2 { margin-top: 2.2em; font-size: 1.25em; }
p { max-width: 46em; } .where { color: #5d6b78; }
img { width: 100%; } .wide { overflow-x: auto; }
table { border-collapse: collapse; font-size: 13px; font-variant-numeric: tabular-nums; }
th { text-align: right; vertical-align: bottom; border-bottom: 2px solid #8795a1;
     padding: 4px 9px; font-weight: 600; }
td { text-align: right; padding: 3px 9px; border-bottom: 1px solid #e4e9ed; white-space: nowrap; }
th:first-child, td:first-child { text-align: left; padding-left: 0; }
.good { color: #1c7c70; } .missed { color: #c04a26; font-weight: 600; }
"""

_INTRODUCTION = """
What encoding and decoding cost beside moving the bytes. The yardstick is the plain copy: memcpy of
the same record, called so that the compiler cannot see through it, in the same run and on the same
4,096 different records. "Full" records have no zero scalar; in "sparse" ones each scalar is zero
with probability one half.
"""


def page(measured):
    parts = [_plot("Against what is aimed at", "How many plain copies an operation costs.",
                   bars.against_targets(measured.results))]
    parts += [table.as_html(made) for made in all_tables.of_the_targets(measured)]
    for fill, what in (("full", "no scalar is zero"), ("sparse", "half of the scalars are zero")):
        parts.append(_plot(
            f"Against other libraries, {fill} records",
            f"The same fields, struct to bytes and back; {what}. Shorter is faster; each mark on "
            "the axis is ten times the one before.", bars.against_peers(measured.results, fill)))
    parts += [
        _plot("Every message", "Each mark is one message. Those with items of a query's result, "
              "a hundred times as long, cost what their copy costs and are left out.",
              lines.against_record(measured.results)),
        _plot("Against the batch", "One call sends a whole batch; the cost of one record in it.",
              lines.against_batch(measured.results)),
        _plot("Against the length of a byte string", "dbginfo_key_l2vpn.",
              lines.against_length(measured.results)),
        _plot("Two threads", "l2vpn_sync_vll_pw, by the clock on the wall.",
              bars.with_threads(measured.results))]
    parts += [table.as_html(made) for made in all_tables.of_the_details(measured)]
    return (f"<!doctype html><html lang=en><meta charset=utf-8>"
            f"<meta name=viewport content='width=device-width'><title>libmesh_l2vpn: costs</title>"
            f"<style>{_STYLE}</style><h1>What libmesh_l2vpn costs</h1>"
            f"<p class=where>{html.escape(all_tables.surroundings(measured))}</p>"
            f"<p>{_INTRODUCTION}</p>{''.join(parts)}</html>\n")


def _plot(title, caption, figure):
    if figure is None:
        return ""
    return (f"<h2>{html.escape(title)}</h2><p>{html.escape(caption)}</p>"
            f"<img alt='{html.escape(title)}' src='{style.svg_address(figure)}'>")
