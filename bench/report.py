"""Makes the table out of the figures of all program starts.

Usage: report.py FOLDER JSON MARKDOWN
"""

import datetime
import json
import os
import pathlib
import platform
import statistics
import sys

BYTE_TIME = 1e7 / 9600  # microseconds

# Measure, against what, the figure from the figures of one start, how to print it, limit ("<=" or ">=", number).
ROWS = [
    ("TCP read of 16 bytes", "bare client's p50", lambda f: f["tcp.velk.p50"] / f["tcp.bare.p50"], "{:.3f}", "<=", 1.05),
    ("TCP read, libmodbus", "ours", lambda f: f["tcp.modbus.p50"] / f["tcp.velk.p50"], "{:.3f}", ">=", 1.30),
    ("fast-mode read, libmodbus RTU", "ours", lambda f: f["fast.modbus.p50"] / f["fast.velk.p50"], "{:.3f}", ">=", 1.40),
    ("fast-mode read on a pty", "bare client's p50", lambda f: f["fast.velk.p50"] / f["fast.bare.p50"], "{:.3f}", "<=", 1.05),
    ("echo-mode read on a pty", "bare client's p50", lambda f: f["echo.velk.p50"] / f["echo.bare.p50"], "{:.3f}", "<=", 1.05),
    ("own CPU time of a TCP read", "libmodbus", lambda f: f["tcp.velk.cpu"] / f["tcp.modbus.cpu"], "{:.3f}", "<=", 0.80),
    ("system calls of a TCP read", "", lambda f: f["counts.velk.calls"], "{:.2f}", "<=", 4),
    ("instructions of a TCP read", "above the bare client's",
     lambda f: f["counts.velk.instructions"] - f["counts.bare.instructions"], "{:.0f}", "<=", 1000),
    ("fast-mode read at 9600 baud", "31 byte times", lambda f: f["paced.fast"] / (31 * BYTE_TIME), "{:.4f}", "<=", 1.01),
    ("echo-mode read at 9600 baud", "25 byte times", lambda f: f["paced.echo"] / (25 * BYTE_TIME), "{:.4f}", "<=", 1.03),
    ("CPU of a 1 s wait, Linux", "busy loop", lambda f: f["wait.velk"] / f["wait.busy"], "{:.6f}", "<=", 0.0002),
    ("CPU of a 2 s wait, Wine", "busy loop", lambda f: f["wait.wine"], "{:.6f}", "<=", 0.0002),
    ("rate of TCP reads, Wine", "Winsock client that looks for a stale answer", lambda f: f["wine.drain.p50"] / f["wine.velk.p50"], "{:.3f}", ">=", 0.95),
    ("rate of TCP reads, Wine", "Winsock client that does not look", lambda f: f["wine.bare.p50"] / f["wine.velk.p50"], "{:.3f}", ">=", 0.80),
    ("calls of Wine's server, TCP read", "client that looks", lambda f: f["server.velk"] - f["server.drain"], "{:+.2f}", "<=", 0.1),
    ("calls of Wine's server, TCP read", "client that does not look", lambda f: f["server.velk"] - f["server.bare"], "{:+.2f}", "<=", 1.1),
    *[(f"Invoke of {name}", "virtual call",
       lambda f, name=name: f[f"calls.{name}.invoke"] / f[f"calls.{name}.virtual"], "{:.1f}", "<=", 15)
      for name in ("LowNibbleBit", "DECtoBCD", "LdZr")],
    ("look-up of a name, ns", "", lambda f: f["calls.name"], "{:.1f}", "<=", 50),
    ("VBScript call", "call of an object that does nothing", lambda f: f["script.call"] / f["script.idle"], "{:.2f}", "<=", 1.1),
    *[row for n in (1, 10, 100, 500) for row in (
        (f"rate with {n} threads", "bare client",
         lambda f, n=n: f[f"threads.{n}.velk.rate"] / f[f"threads.{n}.bare.rate"], "{:.3f}", ">=", 0.90),
        (f"p99 with {n} threads", "bare client",
         lambda f, n=n: f[f"threads.{n}.velk.p99"] / f[f"threads.{n}.bare.p99"], "{:.3f}", "<=", 1.3))],
    ("requests served, page watched", "nobody watching", lambda f: f["page.watched"], "{:.3f}", ">=", 0.95),
    ("of 1,000 requests a second, not shown", "", lambda f: f["page.lost"], "{:.0f}", "<=", 0),
    ("memory of one more object with link, KiB", "", lambda f: f["memory.pages"] / 1024, "{:.1f}", "<=", 16),
]


def starts(folder):
    """The figures of each start: those of all its programs together, and those that are taken once."""
    once, numbered = {}, {}
    for path in sorted(pathlib.Path(folder).glob("*.json")):
        figures = json.loads(path.read_text())
        _, _, start = path.stem.rpartition("-")
        (numbered.setdefault(start, {}) if start.isdigit() else once).update(figures)
    return [once | figures for figures in numbered.values()]


def value(row, all_figures):
    """The median of the starts that have the row's figures; none when no start has."""
    found = []
    for figures in all_figures:
        try:
            found.append(row[2](figures))
        except (KeyError, ZeroDivisionError):
            pass
    return statistics.median(found) if found else None


def lines(all_figures):
    yield "| measure | against | figure | to reach | |"
    yield "|---|---|---|---|---|"
    for row in ROWS:
        measure, against, _, form, sign, limit = row
        figure = value(row, all_figures)
        if figure is None:
            yield f"| {measure} | {against} | not measured | {sign} {limit} | |"
            continue
        reached = figure <= limit if sign == "<=" else figure >= limit
        yield f"| {measure} | {against} | {form.format(figure)} | {sign} {limit} | {'yes' if reached else '**no**'} |"


def replace_figures(path, text, name="figures"):
    """Puts the text between the marks of the document, whose other words are written by hand."""
    before, begin, rest = path.read_text().partition(f"<!-- {name} -->\n")
    _, end, after = rest.partition(f"<!-- end of {name} -->\n")
    path.write_text(before + begin + text + "\n" + end + after)


def written():
    system = f"Linux {platform.release().split('-')[0]}, {os.cpu_count()} cores"
    return f"Written by `./run bench` on {datetime.date.today()}, {system}."


def main(folder, json_path, markdown_path):
    all_figures = starts(folder)
    names = sorted({name for figures in all_figures for name in figures})
    medians = {n: statistics.median(f[n] for f in all_figures if n in f) for n in names}
    pathlib.Path(json_path).write_text(json.dumps({"median": medians, "starts": all_figures}, indent=1) + "\n")
    table = list(lines(all_figures))
    print("\n".join(table))
    microseconds = ", ".join(
        f"{name} {medians[name + '.p50']:.1f}" for name in
        ("tcp.velk", "tcp.bare", "tcp.modbus", "fast.velk", "fast.bare", "fast.modbus", "echo.velk", "echo.bare")
        if name + ".p50" in medians)
    replace_figures(pathlib.Path(markdown_path), f"""
{written()}

{chr(10).join(table)}

Median latencies in microseconds: {microseconds}.
""")


if __name__ == "__main__":
    main(*sys.argv[1:])
