#!/usr/bin/env python3
"""Makes reports of the demo scene and looks at their pages in a browser."""

import argparse
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import urllib.parse

from browser import Browser

# What may stand in the name of a folder; the last byte is no UTF-8.
NAME = b"a \"b\" <i>&amp; 'c' #1 100% \xc3\xbc\xff"
SHOWN_NAME = NAME[:-1].decode() + "\ufffd"
META = {"title": "<script>throw 1</script>",
        "focus_points_640x480": [{"what": "</h3>\"'\n\x00", "x": 210, "y": 150}]}
ENTRIES = ["frame f1", "frame f4", "gpu f1", "gpu f4", "cpu"]
failures = []


def expect(is_so, what):
    if not is_so:
        failures.append(what)
        print("FAILED:", what)


class Zuqel:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder

    def run(self, *arguments):
        # The driver's libraries are unloaded before leaks are looked for.
        environment = dict(
            os.environ, ASAN_OPTIONS="detect_leaks=0:intercept_tls_get_addr=0")
        return subprocess.run([self.program, *arguments], cwd=self.folder,
                              env=environment, check=True, text=True,
                              errors="replace", stdout=subprocess.PIPE).stdout

    def report(self, *arguments):
        return self.run("report", "scenes", "--f-numbers", "1,4", "--makers",
                        "frame,gpu,cpu", *arguments)


def contents(folder):
    return {file.name: file.read_bytes() for file in folder.iterdir()}


def check_record(folder):
    entries = json.loads((folder / "report.json").read_text())["entries"]
    expect([f"{e['maker']} f{e['f_number']:g}" if e["f_number"] else e["maker"]
            for e in entries] == ENTRIES, "entries")
    for entry in entries:
        kept = entry["sharpness_kept"]
        expect((entry["scene"], entry["focus"]["x"], entry["focus"]["y"]) ==
               (SHOWN_NAME, 420, 300), "what a picture is of")
        expect(kept["at_focus"] > 0.9 > 0.8 > kept["elsewhere"],
               f"{entry['maker']} is sharp at the focus alone: {kept}")
        expect((folder / entry["file"]).is_file(), entry["file"])
    for wide, narrow in (entries[0:2], entries[2:4]):
        expect(wide["sharpness_kept"]["elsewhere"] + 0.02 <
               narrow["sharpness_kept"]["elsewhere"], "f/1 blurs more than f/4")
    return {name: entry["file"] for name, entry in zip(ENTRIES, entries)}


def change(earlier, files):
    """Three entries of the earlier report are not what they were."""
    shutil.copy(earlier / files["frame f4"], earlier / files["frame f1"])
    source = next(earlier.glob("*-source.png"))
    shutil.copy(source, earlier / files["cpu"])
    (earlier / files["gpu f4"]).unlink()
    record = json.loads((earlier / "report.json").read_text())
    record["entries"][2]["maker"] = "gone"
    (earlier / "report.json").write_text(json.dumps(record))


def check_page(browser, folder, pictures, width, is_dark):
    where = f"{folder.name}, {width} pixels: "
    browser.open(str(folder / "index.html"), width, 800, is_dark)
    loaded = browser.run("""
        Promise.allSettled([...document.images].filter(i => i.src).map(i => {
          i.loading = 'eager'; return i.decode(); })).then(() =>
        [...document.images].filter(i => i.src).map(
            i => [i.getAttribute('src'), i.naturalWidth, i.alt]))""")
    expect(len(loaded) == pictures, where + "number of pictures")
    for source, natural_width, alt in loaded:
        expect(natural_width > 0 and alt, f"{where}{source} is shown, with text")
    for link in browser.run("""[...document.querySelectorAll('main a')].flatMap(
            a => [a.getAttribute('href'), a.dataset.before ?? a.hash])"""):
        name = urllib.parse.unquote(link)
        expect(not name or (folder / name).is_file(), where + link)
    too_wide = browser.run("""[...document.querySelectorAll('body *')].filter(
        e => e.getBoundingClientRect().right >
             document.documentElement.clientWidth).map(e => e.outerHTML)""")
    expect(not too_wide, f"{where}too wide: {too_wide}")
    colour = browser.run("getComputedStyle(document.body).backgroundColor")
    red = int(colour.split("(")[1].split(",")[0])
    expect(red < 64 if is_dark else red > 192, f"{where}background {colour}")
    texts = browser.run("""['.scene h2', '.scene p', '.focus h3'].map(
        s => document.querySelector(s).textContent)""")
    expect(texts == [SHOWN_NAME, META["title"],
                     "Focus 420,300: </h3>\"'\ufffd\ufffd"], f"{where}{texts}")


