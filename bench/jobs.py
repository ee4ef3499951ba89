"""Times whole jobs of velk over slow links against the least that their requests can take.

Usage: jobs.py BUILD MARKDOWN

The links are those of velk-sim --latency. A job's requests are what a trace shows of it beforehand. The least is made of what neither program can shorten: the time of the bytes
on the line, what an adapter or network holds each answer back, and the pauses of the protocol. Without any of these, the
least is the time of a bare client that sends the same requests and waits for each answer. Files lie in memory, as a
disk takes its own time. Whole backups over slow links are made side by side: they wait, mostly.
"""

import concurrent.futures
import itertools
import pathlib
import re
import socket
import subprocess
import sys
import tempfile
import time

import report

BYTE_TIME = 10 / 9600  # seconds
PAUSES = 0.5 + 0.01 + 0.1  # behind opening, of the line break, behind it
ANSWERS_OF_OPENING = {"tcp": 2, "echo": 0, "fast": 0}  # greeting and login
LIMIT = 1.03
STARTS = 9  # of what does not take minutes; the quickest counts, as all else that runs can only make it slower

LINKS = [("tcp", 0), ("tcp", 20), ("fast", 1), ("fast", 16), ("echo", 1), ("echo", 16)]
JOBS = [("one output", ["output", "5"]), ("whole backup", ["backup", "--quiet"])]


def wire(kind, count):
    """Byte times of a read of so many bytes."""
    return {"tcp": 0, "fast": 15 + count, "echo": 9 + count}[kind]


def held(kind):
    """How often an answer is held back in one read: in echo mode each byte of the request waits for its echo."""
    return {"tcp": 1, "fast": 1, "echo": 4}[kind]


class House:
    """A simulated controller behind one link."""

    def __init__(self, build, folder, kind, latency):
        self.kind, self.latency, self.velk = kind, latency / 1000, build / "bin/velk"
        self.copy = folder / f"{kind}-{latency}.json"
        options = [f"--{kind}", *(["0"] if kind == "tcp" else []), "--latency", str(latency), "--for", "3000"]
        self.process = subprocess.Popen([build / "bin/velk-sim", *options], stdout=subprocess.PIPE, text=True)
        told = "".join(itertools.takewhile(lambda line: line != "ready\n", self.process.stdout))
        self.place = re.search(r"^(?:tcp Q|echo|fast) (.*)$", told, re.M)[1]
        self.options = {"tcp": ["--tcp", self.place], "echo": ["--serial", self.place],
                        "fast": ["--serial", self.place, "--fast"]}[kind]

    def carry_out(self, job, *options):
        """How long it took."""
        words = [self.velk, *job, *self.options, *options, *([self.copy] if job[0] == "backup" else [])]
        start = time.perf_counter()
        subprocess.run(words, check=True, stdout=subprocess.DEVNULL)
        return time.perf_counter() - start

    def reads(self, job):
        """Those that the job makes: bytes, area, address."""
        trace = self.copy.with_suffix(".trace")
        self.carry_out(job, f"--trace={trace}")
        return [(int(count), area, bytes.fromhex(place))
                for count, area, place in re.findall(r" read +(\d+) +(\S+) +([0-9A-F]{4}) ", trace.read_text())]

    def least(self, reads):
        if self.kind == "tcp" and self.latency == 0:
            return min(bare_client(self.place, reads) for _ in range(STARTS))
        answers = ANSWERS_OF_OPENING[self.kind] + held(self.kind) * len(reads)
        pauses = 0 if self.kind == "tcp" else PAUSES
        return pauses + BYTE_TIME * sum(wire(self.kind, count) for count, _, _ in reads) + self.latency * answers

    def takes_minutes(self, job):
        return job[0] == "backup" and not (self.kind == "tcp" and self.latency == 0)

    def end(self):
        self.process.terminate()
        self.process.wait()


def bare_client(place, reads):
    """The time of the same reads by a client that does nothing else."""
    external, high = 0x20, 0x80
    bits = {"V": external, "H": 0, "H+": high, "V+": external | high}
    def packed(function, data):
        return b"VELK\0\1\0\1\3" + bytes([function, 0, len(data)]) + data
    requests = [packed(255, bytes([0x2F, 2, bits[area] | count - 1]) + at) for count, area, at in reads]
    host, _, port = place.rpartition(":")
    start = time.perf_counter()
    with socket.create_connection((host, int(port))) as link:
        link.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        link.recv(1024)
        for request in [packed(240, bytes(4)), *requests]:
            link.sendall(request)
            link.recv(1024)
    return time.perf_counter() - start


def row(house, job, reads, figures):
    taken = min(figures)
    least = house.least(reads)
    name = {"tcp": "TCP", "echo": "echo mode, 9600 baud", "fast": "fast mode, 9600 baud"}[house.kind]
    reached = "yes" if taken / least <= LIMIT else "**no**"
    return f"| {job} | {name} | {house.latency * 1000:.0f} ms | {len(reads)} | {least:.3f} s | {taken:.3f} s | {taken / least:.3f} | {reached} |"


def main(build, markdown):
    rows = []
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder, concurrent.futures.ThreadPoolExecutor(len(LINKS)) as pool:
        houses = [House(build, pathlib.Path(folder), *link) for link in LINKS]
        try:
            for title, job in JOBS:
                reads = houses[0].reads(job)
                quick = {house: [house.carry_out(job) for _ in range(STARTS)]
                         for house in houses if not house.takes_minutes(job)}
                slow = {house: pool.submit(house.carry_out, job) for house in houses if house not in quick}
                rows += [row(house, title, reads, quick.get(house) or [slow[house].result()]) for house in houses]
        finally:
            for house in houses:
                house.end()
    table = "\n".join(["| job | link | latency | requests | least | velk | figure | within 3 % |",
                       "|---|---|---|---|---|---|---|---|", *rows])
    print(table)
    report.replace_figures(markdown, f"\n{report.written()}\n\n{table}\n", "jobs")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
