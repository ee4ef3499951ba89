#!/usr/bin/env python3
"""Breaks src/ on purpose, one break at a time, and tells which breaks no test notices.

usage: mutations.py [--record FILE | --check FILE] [--only TEXT] [--list] [N SEED]

Without N every break is made, which takes hours; with it a sample. The sample is drawn by a hash of SEED and of
each break's own text, so a change elsewhere in the code leaves it as it is.

A break that changes nothing visible stands in tools/mutations.accepted with its reason. One that does not compile
is no break, unless a static_assert refuses it: that is a notice.
"""
import argparse, collections, concurrent.futures, hashlib, json, os, re, resource, shlex, subprocess, sys, threading, time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.join(ROOT, "build/mutations")
ACCEPTED = os.path.join(ROOT, "tools/mutations.accepted")
FOLDERS = ["values", "link", "controller", "parameters", "timed", "modules", "component", "platform/posix"]
MOST_ACCEPTED = 0.05  # of all breaks
LEAST_NOTICED = 0.90  # of a checked sample

TOKEN = re.compile(
    r"""(?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*|[ \t\n]+)
      |(?P<text>R"\((?:.|\n)*?\)"|"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)+')
      |(?P<number>(?:0[xX][0-9A-Fa-f']+|\d[\d']*(?:\.\d+)?(?:[eE][+-]?\d+)?)[uUlLfFzZ]*)
      |(?P<word>[A-Za-z_]\w*)
      |(?P<sign>::|->|\+\+|--|<<=|>>=|<=>|<=|>=|==|!=|&&|\|\||\+=|-=|\.\.\.|.)""",
    re.VERBOSE | re.MULTILINE | re.DOTALL)

SIGNS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
         "+": "-", "-": "+", "+=": "-=", "-=": "+=", "true": "false", "false": "true"}

Token = collections.namedtuple("Token", "kind text start end")


class Break:
    """One change of one file: the text from `start` to `end` becomes `new`."""

    def __init__(self, file, source, start, end, new, what):
        self.file, self.start, self.end, self.new, self.what = file, start, end, new, what
        self.line = source.count("\n", 0, start) + 1
        self.text = source.splitlines()[self.line - 1].strip()
        self.folder = next(f for f in FOLDERS if file.startswith(f"src/{f}/"))

    def key(self):
        return f"{self.file} ; {self.text} ; {self.what}"


def tokens_of(source):
    found = [Token(m.lastgroup, m.group(), m.start(), m.end()) for m in TOKEN.finditer(source)]
    return [t for t in found if t.kind != "skip"]


def closing(tokens):
    """For each opening bracket the index of its partner."""
    partner, open_ = {}, []
    for i, t in enumerate(tokens):
        if t.text in "([{" and t.kind == "sign":
            open_.append(i)
        elif t.text in ")]}" and t.kind == "sign" and open_:
            partner[open_.pop()] = i
    return partner


def other_numbers(text):
    """A number one more and one less; of a fraction the last digit."""
    body = re.match(r"0[xX][0-9A-Fa-f']+|[\d'.]+", text).group()
    suffix = text[len(body):]
    if suffix[:1] in ("e", "E"):
        return []
    if "." in body:
        places = len(body.split(".")[1])
        value = float(body)
        return [f"{value + step * 10 ** -places:.{places}f}{suffix}" for step in (1, -1)]
    value = int(body.replace("'", ""), 0)
    return [f"{value + step}{suffix}" for step in (1, -1) if value + step >= 0]


def elements(tokens, first, last):
    """The ranges of tokens between the commas of a list; none when it is no list but a body."""
    ranges, begin, depth = [], first, 0
    for i in range(first, last + 1):
        text = tokens[i].text
        tight = i > 0 and tokens[i - 1].end == tokens[i].start  # of a template, not a comparison
        if i == last or (depth == 0 and text == ","):
            if i > begin:
                ranges.append((begin, i - 1))
            begin = i + 1
        elif text in ("(", "[", "{") or (text == "<" and tight):
            depth += 1
        elif text in (")", "]", "}") or (text == ">" and tight):
            depth -= 1
        elif depth == 0 and text == ";":
            return []
    return ranges


