"""What an operation may cost, as a multiple of the plain copy of the record."""

# Operation of a case, and its column's heading.
COLUMNS = {
    "single": "single",
    "batch": "batch, per record",
    "unpack_fixed": "unpack fixed",
    "pack_full": "pack full",
    "pack_sparse": "pack sparse",
    "unpack_compact_full": "unpack compact full",
    "unpack_compact_sparse": "unpack compact sparse",
}

_ROWS = {
    "l2vpn_sync_stp": (2.5, 1.0, 2.0, 2.5, 4, 2.5, 4),
    "l2vpn_sync_vpls_ac": (2.5, 1.6, 2.5, 4, 6, 6, 8),
    "l2vpn_sync_vll_pw": (3.0, 2.2, 4.0, 8, 12, 10, 14),
    "l2vpn_sync_vpls_vsimac": (2.7, 1.8, 3.0, 6, 10, 8, 12),
    "l2vpn_sync_vpls_ac_update": (2.7, 2.0, 4.0, 5, 7, 8, 10),
    "l2vpn_sync_vll_pw_update": (3.5, 2.6, 5.5, 9, 13, 11, 15),
    "l2vpn_stat_pw_stat": (2.4, 1.5, 2.3, 5, 8, 6, 10),
}

MESSAGES = tuple(_ROWS)

# How far apart the costs of a record may lie over batches of 16 to 4,096 records.
FLATNESS = 0.20

# How far two threads may stay behind twice the work of one.
THREAD_LOSS = 0.10


def target(message, operation):
    """None where none is set."""
    row = _ROWS.get(message)
    return None if row is None else dict(zip(COLUMNS, row))[operation]
