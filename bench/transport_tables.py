#!/usr/bin/env python3
"""Prints the tables of the transport.

transport_tables.py RESULTS
"""

import sys

from report import table, transport_tables

results = transport_tables.Results(sys.argv[1])
for made in transport_tables.all_tables(results):
    print(table.as_text(made))
print(transport_tables.surroundings(results))
