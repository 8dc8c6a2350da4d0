#!/usr/bin/python3
"""Opens pages of explain --html in headless Chromium, hovers over ranges, and checks highlights, the
line to the target, faults, and the width.

    browser.py MESH-L2VPN [DIRECTORY]    saves a screenshot of each page in the directory
"""
import shutil
import socket
import struct
import subprocess
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By

WIDTH, HEIGHT = 1366, 768

WRAPPER = '{"f0": 7, "f1": {"f0": 42, "f6": 1042, "f8": "010203040506070809101112"}}'
LIST = '{"f0": {"f1": 3}, "f1": [{"f1": 7, "f0": "%s"}, {"f1": 8}]}' % ("61" * 32)

# What the page shows while the pointer is on a range.
LOOK = """
const index = arguments[0], range = data.ranges[index];
const lit = name => [...document.querySelectorAll("#bytes .byte." + name)].map(cell => Number(cell.dataset.range));
const rows = name => [...document.querySelectorAll("#ranges tr." + name)].map(row => Number(row.dataset.range));
const path = document.querySelector("#bytes svg path");
// Neither under the sticky head nor scrolled away.
const rowOf = name => document.querySelector("#ranges tr." + name);
const isSeen = row => {
  const box = row.getBoundingClientRect(), window = row.closest("section").getBoundingClientRect();
  return box.top >= document.querySelector("#ranges th").getBoundingClientRect().bottom - 1 && box.bottom <= window.bottom + 1;
};
let ends = null;
if (path) {
  const box = dump.getBoundingClientRect(), length = path.getTotalLength();
  ends = [0, length].map(at => {
    const point = path.getPointAtLength(at);
    const cell = document.elementsFromPoint(point.x + box.left, point.y + box.top).find(e => e.dataset.range);
    return cell ? Number(cell.dataset.range) : -1;
  });
}
return {lit: lit("lit"), slot: lit("slot"), target: lit("target"), rowsLit: rows("lit"), rowsSlot: rows("slot"),
        rowsTarget: rows("target"), ends, isRowSeen: isSeen(rowOf("lit"))};
"""


class Wrong(Exception):
    pass


def expect(is_so, what):
    if not is_so:
        raise Wrong(what)


def page_of(tool, message, json, arrangement, directory, name, change):
    encoded = subprocess.run([tool, "encode", "-m", message, *arrangement], input=json.encode(),
                             stdout=subprocess.PIPE, check=True).stdout
    done = subprocess.run([tool, "explain", "--html", "-m", message, "--binary"], input=change(encoded),
                          stdout=subprocess.PIPE)
    with open(f"{directory}/{name}.html", "wb") as file:
        file.write(done.stdout)
    return f"file://{directory}/{name}.html"


def point_at(browser, index):
    """Hovers over the first byte of the range."""
    cell = browser.find_element(By.CSS_SELECTOR, f'#bytes .byte[data-range="{index}"]')
    browser.execute_script("arguments[0].scrollIntoView({block: 'center'})", cell)
    ActionChains(browser, duration=0).move_to_element(cell).perform()
    return browser.execute_script(LOOK, index)


def check_pointing(browser, ranges):
    """Every range with a byte of its own is highlighted with its slot, and points to its target."""
    owner = {}
    for index, each in enumerate(ranges):
        owner.update((at, index) for at in range(each["at"], each["at"] + each["size"]))
    shown = set(browser.execute_script(
        'return [...document.querySelectorAll("#bytes .byte")].map(cell => Number(cell.dataset.range))'))
    lines = 0
    # A sample if there are many ranges. From the end, so that rows scroll in from above, where the head could hide them.
    chosen = [i for i in sorted(shown, reverse=True) if len(shown) < 60 or i < 20 or i % 7 == 0]
    for index in chosen:
        here, found = ranges[index], point_at(browser, index)
        what = f"range {index}, {here['path']} {here['meaning']}: {found}"
        expect(found["rowsLit"] == [index] and index in found["lit"] and found["isRowSeen"], what)
        slot = [i for i, each in enumerate(ranges) if here["path"] and each["path"] == here["path"]]
        expect(found["rowsSlot"] == slot, what)
        expect(set(found["slot"]) >= set(slot) & shown, what)
        target = owner.get(here["target"], -1)
        expect(found["rowsTarget"] == ([target] if target >= 0 else []), what)
        if target in shown and here["target"] == ranges[target]["at"]:
            lines += 1
            expect(found["target"] == [target] and found["ends"] is not None, what)
            expect(found["ends"] == [index, target], what)
        elif target < 0:
            expect(found["ends"] is None, what)
    return len(chosen), lines


def check_faults(browser, faults):
    for fault in faults:
        marked = browser.execute_script(
            "return [...Array(arguments[1]).keys()].map(i => cells.get(arguments[0] + i).className)", fault["at"],
            fault["size"])
        kind = "tolerated" if fault["tolerated"] else "fault"
        expect(all(kind in name.split() or "fault" in name.split() for name in marked), f"unmarked: {fault}")
        expect(fault["text"] in browser.find_element(By.ID, "summary").text, f"not in the summary: {fault}")
    told = browser.execute_script('return document.querySelectorAll("#ranges .message").length')
    expect(told == len(faults), f"{told} rows tell of {len(faults)} faults")
    count = browser.execute_script('return document.querySelectorAll("#bytes .fault, #bytes .tolerated").length')
    expect((count > 0) == bool(faults), f"{count} bytes are marked, for {len(faults)} faults")