def breaks_of_tables(file, source, tokens, partner):
    for i, t in enumerate(tokens):
        if t.text != "{" or i not in partner:
            continue
        before = [p.text for p in tokens[max(0, i - 8):i]]
        if "enum" in before or (before and before[-1] in (")", "const", "noexcept", "override")):
            continue
        rows = elements(tokens, i + 1, partner[i])
        if len(rows) < 3 or any(tokens[a].text == "." for a, _ in rows):
            continue
        spans = [(tokens[a].start, tokens[b].end) for a, b in rows]
        for k, (start, end) in enumerate(spans):
            cut = (start, spans[k + 1][0]) if k + 1 < len(spans) else (spans[k - 1][1], end)
            short = " ".join(source[start:end].split())[:50]
            yield Break(file, source, *cut, "", f"drop {short}")
            if k + 1 < len(spans):
                (a, b), (c, d) = (start, end), spans[k + 1]
                if source[a:b] != source[c:d]:
                    yield Break(file, source, a, d, source[c:d] + source[b:c] + source[a:b], f"swap {short} and the next")


def breaks_of_calls(file, source, tokens, partner):
    for i, t in enumerate(tokens):
        if t.kind != "word" or t.text in ("return", "throw", "static_assert", "if", "for", "while", "switch", "using",
                                          "constexpr", "template", "case", "goto", "delete", "new", "co_return"):
            continue
        if i and tokens[i - 1].text not in (";", "{", "}", ")", "else", ":"):
            continue
        j = i
        while j + 1 < len(tokens) and tokens[j].text != "(":
            if tokens[j].kind == "word" and tokens[j + 1].kind == "word":
                break
            if tokens[j].text in (";", "=", "{", "}", ","):
                break
            j += 1
        if tokens[j].text != "(" or j not in partner or tokens[partner[j] + 1].text != ";":
            continue
        end = tokens[partner[j]].end
        yield Break(file, source, t.start, end, "", f"drop {' '.join(source[t.start:end].split())[:50]}")


def breaks_of_tokens(file, source, tokens):
    for i, t in enumerate(tokens):
        if t.kind == "number":
            for new in other_numbers(t.text):
                yield Break(file, source, t.start, t.end, new, f"{t.text} -> {new}")
        elif t.text in SIGNS and t.kind in ("sign", "word"):
            spaced = source[t.start - 1].isspace() and source[t.end:t.end + 1].isspace()
            if t.kind == "word" or spaced:
                yield Break(file, source, t.start, t.end, SIGNS[t.text], f"{t.text} -> {SIGNS[t.text]}")


def without(tokens, partner):
    """Leaves out what states something instead of doing it: static_assert, template heads, `= 0` of interfaces."""
    skip = set()
    for i, t in enumerate(tokens):
        if t.text == "static_assert" and i + 1 in partner:
            skip.update(range(i, partner[i + 1] + 1))
        if t.text == "=" and tokens[i + 1].text == "0" and tokens[i - 1].text in (")", "const"):
            skip.add(i + 1)
        if t.text == "include":
            skip.add(i)
    return skip


def breaks_of(file):
    with open(os.path.join(ROOT, file), encoding="utf-8") as f:
        source = f.read()
    tokens = tokens_of(source)
    partner = closing(tokens)
    skip = without(tokens, partner)
    spans = [(tokens[i].start, tokens[i].end) for i in skip]
    kept = [t for i, t in enumerate(tokens) if i not in skip]
    found = list(breaks_of_tokens(file, source, kept))
    found += breaks_of_tables(file, source, tokens, partner)
    found += breaks_of_calls(file, source, tokens, partner)
    found = [b for b in found if not any(a <= b.start < e for a, e in spans)]
    return sorted(found, key=lambda b: (b.start, b.what))


