#!/usr/bin/python3
"""Opens pages of explain --html in headless Chromium and checks highlights, the line to the target,
faults, pins, keys and links; and in a wide and a narrow window, light, dark and in print, width and
contrast.

    browser.py MESH-L2VPN [DIRECTORY]    saves screenshots of each page in the directory
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
from selenium.webdriver.common.keys import Keys

WIDTH, HEIGHT = 1366, 768
NARROW = 400

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

# What is wider than the window or than its parent.
WIDE = """
return [...document.querySelectorAll('body *')].filter(e => e.getBoundingClientRect().right > innerWidth
  || (e.scrollWidth > e.clientWidth && getComputedStyle(e).overflowX !== 'visible')).map(e => e.outerHTML.slice(0, 80))
"""

# The text with the least contrast to its background, as WCAG 2 computes it, and this contrast.
CONTRAST = """
const channels = color => color.match(/[0-9.]+/g).map(Number);
const luminance = color => channels(color).slice(0, 3).map(c => c / 255)
  .map(c => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
  .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
const backgroundOf = e => {
  for (; e; e = e.parentElement) {
    const [, , , alpha = 1] = channels(getComputedStyle(e).backgroundColor);
    if (alpha === 1) return getComputedStyle(e).backgroundColor;
    if (alpha !== 0) throw new Error("translucent: " + e.outerHTML.slice(0, 80));
  }
  return "rgb(255, 255, 255)";
};
let least = [21, ""];
const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
while (texts.nextNode()) {
  const e = texts.currentNode.parentElement;
  if (!texts.currentNode.data.trim() || !e.checkVisibility()) continue;
  const [one, other] = [getComputedStyle(e).color, backgroundOf(e)].map(luminance);
  const contrast = (Math.max(one, other) + 0.05) / (Math.min(one, other) + 0.05);
  if (contrast < least[0]) least = [contrast, e.outerHTML.slice(0, 80)];
}
return least;
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
    wide = browser.execute_script(WIDE)
    expect(not wide and browser.execute_script("return innerWidth") == WIDTH, f"wider than the window: {wide}")
    check_faults(browser, data["faults"])
    pointed, lines = check_pointing(browser, data["ranges"])
    expect(lines >= 3, f"{lines} lines were drawn")
    log = [entry for entry in browser.get_log("browser") if entry["level"] == "SEVERE"]
    expect(not log, log)
    keys = check_keys(browser, url, data["ranges"])
    check_looks(browser, f"{url}#{data['ranges'][keys]['at']}", picture)
    return f"{pointed} ranges pointed at, {lines} lines, {faults} faults"


def resize(browser, width):
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": HEIGHT, "deviceScaleFactor": 1, "mobile": False})


def show_as(browser, medium, scheme):
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "media": medium, "features": [{"name": "prefers-color-scheme", "value": scheme}]})


def check_looks(browser, url, picture):
    """Both widths, light, dark and printed, with a range pinned: nothing too wide, all text readable."""
    for width in (WIDTH, NARROW):
        resize(browser, width)
        for medium, scheme in (("screen", "light"), ("screen", "dark"), ("print", "dark")):
            show_as(browser, medium, scheme)
            browser.get("about:blank")
            browser.get(url)
            what = f"{width} pixels, {medium}, {scheme}"
            wide = browser.execute_script(WIDE)
            expect(not wide, f"{what}: wider than the window: {wide}")
            contrast, text = browser.execute_script(CONTRAST)
            expect(contrast >= 4.5, f"{what}: a contrast of {contrast:.2f}: {text}")
            paper = browser.execute_script("return getComputedStyle(document.body).backgroundColor")
            is_dark = int(paper.split("(")[1].split(",")[0]) < 128
            expect(is_dark == ((medium, scheme) == ("screen", "dark")), f"{what}: on {paper}")
            if medium == "print":
                cut = browser.execute_script(
                    "return [...document.querySelectorAll('section, #summary, body')]"
                    ".filter(e => getComputedStyle(e).overflowY !== 'visible').map(e => e.outerHTML.slice(0, 80))")
                expect(not cut, f"{what}: cut: {cut}")
            elif picture:
                browser.save_screenshot(f"{picture}-{width}-{scheme}.png")
    resize(browser, WIDTH)
    show_as(browser, "screen", "light")


def check_keys(browser, url, ranges):
    """Tab and arrows move along ranges and links, a click and Enter pin, and the address names the byte."""
    def press(key):
        ActionChains(browser).send_keys(key).perform()

    def state():
        return browser.execute_script(
            "return [Number(document.activeElement.dataset.range ?? -1), pinned, location.hash,"
            " [...document.querySelectorAll('tr.lit')].map(row => Number(row.dataset.range))]")

    def expect_state(focused, pinned, lit, what):
        place = "" if pinned < 0 else f"#{ranges[pinned]['at']}"
        expect(state() == [focused, pinned, place, [lit] if lit >= 0 else []], f"{what}: {state()}")

    browser.get("about:blank")
    browser.get(url)
    browser.execute_script("document.querySelector('tr[data-range]').focus()")
    expect_state(0, -1, 0, "focus")
    press(Keys.TAB)
    expect_state(1, -1, 1, "Tab")
    press(Keys.ARROW_UP)
    press(Keys.ARROW_UP)
    expect_state(0, -1, 0, "up, at the top")
    word = next(i for i, each in enumerate(ranges) if each["part"] == "word" and each["target"] >= 0)
    for _ in range(word):
        press(Keys.ARROW_DOWN)
    expect_state(word, -1, word, "down")
    press(Keys.ENTER)
    expect_state(word, word, word, "Enter")
    target = next(i for i, each in reversed(list(enumerate(ranges))) if each["at"] == ranges[word]["target"])
    press(Keys.ARROW_RIGHT)
    expect_state(target, target, target, "right, along the link")
    press(Keys.ARROW_LEFT)
    expect_state(word, word, word, "left, back")
    point_at(browser, 0)
    expect_state(word, word, word, "the pointer elsewhere")
    press(Keys.ESCAPE)
    expect_state(word, -1, -1, "Escape")
    browser.find_element(By.CSS_SELECTOR, f'#bytes .byte[data-range="{word}"]').click()
    expect(state()[1:3] == [word, f"#{ranges[word]['at']}"], f"click: {state()}")
    browser.find_element(By.CSS_SELECTOR, f'#bytes .byte[data-range="{word}"]').click()
    expect(state()[1:3] == [-1, ""], f"second click: {state()}")
    browser.get("about:blank")
    browser.get(f"{url}#{ranges[target]['at']}")
    expect(state()[1] == target, f"link: {state()}")
    browser.execute_script(f"location.hash = '#{ranges[word]['at']}'")
    expect(browser.execute_async_script("const done = arguments[0]; setTimeout(() => done(pinned), 50)") == word,
           f"link within the page: {state()}")
    for wrong in ("#", "#x", "#999999999", "#-1", "#1e3"):
        browser.get("about:blank")
        browser.get(url + wrong)
        expect(state()[1] == -1, f"{wrong}: {state()}")
    return word


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
    resize(browser, WIDTH)
    show_as(browser, "screen", "light")
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
                print(name, check_page(browser, url, faults, pictures and f"{pictures}/{name}"))
            name = "long"
            url = page_of(tool, "l2vpn_cfg_query_dfx_rec", "{}", ["--compact"], directory, name,
                          lambda encoded: items_of_one_text(4000, 16384))
            print(name, check_long_page(browser, url))
    except Wrong as wrong:
        sys.exit(f"FAILED: {name}: {wrong}")
    finally:
        browser.quit()


main()
