#!/usr/bin/env python3
"""Checks that files of src/ include only what CMakeLists.txt lets their folder see: its own headers, those of the
folders that its velk_library() USES, and of what these see. A folder uses those above it alone, so there is no circle;
one that is no library sees all of them, and nobody sees it."""
import pathlib, re, sys

root = pathlib.Path(__file__).resolve().parent.parent
sees, faults = {}, []
for name, uses in re.findall(r"^ *velk_library\(([\w/]+)(?:\s+USES\s+([^)]*))?\)", (root / "CMakeLists.txt").read_text(), re.M):
    faults += [f"CMakeLists.txt: {name} USES {used}, which is not above it" for used in uses.split() if used not in sees]
    sees[name] = {name}.union(*(sees.get(used, ()) for used in uses.split()))


def folder(path):
    return next((name for name in sees if path.startswith(name + "/")), path.split("/")[0])


for file in sorted((root / "src").rglob("*.[ch]*")):
    path = file.relative_to(root / "src").as_posix()
    for number, line in enumerate(file.read_text().splitlines(), 1):
        included = re.match(r'\s*#\s*include\s*["<]([\w./]+/[\w.]+)[">]', line)
        if not included or not (included[1].startswith("..") or (root / "src" / included[1]).exists()):
            continue
        if folder(included[1]) not in sees.get(folder(path), {folder(path), *sees}):
            faults.append(f"src/{path}:{number}: {folder(path)} does not use {folder(included[1])}: {line.strip()}")
sys.exit("\n".join(faults) or None)
