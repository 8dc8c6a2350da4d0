"""The tables of costs: as multiples of the plain copy, and in nanoseconds."""

from report.table import Cell, Table
from report.targets import COLUMNS, MESSAGES, target

NONE = "–"

LANGUAGE_CALLS = ("pack", "send", "unpack")


def ratios(results):
    table = Table(
        "Cost as a multiple of the plain copy",
        "Measured / aimed at. Missed where marked. Unpacking a record that owns memory includes "
        "giving it back; its plain copy includes its parts.",
        ["message", "copy ns", *COLUMNS.values()])
    for message in results.messages("target"):
        copy = results.ns("target", message, "copy")
        if copy is not None:
            cells = [_ratio(results, message, operation, copy) for operation in COLUMNS]
            table.rows.append([message, f"{copy:.2f}", *cells])
    return table


def _ratio(results, message, operation, copy):
    ns = results.ns("target", message, operation)
    if ns is None:
        return NONE
    aim = target(message, operation)
    if aim is None:
        return f"{ns / copy:.2f}"
    # As it is printed, so that nobody sees 2.50 / 2.5 marked as missed.
    return Cell(f"{ns / copy:.2f} / {aim:g}", good=round(ns / copy, 2) <= aim)


def exact_room(results):
    """For the messages that something is aimed at."""
    table = Table("Packing into exactly the room there is",
                  "Multiples of the plain copy, sparse records. With at least 1,024 bytes of room no "
                  "record can fail to fit; where the room is just what the record takes, its size "
                  "has to be worked out before anything is written.",
                  ["message", "room to spare", "exactly the room"])
    for message in MESSAGES:
        copy, ample, exact = (results.ns("target", message, operation)
                              for operation in ("copy", "pack_sparse", "pack_exact_sparse"))
        if None not in (copy, ample, exact):
            table.rows.append([message, f"{ample / copy:.2f}", f"{exact / copy:.2f}"])
    return table


def nanoseconds(results):
    operations = {"copy": "copy", **COLUMNS, "free": "free alone"}
    table = Table("Cost in nanoseconds a record",
                  "Medians of the repetitions. Free alone: 4,096 live records one after the other.",
                  ["message", *operations.values()])
    for message in results.messages("target"):
        table.rows.append([message, *(
            _number(results.ns("target", message, operation)) for operation in operations)])
    return table


def languages(results):
    """The C++ header beside the C calls."""
    table = Table("From C and from C++",
                  "Nanoseconds a record, C / C++, full records; compact packing and unpacking, with "
                  "the clearing of the record before and its release after.",
                  ["message", *LANGUAGE_CALLS])
    for message in results.messages("cpp"):
        table.rows.append([message, *(" / ".join(
            _number(results.ns("cpp", message, f"{call}_{language}")) for language in ("c", "cpp"))
            for call in LANGUAGE_CALLS)])
    return table


def _number(value):
    return NONE if value is None else f"{value:,.1f}"


def spread(results):
    """A sentence on how far the repetitions lie apart."""
    spreads = sorted(r.spread for r in results.all()
                     if r.spread is not None and r.group != "thread")
    if not spreads:
        return "Nothing was repeated: the figures are a first look."
    runs = results.context["runs"]
    return (f"Medians of {runs} {'run' if runs == 1 else 'runs'}; within one, the repetitions' standard "
            f"deviation is {100 * spreads[len(spreads) // 2]:.1f} % of their mean in half of the "
            f"cases, {100 * spreads[-1]:.0f} % in the worst.")
