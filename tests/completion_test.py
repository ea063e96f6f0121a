#!/usr/bin/env python3
"""Completes command lines in bash: all that `--help` lists and nothing else. Each
command has a manual page, where they were made."""

import argparse
import pathlib
import re
import subprocess
import tempfile
import unittest

# Reads a line of words, the last of which is completed; prints what compopt was
# told, then the completions.
DRIVER = r"""
source "$1"; PATH=$2:$PATH
registered=$(complete -p zuqel) && words=($registered) && function=${words[2]}
compopt() { options+=" $*"; }
while IFS= read -r line; do
  mapfile -td $'\t' COMP_WORDS < <(printf %s "zuqel	$line")
  [[ $line = *$'\t' ]] && COMP_WORDS+=('')
  [[ $line ]] || COMP_WORDS=(zuqel '')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) options= COMPREPLY=()
  "$function" zuqel "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
  printf '%s' "${options# }"; printf '\t%s' "${COMPREPLY[@]}"; echo
done
"""
FOLDER = ("a.png", "b.HEIC", "c.pfm", "d.txt", "e f.jpg")


def help_of(path):
    """Options with their types, and commands."""
    text = subprocess.run([ARGS.zuqel, *path, "--help"], check=True,
                          capture_output=True, text=True).stdout
    blocks = {block.split(":\n", 1)[0]: block for block in text.split("\n\n")}
    options = {name: kind
               for names, kind in re.findall(
                   r"^  (-[^ ,]+(?:, -[^ ,]+)*)(?: (\S+))?", blocks["Options"], re.M)
               for name in names.split(", ")}
    return options, re.findall(r"^  (\S+)", blocks.get("Commands", ""), re.M)


def complete(lines, folder):
    answers = subprocess.run(
        ["bash", "--norc", "-c", DRIVER, "bash", ARGS.script,
         ARGS.zuqel.parent],
        input="".join("\t".join(words) + "\n" for words in lines), cwd=folder,
        check=True, capture_output=True, text=True)
    return [(answer[0], sorted(filter(None, answer[1:]))) for answer in
            (line.split("\t") for line in answers.stdout.splitlines())]


class Completion(unittest.TestCase):
    def test_completes_what_help_lists(self):
        cases, paths = [], [()]
        for path in paths:  # grows
            options, commands = help_of(path)
            paths += [(*path, command) for command in commands]
            cases.append(((*path, "-"), sorted(options)))
            if commands:
                cases.append(((*path, ""), sorted(commands)))
            for name, kind in options.items():
                words = [word for word in kind.split("|")
                         if re.fullmatch("[a-z][a-z0-9-]*", word)]
                if words and kind != "FILE":
                    cases.append(((*path, name, ""), sorted(words)))
        self.assertGreater(len(paths), 10)
        for (words, expected), (_, found) in zip(
                cases, complete([words for words, _ in cases], None), strict=True):
            self.assertEqual(found, expected, words)
        if ARGS.pages:
            self.assertEqual(
                {page.stem for page in ARGS.pages.glob("*.1")},
                {"-".join(("zuqel", *path)) for path in paths})

    def test_completes_files_by_kind(self):
        cases = (
            (("render", "--sca"), "", ["--scale"]),
            (("render", "--scale", "=", "a"), "", ["auto"]),
            (("render", "--scale", "="), "", ["auto", "none"]),
            (("--device", "1", "ra"), "", ["raw"]),
            (("demo", ""), "", ["--help", "--output", "-h", "-o"]),
            (("render", ""), "-o filenames", ["a.png", "b.HEIC", "e f.jpg", "g"]),
            (("render", "a.png", "--disparity", ""), "-o filenames",
             ["a.png", "c.pfm", "e f.jpg", "g"]),
            (("render", "--weights", "g/"), "-o default", []),
            (("raw", ""), "-o default", []),
            (("demo", "-o", ""), "-o dirnames", []),
        )
        with tempfile.TemporaryDirectory() as folder:
            for name in FOLDER:
                (pathlib.Path(folder) / name).touch()
            (pathlib.Path(folder) / "g").mkdir()
            found = complete([words for words, _, _ in cases], folder)
        for (words, *expected), answer in zip(cases, found, strict=True):
            self.assertEqual(list(answer), expected, words)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    for name in ("--zuqel", "--script", "--pages"):
        parser.add_argument(name, type=lambda path: pathlib.Path(path).resolve())
    ARGS = parser.parse_args()
    unittest.main(argv=["completion_test"])
