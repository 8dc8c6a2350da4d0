"""The tables of the peers: other libraries at the same work, beside ours."""

from report.cost_tables import NONE
from report.table import Cell, Table

# As their cases are called, and as they call themselves.
PEERS = {"capnp": "Cap'n Proto", "protobuf": "Protocol Buffers", "msgpack": "msgpack",
         "nanopb": "nanopb"}

# Ours: its heading, and the operation by direction and fill. The fixed arrangement does the same
# whatever the values are.
OURS = {
    "ours, fixed": {"encode": "single", "decode": "unpack_fixed"},
    "ours, compact": {"encode": "pack_{fill}", "decode": "unpack_compact_{fill}"},
}


def names():
    return [*OURS, *PEERS.values()]


def costs(results, message, direction, fill):
    """The Result of each of ours and of the peers, by name; None where it was not measured."""
    found = {}
    for name, operations in OURS.items():
        operation = operations[direction].format(fill=fill)
        # A message that is sent compact has no fixed arrangement.
        is_fixed = results.find("target", message, "unpack_fixed") is not None
        found[name] = (results.find("target", message, operation)
                       if is_fixed or name != "ours, fixed" else None)
    for peer, name in PEERS.items():
        found[name] = results.find("peer", message, f"{peer}_{direction}_{fill}")
    return found


def cost(results, direction, fill):
    table = Table(f"Peers: {direction} ({fill})",
                  "Nanoseconds a record. Ours verifies or writes the self-describing table; the "
                  "fixed arrangement's encoding includes the call of the middleware.",
                  ["message", *names()])
    for message in results.messages("peer"):
        found = costs(results, message, direction, fill)
        theirs = [found[name].ns for name in PEERS.values() if found[name] is not None]
        table.rows.append([message, *(
            _cell(result, min(theirs) if name in OURS and theirs else None)
            for name, result in found.items())])
    return table


def _cell(result, fastest_peer):
    if result is None:
        return NONE
    return Cell(f"{result.ns:.1f}", None if fastest_peer is None else result.ns <= fastest_peer)


def sizes(results):
    table = Table("Peers: bytes", "Of an encoded record, on average: full / sparse.",
                  ["message", *names()])
    for message in results.messages("peer"):
        full, sparse = (costs(results, message, "encode", fill) for fill in ("full", "sparse"))
        table.rows.append([message, *(
            NONE if full[name] is None else f"{full[name].bytes:.0f} / {sparse[name].bytes:.0f}"
            for name in names())])
    return table
