#!/usr/bin/env python3
"""Checks that files of src/ include only what CMakeLists.txt lets their folder see: its own headers, those of the
folders that its velk_library() USES, and of what these see. A folder uses those above it alone, so there is no circle;
one that is no library, a program's, sees all libraries, and nobody sees it."""
import pathlib, re, sys

root = pathlib.Path(__file__).resolve().parent.parent
folders = {folder.name for folder in (root / "src").iterdir()}
sees, faults = {}, []
for name, uses in re.findall(r"^ *velk_library\((\w+)(?:\s+USES\s+([^)]*))?\)", (root / "CMakeLists.txt").read_text(), re.M):
    faults += [f"CMakeLists.txt: {name} USES {used}, which is not above it" for used in uses.split() if used not in sees]
    sees[name] = {name}.union(*(sees.get(used, ()) for used in uses.split()))
for file in sorted((root / "src").rglob("*.[ch]*")):
    path = file.relative_to(root)
    for number, line in enumerate(file.read_text().splitlines(), 1):
        included = re.match(r'\s*#\s*include\s*["<]([\w.]+)/', line)
        if included and included[1] in {"..", *folders} - sees.get(path.parts[1], {path.parts[1], *sees}):
            faults.append(f"{path}:{number}: {path.parts[1]} does not use {included[1]}: {line.strip()}")
sys.exit("\n".join(faults) or None)