def check_viewer(browser):
    """The slider uncovers one picture or the other; both can be seen whole."""
    def settle():
        browser.run("""Promise.all(['before', 'after'].map(
            id => document.getElementById(id).decode())).then(
            () => new Promise(done => requestAnimationFrame(done)))""")

    def picture():  # but its edges
        settle()
        box = browser.run("""(() => {
            const pair = document.getElementById('pair').getBoundingClientRect();
            return [pair.x + 9, pair.y + 9, pair.width - 18, pair.height - 18]; })()""")
        return browser.screenshot(dict(zip(("x", "y", "width", "height"), box)))

    def alone(shown, hidden):
        browser.run(f"""document.getElementById('{shown}').style.clipPath = 'none';
                        document.getElementById('{hidden}').style.opacity = 0""")
        seen = picture()
        browser.run("""['before', 'after'].forEach(
            id => { document.getElementById(id).style.clipPath = '';
                    document.getElementById(id).style.opacity = ''; })""")
        return seen

    browser.run("document.querySelector('a[data-before]').click()")
    middle = picture()
    browser.press("End", 35)
    before = picture()
    browser.press("Home", 36)
    after = picture()
    expect(len({middle, before, after}) == 3, "the slider changes the picture")
    expect(before == alone("before", "after"), "at its end: before")
    expect(after == alone("after", "before"), "at its start: after")

    sizes = """(() => { const after = document.getElementById('after'),
        stage = document.getElementById('stage');
        return [after.width, after.naturalWidth, stage.clientWidth,
                stage.scrollWidth, stage.scrollLeft]; })()"""
    width, natural, seen, scrolled, _ = browser.run(sizes)
    expect(width <= seen == scrolled, "all of the picture is seen")
    browser.run("document.getElementById('full-size').click()")
    settle()
    width, natural, seen, scrolled, left = browser.run(sizes)
    expect(width == natural == scrolled > seen, "one to one")
    expect(abs(left + seen / 2 - 420) < 2, f"around the focus: {left}, {seen}")
    title = "document.getElementById('viewer-title').textContent"
    first = browser.run(title)
    browser.run("document.getElementById('next').click()")
    expect(first.endswith("frame, f/1") and
           browser.run(title).endswith("frame, f/4"), "the next picture")
    browser.press("Escape", 27)
    expect(not browser.run("document.getElementById('viewer').open"), "closed")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--zuqel", required=True)
    parser.add_argument("--browser", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        zuqel = Zuqel(options.zuqel, folder)
        scene = folder / "scenes" / os.fsdecode(NAME)
        (folder / "scenes").mkdir()
        zuqel.run("demo", "-o", str(scene))
        (scene / "meta.json").write_text(json.dumps(META))
        zuqel.report("-o", "one", "--no-times")
        zuqel.report("-o", "two", "--no-times")
        one, two = contents(folder / "one"), contents(folder / "two")
        expect(one == two and len(one) == 18, "reports of the same bytes")
        files = check_record(folder / "one")

        change(folder / "two", files)
        told = zuqel.report("-o", "three", "--against", "two")
        expect("two: 2 changed, 1 the same, 3 not compared\n" in told, told)
        expect(", cpu\n" in told, told)
        three = contents(folder / "three")
        expect(all(three[name] == one[name] for name in files.values()),
               "pictures do not depend on times")

        with Browser(options.browser) as browser:
            for width, is_dark in ((1280, False), (400, True)):
                check_page(browser, folder / "one", 9, width, is_dark)
                check_page(browser, folder / "three", 15, width, is_dark)
            changed = browser.run("""[...document.querySelectorAll('.change h3')].map(
                e => e.textContent.split(', ').slice(2).join(' '))""")
            expect(changed == ["cpu", "frame f/1"], f"worst first: {changed}")
            browser.open(str(folder / "one" / "index.html"), 400, 700)
            check_viewer(browser)
            expect(not browser.messages, "\n".join(browser.messages))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
