"""The tables of costs: as multiples of the plain copy, and in nanoseconds."""

from report.table import Cell, Table
from report.targets import COLUMNS, target


def ratios(results):
    table = Table(
        "Cost as a multiple of the plain copy",
        "Measured, and after the slash what is aimed at; '!' or bold: not reached. Records that own "
        "memory: unpacking includes giving it back.",
        ["message", "copy ns", *COLUMNS.values()])
    for message in results.messages("target"):
        copy = results.ns("target", message, "copy")
        if copy is None:
            continue
        cells = [_ratio(results, message, operation, copy) for operation in COLUMNS]
        table.rows.append([message, f"{copy:.2f}", *cells])
    return table


def _ratio(results, message, operation, copy):
    ns = results.ns("target", message, operation)
    if ns is None:
        return Cell("–")
    aim = target(message, operation)
    if aim is None:
        return Cell(f"{ns / copy:.2f}")
    return Cell(f"{ns / copy:.2f} / {aim:g}", good=ns / copy <= aim)


def nanoseconds(results):
    operations = {"copy": "copy", **COLUMNS, "free": "free alone"}
    table = Table("Cost in nanoseconds a record", "Medians of the repetitions.",
                  ["message", *operations.values()])
    for message in results.messages("target"):
        values = [results.ns("target", message, operation) for operation in operations]
        table.rows.append([message, *("–" if ns is None else f"{ns:.1f}" for ns in values)])
    return table