def all_breaks():
    files = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"] + [f"src/{f}" for f in FOLDERS], cwd=ROOT,
                           check=True, capture_output=True, text=True).stdout.split()
    files = [f for f in files if f.endswith((".cpp", ".h")) and "/windows/" not in f and "/idl/" not in f]
    return [b for file in sorted(set(files)) for b in breaks_of(file)]


def sample_of(breaks, count, seed):
    """The `count` breaks with the lowest hashes; equal texts are told apart by their order in the file."""
    seen = collections.Counter()

    def rank(b):
        seen[b.key()] += 1
        return hashlib.sha256(f"{seed} {b.key()} {seen[b.key()]}".encode()).hexdigest()

    ranked = sorted((rank(b), i) for i, b in enumerate(breaks))
    return [breaks[i] for _, i in ranked[:count]]


class Accepted:
    """Rows `file ; text of the line ; break ; reason`; the break "*" means every break of the line."""

    def __init__(self, breaks):
        self.rows = []
        if os.path.exists(ACCEPTED):
            for line in open(ACCEPTED, encoding="utf-8"):
                if line.strip() and not line.startswith("#"):
                    self.rows.append([part.strip() for part in line.rstrip("\n").rsplit(" ;; ", 3)])
        for row in self.rows:
            if len(row) != 4 or not row[3]:
                sys.exit(f"mutations: a row is no \"file ;; line ;; break ;; reason\": {row}")
            if not any(self.fits(row, b) for b in breaks):
                sys.exit(f"mutations: no line fits the row any more: {' ;; '.join(row)}")
        count = sum(1 for b in breaks if self.has(b))
        if count > MOST_ACCEPTED * len(breaks):
            sys.exit(f"mutations: {count} of {len(breaks)} breaks are accepted, more than {MOST_ACCEPTED:.0%}")

    @staticmethod
    def fits(row, b):
        return row[0] == b.file and row[1] == b.text and row[2] in ("*", b.what)

    def has(self, b):
        return any(self.fits(row, b) for row in self.rows)


