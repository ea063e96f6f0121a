#!/usr/bin/env python3
"""Looks for what the documents name: targets of links, their sections, and paths in
backticks that begin with a folder of the project. NAME in one stands for any. The
README links each document. The project's root is the one argument."""

import pathlib
import re
import sys

LINK = re.compile(r"\]\(([^)#:]*)(?:#([^):]*))?\)")
PATH = re.compile(r"`((?:bench|cmake|docs|examples|fuzz|include|platform|python|"
                  r"scripts|src|testing|tests|tools)/[\w./-]*)[` ]")


def sections(document):
    """As links name them: small letters and hyphens."""
    for title in re.findall(r"^#+ (.*)$", document.read_text(), re.M):
        yield re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-")


def missing(root, document):
    text = document.read_text()
    for path, section in LINK.findall(text):
        target = document.parent / path if path else document
        if not target.exists():
            yield path
        elif section and section not in sections(target):
            yield f"{path}#{section}"
    for path in PATH.findall(text):
        if "NAME" not in path and not (root / path).exists():
            yield path


def main():
    root = pathlib.Path(sys.argv[1])
    readme, *others = documents = [root / "README.md",
                                   *sorted((root / "docs").glob("*.md"))]
    found = [f"{document.relative_to(root)}: there is no {path}"
             for document in documents for path in missing(root, document)]
    linked = {path for path, _ in LINK.findall(readme.read_text())}
    found += [f"README.md: no link to {document.relative_to(root)}"
              for document in others
              if str(document.relative_to(root)) not in linked]
    print("\n".join(found) or f"{len(documents)} documents")
    return 1 if found else 0


sys.exit(main())
