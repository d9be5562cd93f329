#!/usr/bin/env python3
"""Checks the documents: links, anchors, figures, and the lists of documents.

    check_docs.py SOURCE_FOLDER

- Every relative link and every anchor of a Markdown page exists.
- Every file of docs/images is shown by a page, and scripts/draw_docs.sh names it; pictures in SVG have a white ground.
- The README names every page of docs/.
- scripts/demo.sh, the first command of a reader, builds every program that the tutorials and the cookbook call.
"""

import pathlib
import re
import subprocess
import sys

# A link, its text without brackets of its own, and code, in which nothing is a link.
CODE = re.compile(r"(?ms)^```.*?^```|^(?:    [^\n]*\n)+|`[^`\n]+`")
LINK = re.compile(r"\]\(([^()\s]+)\)")


def anchor(heading):
    """The anchor that GitHub and most viewers make of a heading."""
    text = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading.replace("`", "")).strip().lower()
    return re.sub(r"[^\w\- ]", "", text).replace(" ", "-")


def anchors(page):
    """The anchors of a page; a heading that comes again gets a number."""
    found = set()
    for heading in re.findall(r"(?m)^#+ +(.*)$", re.sub(r"(?ms)^```.*?^```", "", page)):
        name, count = anchor(heading), 0
        while name + (f"-{count}" if count else "") in found:
            count += 1
        found.add(name + (f"-{count}" if count else ""))
    return found


def links(page):
    return LINK.findall(CODE.sub("", page))


def check_links(top, pages):
    for path, text in pages.items():
        for link in links(text):
            if re.match(r"[a-z]+:", link):
                continue
            name, _, place = link.partition("#")
            target = (path.parent / name).resolve() if name else path
            if not target.exists():
                yield f"{path.relative_to(top)}: no file {link}"
            elif place and place not in anchors(pages.get(target, "")):
                yield f"{path.relative_to(top)}: no anchor {link}"


def check_figures(top, pages):
    script = (top / "scripts" / "draw_docs.sh").read_text()
    shown = {(path.parent / link).resolve() for path, text in pages.items() for link in links(text)}
    for image in sorted((top / "docs" / "images").iterdir()):
        if image.suffix not in (".svg", ".png"):
            continue
        if not re.search(rf"\b{re.escape(image.name)}\b", script):
            yield f"{image.name}: not drawn by scripts/draw_docs.sh"
        if image not in shown:
            yield f"{image.name}: on no page"
        if image.suffix == ".svg" and not re.search(r"<rect[^>]*fill=\"#ffffff\"|style=\"fill: #ffffff", image.read_text()):
            yield f"{image.name}: no white ground, and black lines on a dark page"


def check_programs(top):
    # CMake alone makes morlen-import, when it finds numpy.
    build = (top / "scripts" / "demo.sh").read_text().partition("--target")[2].partition("--parallel")[0]
    built = {"morlen-import", *build.split()}
    for path in (*(top / "docs").glob("tutorial*.md"), top / "docs" / "cookbook.md"):
        for program in sorted(set(re.findall(r"(?m)^    \$ (morlen[\w-]*)", path.read_text())) - built):
            yield f"{path.name}: scripts/demo.sh does not build {program}"


def main():
    top = pathlib.Path(sys.argv[1]).resolve()
    tracked = subprocess.run(["git", "-C", top, "ls-files", "-co", "--exclude-standard", "*.md"], capture_output=True,
                             text=True)
    names = tracked.stdout.split() or [str(p.relative_to(top)) for p in (*top.glob("*.md"), *top.glob("*/*.md"))]
    pages = {top / name: (top / name).read_text() for name in names}
    faults = [*check_links(top, pages), *check_figures(top, pages), *check_programs(top)]
    readme = pages[top / "README.md"]
    faults += [f"README.md: no link to docs/{path.name}" for path in sorted((top / "docs").glob("*.md"))
               if f"](docs/{path.name})" not in readme]
    if faults:
        sys.exit("\n".join(faults))
    print(len(pages), "pages,", sum(len(links(text)) for text in pages.values()), "links")


main()
