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
:root { font: 14px/1.4 system-ui, sans-serif; color-scheme: light;
  --paper: #fafafa; --ink: #1c1c1c; --dim: #666; --red: #b3001b; --orange: #8a5300;
  --head: #d8e6fb; --entry: #d3f1f3; --value: #dcf3da; --word: #f1dff5; --unread: #fdf0c4;
  --slot: #fff3dd; --lit: #ffb020; --lit-row: #ffe2ad; --target: #6538e0; --target-row: #e2d9fb; }
@media screen and (prefers-color-scheme: dark) { :root { color-scheme: dark;
  --paper: #16181c; --ink: #e8e8e8; --dim: #9a9a9a; --red: #ff8a8a; --orange: #f0b45c;
  --head: #1f3c66; --entry: #164a50; --value: #1f4d26; --word: #50305f; --unread: #544610;
  --slot: #3a3014; --lit: #ffb020; --lit-row: #5c4413; --target: #6f4ae8; --target-row: #3b2d70; } }
body { margin: 0; padding: 12px 16px; box-sizing: border-box; height: 100vh; display: flex;
       flex-direction: column; background: var(--paper); color: var(--ink); }
h1 { font-size: 18px; margin: 0 0 2px; overflow-wrap: anywhere; }
.summary { margin: 0 0 10px; color: var(--dim); }
.bad { color: var(--red); font-weight: 600; }
#summary { max-height: 25vh; overflow: auto; flex: none; }
main { flex: 1; min-height: 0; display: grid; grid-template-rows: minmax(0, 1fr); grid-template-columns: max-content minmax(0, 1fr); gap: 20px; }
section { overflow: auto; position: relative; scrollbar-gutter: stable; }
#bytes, td { font: 13px/1.5 ui-monospace, "DejaVu Sans Mono", monospace; }
#bytes { padding-right: 3px; position: relative; white-space: pre; }
.row { display: flex; gap: 1ch; break-inside: avoid; }
.half + .half .at { display: none; }
.at { color: var(--dim); user-select: none; padding-right: 2ch; }
.byte { padding: 1px 3px; border-radius: 2px; cursor: pointer; }
.root, .head { background: var(--head); } .entry { background: var(--entry); }
.scalar, .contents { background: var(--value); } .word, .length { background: var(--word); }
.unknown, .unread { background: var(--unread); } .padding { color: var(--dim); }
.fault { outline: 2px solid var(--red); outline-offset: -1px; }
.tolerated { outline: 2px solid var(--orange); outline-offset: -1px; }
.slot { box-shadow: inset 0 -3px var(--lit); }
.lit { background: var(--lit); color: #000; } .target { background: var(--target); color: #fff; }
table { border-collapse: collapse; width: 100%; }
td, th { text-align: left; padding: 1px 8px 1px 4px; vertical-align: top; overflow-wrap: anywhere; }
th { position: sticky; top: 0; background: var(--paper); font-weight: 600; z-index: 1; }
tr { scroll-margin-top: 28px; break-inside: avoid; }
tbody tr { cursor: pointer; }
tr:focus { outline: 2px solid var(--target); outline-offset: -2px; }
tr.slot { box-shadow: none; background: var(--slot); }
tr.target { background: var(--target-row); color: var(--ink); }
tr.lit { background: var(--lit-row); color: var(--ink); }
.key { display: inline-block; padding: 0 6px; margin-right: 6px; border-radius: 2px; color: var(--ink); }
.key.padding { color: var(--dim); }
.message { color: var(--red); } .message.soft { color: var(--orange); }
tr.lit .message, tr.target .message, tr.slot .message { color: inherit; font-weight: 600; }
svg { position: absolute; left: 0; top: 0; pointer-events: none; overflow: visible; }
path { fill: none; stroke: var(--target); stroke-width: 2; opacity: .8; }
@media (max-width: 900px) { main { grid-template-columns: minmax(0, 1fr); grid-template-rows: 2fr 3fr; } }
@media (max-width: 640px) {
  body { padding: 8px; }
  #hint { display: none; }
  .row { display: block; } .half + .half .at { display: inline; }
  thead { display: none; }
  tr { display: grid; grid-template-columns: 6ch 9ch 1fr; border-bottom: 1px solid var(--head); }
  td:nth-child(4) { grid-column: 3; }
}
@media print {
  body, main { display: block; height: auto; }
  #summary { max-height: none; overflow: visible; }
  #hint, svg { display: none; }
  section { overflow: visible; margin-bottom: 12px; }
  th { position: static; }
  * { print-color-adjust: exact; }
}
</style>
</head>
<body>
<h1 id="title"></h1>
<p class="summary" id="summary"></p>
<p class="summary"><span class="key root">root, head</span><span class="key entry">entry</span><span
class="key scalar">value, contents</span><span class="key word">offset word, length</span><span
class="key unread">unknown, not read</span><span class="key padding">padding</span><span
class="key fault">fault</span> <span id="hint">Click: keep. Tab, &uarr; &darr;: next. &rarr; &larr;: along a
link, back. Esc: let go.</span></p>
<main><section><div id="bytes"></div></section><section><table id="ranges"></table></section></main>
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

// A row has two halves of eight bytes, side by side where the window is wide enough.
const cells = new Map();
const dump = document.getElementById("bytes");
const width = String(data.length).length;
const ownerAt = walk();
let end = 0, row, half;
const leaveOut = count => {
  if (count) dump.append(text("div", `${"".padStart(width)}  ... ${count} more bytes`, "at"));
};
for (const piece of data.pieces) {
  leaveOut(piece.at - end);
  piece.hex.match(/../g).forEach((byte, index) => {
    const at = piece.at + index, owner = ownerAt(at);
    if (at % 16 === 0) dump.append(row = text("div", "", "row"));
    if (at % 8 === 0) {
      row.append(half = text("div", "", "half"));
      half.append(text("span", String(at).padStart(width), "at"));
    }
    const part = owner < 0 ? "" : data.ranges[owner].part;
    const cell = text("span", byte, `byte ${part} ${faultAt.get(at) || ""}`);
    cell.dataset.range = owner;
    cell.dataset.at = at;
    cells.set(at, cell);
    half.append(cell);
  });
  end = piece.at + piece.hex.length / 2;
}
leaveOut(data.length - end);

const table = document.getElementById("ranges");
const head = table.createTHead().insertRow();
for (const name of ["byte", "slot", "meaning", "value"]) head.append(text("th", name));
const body = table.createTBody();
// Shows each fault once, at the first range that begins where it does.
const faults = [...data.faults].sort((one, other) => one.at - other.at);
const slots = new Map();
const rows = data.ranges.map((range, index) => {
  const row = body.insertRow();
  row.dataset.range = index;
  row.tabIndex = 0;
  row.append(text("td", range.at), text("td", range.path), text("td", range.meaning));
  const value = text("td", range.value);
  const next = index + 1 < data.ranges.length ? data.ranges[index + 1].at : range.at + range.size;
  while (faults.length && faults[0].at < Math.max(range.at + 1, next)) {
    const fault = faults.shift();
    value.append(" ", text("span", fault.text, fault.tolerated ? "message soft" : "message"));
  }
  row.append(value);
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
  line.append(path);
};
// The range that each range points to, or -1.
const targets = data.ranges.map(() => -1);
const targetAt = walk();
[...data.ranges.keys()].filter(index => data.ranges[index].target >= 0)
  .sort((one, other) => data.ranges[one].target - data.ranges[other].target)
  .forEach(index => targets[index] = targetAt(data.ranges[index].target));
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
    light(rows[targets[index]], "target");
    join(cells.get(range.at), cells.get(range.target));
  }
  if (scrolls) rows[index].scrollIntoView({block: "nearest"});
};

// A pinned range stays highlighted. The page's address names its first byte.
let pinned = -1;
const pin = (index, at) => {
  if (pinned >= 0) rows[pinned].removeAttribute("aria-current");
  pinned = data.ranges[index] ? index : -1;
  point(pinned, true);
  if (pinned >= 0) {
    rows[pinned].setAttribute("aria-current", "true");
    cells.get(at ?? data.ranges[pinned].at)?.scrollIntoView({block: "nearest"});
  }
  const place = pinned < 0 ? "" : "#" + (at ?? data.ranges[pinned].at);
  if (location.hash !== place) history.replaceState(null, "", place || location.pathname + location.search);
};
const rangeOf = event => {
  const element = event.target.closest("[data-range]");
  return element ? Number(element.dataset.range) : -1;
};
for (const [part, scrolls] of [[dump, true], [table, false]]) {
  part.addEventListener("mouseover", event => { if (pinned < 0) point(rangeOf(event), scrolls); });
  part.addEventListener("click", event => {
    const index = rangeOf(event), at = event.target.dataset.at;
    pin(index === pinned ? -1 : index, at === undefined ? undefined : Number(at));
  });
}
body.addEventListener("focusin", event => { if (pinned < 0) point(rangeOf(event), false); });
addEventListener("keydown", event => {
  if (event.key === "Escape") return pin(-1);
  const focused = document.activeElement.closest("tr[data-range]");
  if (!focused || event.ctrlKey || event.altKey || event.metaKey) return;
  const index = Number(focused.dataset.range);
  const next = {
    ArrowUp: () => index - 1,
    ArrowDown: () => index + 1,
    ArrowRight: () => targets[index],
    ArrowLeft: () => targets.indexOf(index),
    Enter: () => index,
  }[event.key]?.();
  if (next === undefined) return;
  event.preventDefault();
  if (event.key === "Enter") return pin(index === pinned ? -1 : index);
  if (!rows[next]) return;
  if (pinned >= 0) pin(next);
  rows[next].focus();
});
const visit = () => {
  const at = /^#[0-9]+$/.test(location.hash) ? Number(location.hash.slice(1)) : -1;
  pin(at < 0 ? -1 : walk()(at), at < 0 ? undefined : at);
};
addEventListener("hashchange", visit);
if (location.hash) visit();
</script>
</body>
</html>
)html";

}  // namespace inspect
