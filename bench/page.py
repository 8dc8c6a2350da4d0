#!/usr/bin/env python3
"""Writes the page of a directory of results. Needs matplotlib.

page.py DIRECTORY OUTPUT [--library LIBRARY]
"""

import argparse
from pathlib import Path

from report import all_tables, page


def main():
    parser = argparse.ArgumentParser(description="Writes the page of a directory of results.")
    parser.add_argument("directory", help="where the *.cases.json lie")
    parser.add_argument("output", type=Path, help="the HTML file")
    parser.add_argument("--library", dest="shared_object", help="the shared object, for the tables of sizes")
    options = parser.parse_args()
    options.output.write_text(page.page(all_tables.Measured(options.directory, options.shared_object)))


if __name__ == "__main__":
    main()
