#!/usr/bin/env python3
"""Holds the pages that velk writes against what a browser, a screen reader and a printer need: pages.py VELK."""
import html.parser, pathlib, re, subprocess, sys, tempfile
import xml.etree.ElementTree as xml

from houses import full_house, odd_house

velk = str(pathlib.Path(sys.argv[1]).resolve())
faults = []
VOID = {"meta", "rect", "path", "circle", "br"}
# What is written on what: on paper, on what details stand on, on marks.
PAIRS = [(text, ground) for text in ("ink", "soft", "time", "event", "added", "removed", "changed")
         for ground in ("paper", "panel")] + [("on", "time"), ("on", "event")]


class Page(html.parser.HTMLParser):
    """As a browser reads it: elements with their attributes, each closed where it was opened."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.open, self.elements, self.faults, self.text = [], [], [], ""
        self.feed(text)
        self.faults += [f"{name} is not closed" for name in self.open]

    def handle_starttag(self, name, attributes):
        self.elements.append((name, dict(attributes), list(self.open)))
        if name not in VOID:
            self.open.append(name)

    def handle_startendtag(self, name, attributes):
        self.elements.append((name, dict(attributes), list(self.open)))
        if name not in VOID:
            self.faults.append(f"<{name}/> stays open in a browser")

    def handle_endtag(self, name):
        if not self.open or self.open.pop() != name:
            self.faults.append(f"</{name}> closes something else")

    def handle_data(self, data):
        self.text += data


def luminance(colour):
    channels = [int(colour[i:i + 2], 16) / 255 for i in (1, 3, 5)]
    linear = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels]
    return sum(weight * c for weight, c in zip((0.2126, 0.7152, 0.0722), linear))


def contrast(a, b):
    light, dark = sorted((luminance(a), luminance(b)), reverse=True)
    return (light + 0.05) / (dark + 0.05)


def check_colours(style):
    schemes = re.findall(r":root\{(.*?)\}", style)
    yield from ["there are not two schemes"] if len(schemes) != 2 else []
    for scheme in schemes:
        colours = dict(part.split(":") for part in scheme.replace("--", "").split(";") if part)
        for text, ground in PAIRS:
            ratio = contrast(colours[text], colours[ground])
            if ratio < 4.5:
                yield f"{text} on {ground} has a contrast of {ratio:.2f}"
    known = set(re.findall(r"--(\w+):", style))
    yield from (f"there is no colour {name}" for name in set(re.findall(r"var\(--(\w+)\)", style)) - known)


def check(name, text):
    """Yields what is wrong with a page."""
    xml.fromstring(text)
    page = Page(text)
    yield from page.faults
    names = [element for element, _, _ in page.elements]
    attributes = [values for _, values, _ in page.elements]
    ids = [values["id"] for values in attributes if "id" in values]
    yield from ["an id stands twice"] if len(ids) != len(set(ids)) else []
    for wrong in ("script", "link", "img", "iframe", "object"):
        yield from [f"a page has <{wrong}>"] if wrong in names else []
    for values in attributes:
        if "href" in values and values["href"][1:] not in ids:
            yield f"{values['href']} leads nowhere"
        for label in values.get("aria-labelledby", "").split():
            yield from [] if label in ids else [f"there is no {label}"]
        yield from ["a page loads something"] if "src" in values or "style" in values else []
    headings = [int(element[1]) for element in names if re.fullmatch("h[1-6]", element)]
    yield from [f"headings {headings}"] if headings[:1] != [1] or headings.count(1) != 1 else []
    yield from [] if all(b <= a + 1 for a, b in zip(headings, headings[1:])) else [f"headings {headings}"]
    root = page.elements[0]
    yield from [] if root[0] == "html" and root[1].get("lang") == "en" else ["the page has no language"]
    yield from [] if any(values.get("name") == "viewport" for values in attributes) else ["no viewport"]
    body = names.index("body")
    yield from [] if page.elements[body + 1][1].get("class") == "skip" else ["no skip link in front"]
    for element, values, above in page.elements:
        if element == "th" and values.get("scope") not in ("row", "col"):
            yield "a table header has no scope"
        if element == "svg" and (values.get("role") != "img" or len(values["aria-labelledby"].split()) != 2):
            yield "a picture has no words"
    style = re.search(r"<style>(.*?)</style>", text, re.S)[1]
    yield from ["the style has something escaped, or loads something"] if re.search("&|url|import", style) else []
    yield from check_colours(style)
    yield from ["characters that are none"] if re.search("[\0-\x09\x0b-\x1f\x7f-\x9f]", page.text) else []


def run(*words):
    return subprocess.run([velk, *words], cwd=folder, capture_output=True, text=True, check=True).stdout


with tempfile.TemporaryDirectory() as folder:
    (pathlib.Path(folder) / "full.json").write_text(full_house())
    (pathlib.Path(folder) / "odd.json").write_text(odd_house())
    run("backup", "--simulate", "--modules", "090500,110100", "house.json")
    pages = {"house": run("report", "house.json", "--title", b"<&\"'\x07\xff\xc0\xaf\xed\xa0\x80>", "-o", "-"),
             "odd": run("report", "odd.json", "-o", "-"),
             "full": run("report", "full.json", "-o", "-"),
             "changes": run("report", "house.json", "full.json", "-o", "-"),
             "week": run("week", "--link", "backup:full.json", "--html", "-")}
    for name, text in pages.items():
        faults += [f"{name}: {fault}" for fault in sorted(set(check(name, text)))]
    picture = xml.fromstring(run("week", "--link", "backup:full.json", "--svg", "-"))
    faults += [] if picture.tag == "{http://www.w3.org/2000/svg}svg" else ["the picture is none"]
    for wanted in ('aria-labelledby="links-25-title links-25-words"', "&lt;Bath &amp; &quot;Spa&quot;\\x00\\x1b\\x81", '<a href="#links">Links</a>\n<span>100</span>'):
        faults += [] if wanted in pages["full"] else [f"full: there is no {wanted}"]
    for wanted in ("saved \ufffd&lt;b&gt; from &lt;x&gt;&amp;<", "<span>Mon 18:00</span></th><td data-h=\"Events\"><span>not readable<",
                   "<span>(not readable)<"):
        faults += [] if wanted in pages["odd"] else [f"odd: there is no {wanted}"]
    escaped = "&lt;&amp;&quot;'" + 5 * "\ufffd" + "&gt;"
    faults += [] if f"<h1>{escaped}</h1>" in pages["house"] else ["house: the title is not escaped"]
sys.exit("\n".join(faults) or None)
