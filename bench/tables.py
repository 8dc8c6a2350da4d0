#!/usr/bin/env python3
"""Prints the tables of a directory of results.

tables.py DIRECTORY [--library LIBRARY] [--markdown [--machine TEXT]]
"""

import argparse

from report import all_tables, table


def main():
    parser = argparse.ArgumentParser(description="Prints the tables of a directory of results.")
    parser.add_argument("directory", help="where the *.cases.json lie")
    parser.add_argument("--library", dest="shared_object", help="the shared object, for the tables of sizes")
    parser.add_argument("--markdown", action="store_true", help="as for docs/performance.md")
    parser.add_argument("--machine", help="what to call the machine there")
    options = parser.parse_args()
    measured = all_tables.Measured(options.directory, options.shared_object)
    if options.markdown:
        print(all_tables.surroundings(measured, options.machine) + "\n")
        for made in [*all_tables.of_the_targets(measured),
                     *all_tables.of_the_details(measured, brief=True)]:
            print(table.as_markdown(made))
    else:
        for made in all_tables.of_the_console(measured):
            print(table.as_text(made))
        print(all_tables.surroundings(measured))


if __name__ == "__main__":
    main()
