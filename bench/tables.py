#!/usr/bin/env python3
"""Prints the tables of a directory of results.

tables.py DIRECTORY [--markdown]
"""

import argparse

from report import cost_tables, results, table


def main():
    parser = argparse.ArgumentParser(description="Prints the tables of a directory of results.")
    parser.add_argument("directory", help="where the *.cases.json lie")
    parser.add_argument("--markdown", action="store_true", help="for docs/performance.md")
    options = parser.parse_args()
    measured = results.load(options.directory)
    render = table.as_markdown if options.markdown else table.as_text
    for make in (cost_tables.ratios, cost_tables.nanoseconds):
        print(render(make(measured)))


if __name__ == "__main__":
    main()
