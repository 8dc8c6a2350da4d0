// The page around a reading's data. Its script draws the JSON between head and tail.
#pragma once

namespace inspect {

inline constexpr const char* htmlHead = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>mesh-l2vpn explain</title>
<style>
:root { color-scheme: light; font: 14px/1.4 system-ui, sans-serif; }
body { margin: 0; padding: 12px 16px; box-sizing: border-box; height: 100vh; display: flex;
       flex-direction: column; background: #fafafa; color: #1c1c1c; }
h1 { font-size: 18px; margin: 0 0 2px; }
.summary { margin: 0 0 10px; color: #555; }
.bad { color: #b3001b; font-weight: 600; }
#summary { max-height: 25vh; overflow: auto; flex: none; }
main { flex: 1; min-height: 0; display: grid; grid-template-rows: minmax(0, 1fr); grid-template-columns: max-content minmax(0, 1fr); gap: 20px; }
section { overflow: auto; position: relative; scrollbar-gutter: stable; }
pre, td, .mono { font: 13px/1.5 ui-monospace, "DejaVu Sans Mono", monospace; }
pre { margin: 0; padding-right: 3px; position: relative; }
.at { color: #999; user-select: none; }
.byte { padding: 1px 3px; border-radius: 2px; cursor: default; }
.root, .head { background: #d8e6fb; } .entry { background: #d3f1f3; }
.scalar, .contents { background: #dcf3da; } .word, .length { background: #f1dff5; }
.unknown, .unread { background: #fdf0c4; } .padding { color: #aaa; }
.fault { outline: 2px solid #d0021b; outline-offset: -1px; }
.tolerated { outline: 2px solid #d98200; outline-offset: -1px; }
.slot { box-shadow: inset 0 0 0 9px rgba(255, 190, 60, .35); }
.lit { background: #ffb020; color: #000; } .target { background: #7048e8; color: #fff; }
table { border-collapse: collapse; width: 100%; }
td, th { text-align: left; padding: 1px 8px 1px 4px; vertical-align: top; overflow-wrap: anywhere; }
th { position: sticky; top: 0; background: #fafafa; font-weight: 600; z-index: 1; }
tr { scroll-margin-top: 28px; }
tr.slot { box-shadow: none; } tr.slot td { background: #fff3dd; }
tr.lit td { background: #ffe2ad; } tr.target td { background: #e2d9fb; color: #000; }
.key { display: inline-block; padding: 0 6px; margin-right: 6px; border-radius: 2px; }
.message { color: #b3001b; } .message.soft { color: #8a5300; }
svg { position: absolute; left: 0; top: 0; pointer-events: none; overflow: visible; }
@media (max-width: 900px) { main { grid-template-columns: 1fr; grid-template-rows: 1fr 1fr; } }
</style>
</head>
<body>
<h1 id="title"></h1>
<p class="summary" id="summary"></p>
<p class="summary"><span class="key root">root, head</span><span class="key entry">entry</span><span
class="key scalar">value, contents</span><span class="key word">offset word, length</span><span
class="key unread">unknown, not read</span><span class="key padding">padding</span><span
class="key fault">fault</span></p>
<main><section><pre id="bytes"></pre></section><section><table id="ranges"></table></section></main>
<script type="application/json" id="data">)html";

inline constexpr const char* htmlTail = R"html(</script>
<script>
"use strict";
const data = JSON.parse(document.getElementById("data").textContent);
const text = (name, content, className) => {
  const element = document.createElement(name);
  element.textContent = content;
  if (className) element.className = className;
  return element;
};
document.title = data.message;
document.getElementById("title").textContent = data.message;
const summary = document.getElementById("summary");
summary.append(`${data.length} bytes, ${data.faultCount}. `, text("span", data.accepted ?
  "Receivers accept it." : "Receivers reject it.", data.accepted ? "" : "bad"));
for (const fault of data.faults) {
  summary.append(document.createElement("br"),
    text("span", fault.text, fault.tolerated ? "message soft" : "message"));
}
for (const note of data.notes) summary.append(document.createElement("br"), note);

// Finds the range of each byte: the last that begins at or before it and holds it. Positions asked
// for must not decrease.
const walk = () => {
  let next = 0;
  const open = [];
  return at => {
    for (; next < data.ranges.length && data.ranges[next].at <= at; ++next) open.push(next);
    while (open.length && at - data.ranges[open.at(-1)].at >= data.ranges[open.at(-1)].size) open.pop();
    return open.length ? open.at(-1) : -1;
  };
};
const faultAt = new Map();
for (const fault of data.faults) {
  for (let at = fault.at; at < fault.at + fault.size; ++at) {
    if (faultAt.get(at) !== "fault") faultAt.set(at, fault.tolerated ? "tolerated" : "fault");
  }
}

const cells = new Map();
const dump = document.getElementById("bytes");
const width = String(data.length).length;
const ownerAt = walk();
let end = 0;
const leaveOut = count => {
  if (count) dump.append(text("span", `${"".padStart(width)}  ... ${count} more bytes\n`, "at"));
};
for (const piece of data.pieces) {
  leaveOut(piece.at - end);
  const bytes = piece.hex.match(/../g);
  bytes.forEach((byte, index) => {
    const at = piece.at + index, owner = ownerAt(at);
    if (at % 16 === 0) dump.append(text("span", String(at).padStart(width) + "  ", "at"));
    const part = owner < 0 ? "" : data.ranges[owner].part;
    const cell = text("span", byte, `byte ${part} ${faultAt.get(at) || ""}`);
    cell.dataset.range = owner;
    cells.set(at, cell);
    dump.append(cell);
    if (at % 16 === 7) dump.append(" ");
    if (at % 16 === 15 || index === bytes.length - 1) dump.append("\n");
  });
  end = piece.at + bytes.length;
}
leaveOut(data.length - end);

const table = document.getElementById("ranges");
const head = document.createElement("tr");
for (const name of ["byte", "slot", "meaning", "value"]) head.append(text("th", name));
table.append(head);
// Shows each fault once, at the first range that begins where it does.
const faults = [...data.faults].sort((one, other) => one.at - other.at);
const slots = new Map();
const rows = data.ranges.map((range, index) => {
  const row = document.createElement("tr");
  row.dataset.range = index;
  row.append(text("td", range.at), text("td", range.path), text("td", range.meaning));
  const value = text("td", range.value);
  const next = index + 1 < data.ranges.length ? data.ranges[index + 1].at : range.at + range.size;
  while (faults.length && faults[0].at < Math.max(range.at + 1, next)) {
    const fault = faults.shift();
    value.append(" ", text("span", fault.text, fault.tolerated ? "message soft" : "message"));
  }
  row.append(value);
  table.append(row);
  if (range.path && !slots.has(range.path)) slots.set(range.path, []);
  if (range.path) slots.get(range.path).push(index);
  return row;
});

const line = document.createElementNS("http://www.w3.org/2000/svg", "svg");
dump.append(line);
const lit = [];
const light = (element, name) => { if (element) { element.classList.add(name); lit.push([element, name]); } };
const lightBytes = (range, name) => {
  for (let at = range.at; at < range.at + Math.min(range.size, 4096); ++at) light(cells.get(at), name);
};
const join = (from, to) => {
  line.replaceChildren();
  if (!from || !to) return;
  const place = cell => [cell.offsetLeft + cell.offsetWidth / 2, cell.offsetTop + cell.offsetHeight / 2];
  const [[x1, y1], [x2, y2]] = [place(from), place(to)];
  const path = document.createElementNS("http://www.w3.org/2000/svg", "path");
  // Bent, to be visible beside what it crosses; in the first row downwards, where there is room.
  const [right, down] = y1 !== y2 ? [40, 0] : [0, y1 < 20 ? 26 : -26];
  path.setAttribute("d", `M${x1},${y1} Q${(x1 + x2) / 2 + right},${(y1 + y2) / 2 + down} ${x2},${y2}`);
  path.setAttribute("style", "fill:none;stroke:#7048e8;stroke-width:2;opacity:.7");
  line.append(path);
};
const point = (index, scrolls) => {
  while (lit.length) { const [element, name] = lit.pop(); element.classList.remove(name); }
  line.replaceChildren();
  const range = data.ranges[index];
  if (!range) return;
  for (const other of slots.get(range.path) || []) {
    lightBytes(data.ranges[other], "slot");
    light(rows[other], "slot");
  }
  lightBytes(range, "lit");
  light(rows[index], "lit");
  if (range.target >= 0) {
    light(cells.get(range.target), "target");
    light(rows[walk()(range.target)], "target");
    join(cells.get(range.at), cells.get(range.target));
  }
  if (scrolls && rows[index]) rows[index].scrollIntoView({block: "nearest"});
};
const follow = scrolls => event => {
  const element = event.target.closest("[data-range]");
  point(element ? Number(element.dataset.range) : -1, scrolls);
};
dump.addEventListener("mouseover", follow(true));
table.addEventListener("mouseover", follow(false));
</script>
</body>
</html>
)html";

}  // namespace inspect
