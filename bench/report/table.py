"""A table as data, and as text, Markdown and HTML."""

import html
from dataclasses import dataclass, field


@dataclass
class Cell:
    text: str
    good: bool | None = None  # against what is aimed at, where something is


@dataclass
class Table:
    title: str
    note: str
    header: list
    rows: list = field(default_factory=list)  # lists of Cell or str, the first the row's name


def _text(cell):
    return cell.text if isinstance(cell, Cell) else cell


def _marked(cell):
    return _text(cell) + (" !" if isinstance(cell, Cell) and cell.good is False else "")


def as_text(table):
    lines = [table.header] + [[_marked(cell) for cell in row] for row in table.rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(table.header))]
    text = [table.title, table.note, ""]
    for line in lines:
        first, *others = (cell.ljust(width) if column == 0 else cell.rjust(width)
                          for column, (cell, width) in enumerate(zip(line, widths)))
        text.append("  ".join([first, *others]).rstrip())
    return "\n".join(text) + "\n"


def as_markdown(table):
    lines = [f"### {table.title}", "", table.note, "", _markdown_row(table.header),
             _markdown_row(["---"] + ["---:"] * (len(table.header) - 1))]
    for name, *cells in table.rows:
        shown = name if " " in name else f"`{name}`"
        lines.append(_markdown_row([shown] + [_bold_where_missed(cell) for cell in cells]))
    return "\n".join(lines) + "\n"


def _markdown_row(cells):
    return "| " + " | ".join(cells) + " |"


def _bold_where_missed(cell):
    return f"**{_text(cell)}**" if isinstance(cell, Cell) and cell.good is False else _text(cell)


def as_html(table):
    head = "".join(f"<th>{html.escape(cell)}</th>" for cell in table.header)
    body = "".join("<tr>" + "".join(_html_cell(cell) for cell in row) + "</tr>"
                   for row in table.rows)
    return (f"<h2>{html.escape(table.title)}</h2><p>{html.escape(table.note)}</p>"
            f'<div class="wide"><table><thead><tr>{head}</tr></thead>'
            f"<tbody>{body}</tbody></table></div>")


def _html_cell(cell):
    kind = ""
    if isinstance(cell, Cell) and cell.good is not None:
        kind = ' class="good"' if cell.good else ' class="missed"'
    return f"<td{kind}>{html.escape(_text(cell))}</td>"