def check_page(browser, url, faults, picture):
    browser.get(url)
    data = browser.execute_script("return data")
    expect(len(data["faults"]) == faults, f"{len(data['faults'])} faults, not {faults}")
    wide = browser.execute_script(
        "return [...document.querySelectorAll('body *')].filter(e => e.getBoundingClientRect().right > innerWidth"
        " || (e.scrollWidth > e.clientWidth && getComputedStyle(e).overflowX !== 'visible')).map(e => e.outerHTML.slice(0, 80))")
    expect(not wide and browser.execute_script("return innerWidth") == WIDTH, f"wider than the window: {wide}")
    check_faults(browser, data["faults"])
    pointed, lines = check_pointing(browser, data["ranges"])
    expect(lines >= 3, f"{lines} lines were drawn")
    log = [entry for entry in browser.get_log("browser") if entry["level"] == "SEVERE"]
    expect(not log, log)
    if picture:
        word = next(i for i, each in enumerate(data["ranges"]) if each["part"] == "word")
        point_at(browser, word)
        browser.save_screenshot(picture)
    return f"{pointed} ranges pointed at, {lines} lines, {faults} faults"


def items_of_one_text(items, size):
    """A list whose items point to one text that is too long for each: 17 ranges and a fault per item."""
    vtable, tables = 24 + 4 * items, 40 + 4 * items
    message = struct.pack("<I4H3I", 12, 8, 8, 0, 4, 8, 4, items)
    message += b"".join(struct.pack("<I", tables - 24) for _ in range(items))
    message += struct.pack("<8H", 14, 4, 4 * items, 0, 4 * items, 4 * items, 4 * items, 0)
    message += b"".join(struct.pack("<I", tables - vtable + 4 * item) for item in range(items))
    message += b"".join(struct.pack("<I", 4 * (items - item)) for item in range(items))
    return message + struct.pack("<I", size) + b"<" * size


def check_long_page(browser, url):
    """A page that would have 70,000 rows ends early, says so, and reacts to the pointer."""
    browser.get(url)
    data = browser.execute_script("return data")
    rows = browser.execute_script('return document.querySelectorAll("#ranges tr[data-range]").length')
    expect(rows == len(data["ranges"]) <= 10000, f"{rows} rows")
    summary = browser.find_element(By.ID, "summary").text
    expect("at least 1000 faults" in summary and "the page ends early" in summary, summary)
    expect("more bytes" in browser.find_element(By.ID, "bytes").text, "nothing is left out")
    told = browser.execute_script('return document.querySelectorAll("#ranges .message").length')
    expect(told <= len(data["faults"]), f"{told} rows tell of {len(data['faults'])} faults")
    found = point_at(browser, next(i for i, each in enumerate(data["ranges"]) if each["part"] == "entry"))
    expect(found["rowsLit"] and found["lit"], found)
    return f"{rows} rows"


def open_browser():
    options = Options()
    for word in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu"):
        options.add_argument(word)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    browser = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": WIDTH, "height": HEIGHT, "deviceScaleFactor": 1, "mobile": False})
    return browser


def spoilt(at, byte, cut):
    return lambda encoded: encoded[:at] + bytes([byte]) + encoded[at + 1:len(encoded) - cut]


def is_localhost_known():
    try:
        return bool(socket.getaddrinfo("localhost", None))
    except socket.gaierror:
        return False


def main():
    if not is_localhost_known():
        print("skipped: the browser's driver is spoken to by way of localhost, which this machine does not know")
        sys.exit(77)
    tool = sys.argv[1]
    pictures = sys.argv[2] if len(sys.argv) > 2 else None
    pages = [("wrapper", "l2vpn_sync_vpls_ac_update", WRAPPER, ["--fixed"], lambda encoded: encoded, 0),
             ("fault", "l2vpn_sync_vpls_ac", '{"f0": 42, "f8": "010000000000000000000000"}', ["--compact"], spoilt(44, 13, 2), 2),
             ("list", "l2vpn_cfg_query_dfx_rec", LIST, ["--compact"], lambda encoded: encoded, 0)]
    browser = open_browser()
    try:
        with tempfile.TemporaryDirectory() as directory:
            for name, message, json, arrangement, change, faults in pages:
                url = page_of(tool, message, json, arrangement, directory, name, change)
                print(name, check_page(browser, url, faults, pictures and f"{pictures}/{name}.png"))
            name = "long"
            url = page_of(tool, "l2vpn_cfg_query_dfx_rec", "{}", ["--compact"], directory, name,
                          lambda encoded: items_of_one_text(4000, 16384))
            print(name, check_long_page(browser, url))
    except Wrong as wrong:
        sys.exit(f"FAILED: {name}: {wrong}")
    finally:
        browser.quit()


main()
