"""The tables of bytes: what the library's code weighs, and where it lies."""

import bisect

from report import shared_object
from report.table import Cell, Table

TEXT_LIMIT = 320 * 1024
PAGE = 4096
_OPERATIONS = ("unpack", "free", "pack", "send", "other")


class Sizes:
    def __init__(self, library):
        self.symbols = list(shared_object.symbols(library))
        self.sections = shared_object.sections(library)
        self.relocations = shared_object.relocations(library)

    def bytes(self, **wanted):
        """Of the symbols whose attributes are as wanted."""
        return sum(symbol.size for symbol in self.symbols
                   if all(getattr(symbol, name) == value for name, value in wanted.items()))

    def mixed_pages(self):
        """Pages of 4 KiB that hold both reversed and hot code of messages."""
        pages = {False: set(), True: set()}
        for symbol in self.symbols:
            is_apart = symbol.cold and not symbol.reversed
            if symbol.is_code and symbol.message is not None and not is_apart:
                last = symbol.address + max(symbol.size, 1) - 1
                pages[symbol.reversed].update(range(symbol.address // PAGE, last // PAGE + 1))
        return len(pages[False] & pages[True])

    def stretches(self):
        """How many runs of addresses the reversed code lies in, with no hot code between."""
        code = [symbol for symbol in self.symbols if symbol.is_code]
        hot = sorted(symbol.address for symbol in code if not symbol.reversed and not symbol.cold)
        return len({bisect.bisect(hot, symbol.address) for symbol in code if symbol.reversed})


def summary(sizes, load_time_us):
    text = sizes.sections[".text"]
    reversed_code = sizes.bytes(is_code=True, reversed=True)
    table = Table("Size and loading", "Of the shared object.", ["what", "measured", "aimed at"])
    add = table.rows.append
    add(["machine code (.text)", Cell(f"{text:,} bytes", text <= TEXT_LIMIT),
         f"{TEXT_LIMIT:,} bytes"])
    add(["constants (.rodata, .data.rel.ro)",
         f"{sizes.sections['.rodata'] + sizes.sections['.data.rel.ro']:,} bytes", ""])
    add(["code of the reversed byte order",
         f"{reversed_code:,} bytes, {100 * reversed_code / text:.0f} % of it", ""])
    pages = sizes.mixed_pages()
    add(["stretches that the reversed code lies in", f"{sizes.stretches()}", ""])
    add(["4 KiB pages with hot and reversed code", Cell(f"{pages}", pages <= 2), "at most 2"])
    add(["relocations, by kind",
         ", ".join(f"{count} {kind}" for kind, count in sorted(sizes.relocations.items())), ""])
    if load_time_us is not None:
        add(["dlopen with constructors, median of fresh processes",
             Cell(f"{load_time_us:.0f} us", load_time_us < 1000), "below 1000 us"])
    return table


def by_operation(sizes):
    table = Table("Bytes of machine code by operation",
                  "Compact writing counts as pack, also where a sender uses it.",
                  ["operation", "plain", "reversed", "together"])
    for operation in _OPERATIONS:
        plain = sizes.bytes(is_code=True, operation=operation, reversed=False)
        reversed_code = sizes.bytes(is_code=True, operation=operation, reversed=True)
        table.rows.append([operation, f"{plain:,}", f"{reversed_code:,}",
                           f"{plain + reversed_code:,}"])
    return table


def by_message(sizes):
    """Largest first. A wrapper uses its record's code, which counts with the record."""
    messages = {symbol.message for symbol in sizes.symbols} - {None}
    table = Table("Bytes by message",
                  "Machine code by operation (plain byte order), of the reversed order, and "
                  "constants. Code that a wrapper shares with its record counts with the record: "
                  "messages named _delete use that of their _update. '(shared)' is what serves "
                  "every message.",
                  ["message", *_OPERATIONS[:-1], "reversed", "constants", "together"])
    rows = []
    for message in messages | {None}:
        plain = [sizes.bytes(message=message, is_code=True, reversed=False, operation=operation)
                 for operation in _OPERATIONS]
        plain = plain[:-1] if message is not None else plain[:-2] + [plain[-2] + plain[-1]]
        rows.append((message or "(shared)", [
            *plain, sizes.bytes(message=message, is_code=True, reversed=True),
            sizes.bytes(message=message, is_code=False)]))
    for name, values in sorted(rows, key=lambda row: -sum(row[1])):
        table.rows.append([name, *(f"{value:,}" for value in (*values, sum(values)))])
    return table
