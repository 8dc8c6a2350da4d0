"""Which tables are shown where."""

import statistics
from pathlib import Path

from report import (cost_tables, growth_tables, inspect_tables, peer_tables, results,
                    size_tables)


class Measured:
    """A directory of results, and the library that they were measured with, where it is known."""

    def __init__(self, directory, library=None):
        self.results = results.load(directory)
        self.sizes = None if library is None else size_tables.Sizes(library)
        load_times = Path(directory) / "load_time.txt"
        self.load_time_us = None
        if load_times.exists():
            self.load_time_us = statistics.median(map(int, load_times.read_text().split())) / 1000


def surroundings(measured, machine=None):
    """Where, with what and how steadily; `machine` for one that the processor's name says too much
    or too little of."""
    context = measured.results.context
    machine = machine or f"{context['num_cpus']} cores of {context['processor']}"
    return (f"{context['date'][:10]}, {machine}, {context['compiler']}, "
            f"{optimisation(context['flags'])}. {cost_tables.spread(measured.results)}")


def optimisation(flags):
    """Without the -O options that a later one overrides."""
    levels = [flag for flag in flags.split() if flag.startswith("-O")]
    return " ".join(flag for flag in flags.split() if flag not in levels[:-1])


def of_the_console(measured):
    return of_the_targets(measured) + _with_rows([
        *_peers(measured.results), inspect_tables.cost(measured.results),
        growth_tables.batches(measured.results), growth_tables.threads(measured.results), *_sizes(measured, brief=True)])


def of_the_targets(measured):
    return _with_rows([cost_tables.ratios(measured.results)])


def of_the_details(measured, brief=False):
    """`brief`: without the long tables."""
    return _with_rows([cost_tables.exact_room(measured.results),
                       cost_tables.nanoseconds(measured.results),
                       cost_tables.languages(measured.results), *_peers(measured.results),
                       inspect_tables.cost(measured.results),
                       growth_tables.batches(measured.results),
                       growth_tables.lengths(measured.results),
                       growth_tables.threads(measured.results)] + _sizes(measured, brief))


def _peers(measured):
    if not measured.of_group("peer"):
        return []
    return [*(peer_tables.cost(measured, direction, fill)
              for direction in ("encode", "decode") for fill in ("full", "sparse")),
            peer_tables.sizes(measured)]


def _sizes(measured, brief):
    if measured.sizes is None:
        return []
    long_ones = [] if brief else [size_tables.by_message(measured.sizes)]
    return [size_tables.summary(measured.sizes, measured.load_time_us),
            size_tables.by_operation(measured.sizes), *long_ones]


def _with_rows(tables):
    return [table for table in tables if table.rows]
