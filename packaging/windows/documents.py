#!/usr/bin/env python3
"""Turns the documents of a package into HTML: each FILE.md of a folder and of its docs/ becomes FILE.html.

Usage: documents.py FOLDER

Links between documents lead to their HTML; one to a file that the package has not becomes plain text. Needs cmark-gfm.
"""
import html, pathlib, re, subprocess, sys

STYLE = """
body { max-width: 60em; margin: 2em auto; padding: 0 1em; font: 16px/1.5 "Segoe UI", sans-serif; color: #222; background: #fff }
nav { font-size: 85%; border-bottom: 1px solid #ccc; padding-bottom: .5em }
nav a { white-space: nowrap; margin-right: 1em }
pre, code { font: 14px/1.4 Consolas, monospace; background: #f4f4f4 }
pre { padding: .7em; overflow-x: auto }
table { border-collapse: collapse; display: block; overflow-x: auto }
th, td { border: 1px solid #ccc; padding: .25em .6em; text-align: left; vertical-align: top }
img { max-width: 100%; border: 1px solid #ccc }
thead th:empty { display: none }
"""

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>{title}</title>
<style>{style}</style>
</head>
<body>
<nav>{nav}</nav>
{body}</body>
</html>
"""


def relative(target, folder):
    """Where a file of the package lies, seen from a folder of it."""
    return "../" * len(folder.parts) + target.as_posix() if folder.parts else target.as_posix()


def name(heading):
    """The name of a heading in links, as people know it from repositories."""
    words = html.unescape(re.sub(r"<[^>]*>", "", heading)).lower()
    return re.sub(r"[^\w -]", "", words).replace(" ", "-")


def link(root, folder):
    def mended(match):
        address, text = html.unescape(match[1]), match[2]
        path, mark, place = address.partition("#")
        if re.match(r"[a-z]+:", address) or not path:
            return match[0]
        path = re.sub(r"\.md$", ".html", path).replace("examples/windows/", "examples/")
        # On Windows a text is opened by its ending.
        path = path if (root / folder / path).exists() else path + ".txt"
        if not (root / folder / path).exists():
            return text
        text = re.sub(r"\.md$", ".html", text)
        return f'<a href="{html.escape(path + mark + place)}">{text}</a>'

    return mended


def main():
    root = pathlib.Path(sys.argv[1])
    documents = sorted(file.relative_to(root) for file in [*root.glob("*.md"), *root.glob("docs/*.md")])
    bodies = {}
    for document in documents:
        command = ["cmark-gfm", "--extension", "table", str(root / document)]
        bodies[document] = subprocess.run(command, check=True, capture_output=True, encoding="utf-8").stdout
        (root / document).rename((root / document).with_suffix(".html"))
    for document, body in bodies.items():
        folder = document.parent
        body = re.sub(r"<h(\d)>(.*?)</h\1>", lambda m: f'<h{m[1]} id="{name(m[2])}">{m[2]}</h{m[1]}>', body)
        body = re.sub(r'<a href="([^"]*)">(.*?)</a>', link(root, folder), body, flags=re.S)
        title = re.search(r"<h1[^>]*>(.*?)</h1>", body)[1]
        nav = "\n".join(f'<a href="{relative(other.with_suffix(".html"), folder)}">{other.stem}</a>' for other in documents)
        page = PAGE.format(title=re.sub(r"<[^>]*>", "", title), style=STYLE, nav=nav, body=body)
        (root / document).with_suffix(".html").write_text(page, encoding="utf-8")


main()
