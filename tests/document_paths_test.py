#!/usr/bin/env python3
"""Looks for what the documents name: targets of links, and paths in backticks that
begin with a folder of the project. NAME in one stands for any. The project's root
is the one argument."""

import pathlib
import re
import sys

LINK = re.compile(r"\]\(([^)#:]+)\)")
PATH = re.compile(r"`((?:bench|cmake|docs|examples|fuzz|include|platform|python|"
                  r"scripts|src|testing|tests|tools)/[\w./-]*)[` ]")


def missing(root, document):
    text = document.read_text()
    for path in LINK.findall(text):
        if not (document.parent / path).exists():
            yield path
    for path in PATH.findall(text):
        if "NAME" not in path and not (root / path).exists():
            yield path


def main():
    root = pathlib.Path(sys.argv[1])
    documents = [root / "README.md", *sorted((root / "docs").glob("*.md"))]
    found = [f"{document.relative_to(root)}: there is no {path}"
             for document in documents for path in missing(root, document)]
    print("\n".join(found) or f"{len(documents)} documents")
    return 1 if found else 0


sys.exit(main())
