"""The table of libmesh_l2vpn_inspect: verdicts beside unpacking, JSON beside a peer's."""

from report.cost_tables import NONE
from report.table import Cell, Table

FILLS = ("full", "sparse")

# The verdict on a compact message, as a multiple of its unpacking.
MOST_OF_UNPACK = 3

# JSON of a message, in nanoseconds: a million messages a second.
MOST_OF_JSON = 1000


def cost(results):
    table = Table("Verdicts and JSON",
                  "Of compact messages, full / sparse. Verify: as a multiple of unpack. JSON: "
                  "nanoseconds; ours verifies and decodes the bytes first, Protocol Buffers prints "
                  "an object that is there.",
                  ["message", "verify / unpack, full", "sparse", "JSON, full", "sparse",
                   "Protocol Buffers, full", "sparse"])
    for message in results.messages("inspect"):
        ns = {operation: results.ns("inspect", message, operation)
              for name in ("unpack", "verify", "json", "protobuf_json")
              for operation in (f"{name}_full", f"{name}_sparse")}
        table.rows.append([
            message, *(_ratio(ns[f"verify_{fill}"], ns[f"unpack_{fill}"]) for fill in FILLS),
            *(_json(ns[f"json_{fill}"], ns[f"protobuf_json_{fill}"]) for fill in FILLS),
            *(_number(ns[f"protobuf_json_{fill}"]) for fill in FILLS)])
    return table


def _ratio(verify, unpack):
    if verify is None or unpack is None:
        return NONE
    return Cell(f"{verify / unpack:.2f}", good=round(verify / unpack, 2) <= MOST_OF_UNPACK)


def _json(ours, theirs):
    if ours is None:
        return NONE
    return Cell(f"{ours:,.0f}", good=ours <= MOST_OF_JSON and (theirs is None or ours < theirs))


def _number(value):
    return NONE if value is None else f"{value:,.0f}"