class Tests:
    """The unit tests, built once without optimisation, and made again with one file changed."""

    def __init__(self, workers):
        os.makedirs(BUILD, exist_ok=True)
        self.tree = os.path.join(BUILD, "build")
        self.quiet(["cmake", "-S", ROOT, "-B", self.tree, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                    "-DCMAKE_CXX_FLAGS=-O0 -g0 -w", "-DVELK_TOGETHER=OFF"])
        self.quiet(["cmake", "--build", self.tree, "--target", "velk_tests"])
        self.commands = self.read_commands()
        self.objects = {f: os.path.join(self.tree, c[c.index("-o") + 1]) for f, c in self.commands.items()}
        self.linked = sorted(self.objects, key=lambda f: (not f.startswith("src/"), f))
        self.dependents = self.read_dependents()
        self.suites = self.read_suites()
        chosen = {"*", *self.suites.values()}
        with concurrent.futures.ThreadPoolExecutor(workers) as pool:
            self.limits = dict(zip(chosen, pool.map(self.limit_of, chosen)))

    def limit_of(self, tests):
        """How long these tests may take with a break: one that makes them wait for ever is noticed."""
        start = time.monotonic()
        if self.run(os.path.join(self.tree, "bin/velk_tests"), tests, 600) != 0:
            sys.exit(f"mutations: without any break these tests fail: {tests}")
        return 10 + 4 * (time.monotonic() - start)

    @staticmethod
    def quiet(command):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            sys.exit(done.stdout[-4000:] + f"\nmutations: {command[0]} failed")

    def read_commands(self):
        """How the sources of the test program are compiled: tests, and every library that it is linked with. A file
        may be part of other programs, too."""
        query = subprocess.run(["ninja", "-C", self.tree, "-t", "inputs", "bin/velk_tests"], check=True,
                               capture_output=True, text=True).stdout.split()
        objects = {path for path in query if path.endswith(".o")}
        commands = [(os.path.relpath(c["file"], ROOT), shlex.split(c["command"]))
                    for c in json.load(open(os.path.join(self.tree, "compile_commands.json")))]
        return {file: command for file, command in commands if command[command.index("-o") + 1] in objects}

    def read_dependents(self):
        """For each header the files of src/ that see it, and the tests that mirror its folder: a default of an argument
        is compiled where the call stands."""
        text = subprocess.run(["ninja", "-C", self.tree, "-t", "deps"], check=True, capture_output=True, text=True).stdout
        by_object = {os.path.relpath(o, self.tree): f for f, o in self.objects.items()}
        result, current = collections.defaultdict(list), None
        for line in text.split("\n"):
            if line and not line[0].isspace():
                current = by_object.get(line.split(":")[0])
            elif line.strip() and current and current in self.linked:
                header = os.path.relpath(os.path.normpath(os.path.join(self.tree, line.strip())), ROOT)
                if current.startswith(("src/", f"tests/{'/'.join(header.split('/')[1:2])}/")):
                    result[header].append(current)
        return result

    @staticmethod
    def read_suites():
        """For each folder of src/ the suites of the tests that mirror it."""
        suites = {}
        for folder in FOLDERS:
            path = os.path.join(ROOT, "tests", folder.split("/")[0])
            names = set()
            for name in os.listdir(path) if os.path.isdir(path) else []:
                if name.endswith(".cpp"):
                    text = open(os.path.join(path, name), encoding="utf-8").read()
                    for kind, suite in re.findall(r"^(TEST(?:_F|_P)?)\((\w+),", text, re.MULTILINE):
                        names.add(f"*/{suite}.*" if kind == "TEST_P" else f"{suite}.*")
            suites[folder] = ":".join(sorted(names)) or "-*"
        return suites

    def run(self, program, tests, limit):
        def bound():
            resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        try:
            return subprocess.run([program, "--gtest_brief=1", "--gtest_fail_fast", f"--gtest_filter={tests}"],
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL,
                                  preexec_fn=bound, timeout=limit, cwd=self.tree).returncode
        except subprocess.TimeoutExpired:
            return -1

    def compile(self, b, folder):
        """The objects that a break changes; None when it does not compile, "refused" when a static_assert fails."""
        with open(os.path.join(ROOT, b.file), encoding="utf-8") as f:
            source = f.read()
        changed = os.path.join(folder, b.file)
        os.makedirs(os.path.dirname(changed), exist_ok=True)
        with open(changed, "w", encoding="utf-8") as f:
            f.write(source[:b.start] + b.new + source[b.end:])
        made = {}
        try:
            for file in [b.file] if b.file.endswith(".cpp") else self.dependents[b.file]:
                command = list(self.commands[file])
                at = command.index("-o") + 1
                made[file] = command[at] = os.path.join(folder, file.replace("/", "_") + ".o")
                command[1:1] = ["-I", os.path.join(folder, "src")]
                if file == b.file:
                    command = [changed if c == os.path.join(ROOT, file) else c for c in command]
                done = subprocess.run(command, cwd=self.tree, capture_output=True, text=True)
                if done.returncode != 0:
                    return "refused" if "static assertion failed" in done.stderr else None
            return made
        finally:
            os.remove(changed)

    def notices(self, b, folder):
        """True or False; None when it is no break."""
        made = self.compile(b, folder)
        if made is None or made == {}:
            return None
        if made == "refused":
            return True
        program = os.path.join(folder, "tests")
        objects = [made.get(f, self.objects[f]) for f in self.linked]
        link = subprocess.run(["g++", "-fuse-ld=gold", "-o", program] + objects + ["-lgtest_main", "-lgtest", "-lpthread", "-lutil"],
                              capture_output=True, text=True)
        for path in made.values():
            os.remove(path)
        if link.returncode != 0:  # no break takes a name away
            raise RuntimeError(link.stderr)
        near = self.suites[b.folder]
        return (self.run(program, near, self.limits[near]) != 0 or
                self.run(program, "-" + near, self.limits["*"]) != 0)


