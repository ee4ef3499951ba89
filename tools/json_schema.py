#!/usr/bin/env python3
"""Holds what `velk --json` prints against docs/velk.schema.json: json_schema.py VELK. Looks at the transcripts, where
they show it whole, and at commands whose figures no transcript can show. Each command with --json has a schema, and
each schema has been met."""
import json, pathlib, re, subprocess, sys, tempfile
import jsonschema

velk = str(pathlib.Path(sys.argv[1]).resolve())
root = pathlib.Path(__file__).resolve().parent.parent
schema = json.loads((root / "docs/velk.schema.json").read_text())
jsonschema.Draft202012Validator.check_schema(schema)
faults, met = [], set()


def check(name, line, where):
    try:
        printed = json.loads(line)
    except ValueError:
        return  # shortened, or no JSON
    if name not in schema["$defs"]:
        return faults.append(f"{where}: there is no schema for {name}")
    met.add(name)
    validator = jsonschema.Draft202012Validator({**schema, "$ref": f"#/$defs/{name}"})
    faults.extend(f"{where}: {name}: {e.json_path}: {e.message[:300]}" for e in validator.iter_errors(printed))


def complete(*words):
    answer = subprocess.run([velk, "complete", "zsh", *words], capture_output=True, text=True).stdout
    return [line.split("\t")[0] for line in answer.splitlines()]


for file in sorted((root / "tests/cli/transcripts").glob("*.txt")):
    name = None
    for number, line in enumerate(file.read_text().splitlines(), 1):
        if line.startswith("$ "):
            command = re.fullmatch(r"\$ velk ([a-z][a-z-]*)\b[^|;]*", line)
            name = "velk-" + command[1] if command and "--json" in line else None
        elif name and line.startswith(("{", "[")):
            check(name, line, f"{file.name}:{number}")
        elif name and line.startswith("! {"):
            check("error", line[2:], f"{file.name}:{number}")

with tempfile.TemporaryDirectory() as folder:
    for words in ("status --simulate", "clock --simulate", "clock --simulate set", "backup --simulate house.json",
                  "backup --simulate --keep 2 .", "diff --simulate house.json", "restore --simulate --yes house.json",
                  "ports", "doctor", "methods", "watch --simulate --only infrared --for 0"):
        printed = subprocess.run([velk, *words.split(), "--json"], cwd=folder, capture_output=True, text=True)
        lines = printed.stdout.splitlines() if words.startswith("watch") else [printed.stdout]
        for line in lines:
            check("velk-" + words.split()[0], line, words)

named = {f"velk-{command}" for command in complete("=") if "--json" in complete(command, "=--json")}
faults += [f"no schema for {name}" for name in sorted(named - schema["$defs"].keys())]
faults += [f"nothing shows {name}" for name in sorted(named.union({"error"}) - met)]
sys.exit("\n".join(faults) or None)
