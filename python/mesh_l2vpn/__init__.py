"""The messages of the Layer-2 VPN feature: packed, unpacked, verified, explained.

    import mesh_l2vpn as m

    update = m.l2vpn_sync_vpls_ac_update(f0=7, f1={"f0": 42})
    m.unpack(update.pack(), m.l2vpn_sync_vpls_ac_update) == update
"""
from importlib import import_module

from .errors import *  # noqa: F401,F403
from .records import Field, Record, messages, unpack

# Found when they are first asked for, so that importing the package is quick.
_LATER = {
    name: module
    for module, names in {
        "arrays": "Array Packed array packed",
        "captures": "CaptureError CaptureReader CaptureWriter Captured read_capture write_capture",
        "inspection": "Candidate Explanation Verdict explain identify set_limit verify",
        "node": "Node Received",
        "node_errors": "AddressInUse BadArgument BadConfiguration Busy NoDestination NodeError"
        " NodeOutOfMemory NotOpen NothingArrived QueueFull Refused SystemFailure Undelivered",
        "node_statistics": "PeerEvent PeerStatistics Statistics",
        "table": "Table",
        "testing": "MeshNodes",
    }.items()
    for name in names.split()
}


def __getattr__(name):
    if name in _LATER:
        found = getattr(import_module("." + _LATER[name], __name__), name)
    elif name in messages:
        found = messages[name]
    else:
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
    globals()[name] = found
    return found


def __dir__():
    return sorted({*globals(), *_LATER, *messages})