def carry_out(tests, chosen, workers):
    """Tries every break; the results come in their order, None for what is no break."""
    folders = {}
    lock = threading.Lock()

    def one(b):
        with lock:
            folder = folders.setdefault(threading.get_ident(), os.path.join(BUILD, f"worker{len(folders)}"))
        os.makedirs(folder, exist_ok=True)
        return tests.notices(b, folder)

    results = []
    with concurrent.futures.ThreadPoolExecutor(workers) as pool:
        for b, result in zip(chosen, pool.map(one, chosen)):
            results.append(result)
            if result is False:
                print(f"{b.file}:{b.line}: SURVIVED {b.what}\n    {b.text}", flush=True)
            if sys.stderr.isatty():
                print(f"\r{len(results)} of {len(chosen)} ", end="", file=sys.stderr, flush=True)
    return results


def table_of(chosen, results):
    rows = {folder: [0, 0] for folder in FOLDERS}
    for b, result in zip(chosen, results):
        if result is not None:
            rows[b.folder][0] += 1
            rows[b.folder][1] += result
    total = [sum(r[0] for r in rows.values()), sum(r[1] for r in rows.values())]
    print(f"\n{'folder':<16}{'breaks':>8}{'noticed':>9}")
    for name, (count, noticed) in list(rows.items()) + [("all", total)]:
        share = f"{noticed / count:8.1%}" if count else ""
        print(f"{name:<16}{count:>8}{noticed:>9}{share}")
    return total


def main():
    parser = argparse.ArgumentParser(description="Breaks src/ on purpose; tells which breaks no test notices.")
    parser.add_argument("count", nargs="?", type=int, metavar="N", help="size of a sample; all breaks without it")
    parser.add_argument("seed", nargs="?", default="1", metavar="SEED")
    parser.add_argument("--workers", type=int, default=2 * (os.cpu_count() or 1), metavar="N",
                        help="breaks tried at once; their tests mostly wait")
    parser.add_argument("--only", default="", metavar="TEXT", help="breaks whose file or line holds this text")
    parser.add_argument("--list", action="store_true", help="print the breaks and try none")
    parser.add_argument("--record", metavar="FILE", help="write the survivors to a file")
    parser.add_argument("--check", metavar="FILE", help="fail for a survivor that is not in the file")
    options = parser.parse_args()

    breaks = all_breaks()
    accepted = Accepted(breaks)
    chosen = [b for b in breaks if not accepted.has(b) and options.only in f"{b.file} {b.text}"]
    if options.count is not None:
        chosen = sample_of(chosen, options.count, options.seed)
    print(f"{len(breaks)} breaks, {sum(1 for b in breaks if accepted.has(b))} accepted, {len(chosen)} to try")
    if options.list:
        for b in chosen:
            print(f"{b.file}:{b.line}: {b.what}\n    {b.text}")
        return 0

    results = carry_out(Tests(options.workers), chosen, options.workers)
    count, noticed = table_of(chosen, results)
    survivors = sorted(b.key() for b, result in zip(chosen, results) if result is False)
    if options.record:
        with open(options.record, "w", encoding="utf-8") as f:
            f.writelines(key + "\n" for key in survivors)
    if options.check:
        known = set(open(options.check, encoding="utf-8").read().split("\n"))
        new = [key for key in survivors if key not in known]
        for key in new:
            print(f"mutations: was noticed, or is new, and survives: {key}")
        if count and noticed < LEAST_NOTICED * count:
            print(f"mutations: fewer than {LEAST_NOTICED:.0%} are noticed")
        return 1 if new or noticed < LEAST_NOTICED * count else 0
    return 0


if __name__ == "__main__":
    sys.exit(main())
