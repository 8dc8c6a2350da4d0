#!/usr/bin/env python3
"""Prints what the shared object weighs, by operation and by message.

size_report.py LIBRARY
"""

import argparse

from report import size_tables, table


def main():
    parser = argparse.ArgumentParser(description="Prints what the shared object weighs.")
    parser.add_argument("shared_object", help="libmesh_l2vpn.so, not stripped")
    sizes = size_tables.Sizes(parser.parse_args().shared_object)
    for made in (size_tables.summary(sizes, None), size_tables.by_operation(sizes),
                 size_tables.by_message(sizes)):
        print(table.as_text(made))


if __name__ == "__main__":
    main()
