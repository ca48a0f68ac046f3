#!/usr/bin/env python3
"""coverage_table.py files.csv lines.txt: what gcovr counted, by folder, and the files with the largest gaps."""

import csv
import os
import re
import sys

MOST_FILES = 15


def share(covered, total):
    return "      -" if total == 0 else f"{100 * covered / total:6.1f}%"


def read_files(path):
    """(name, lines, covered lines, branches, covered branches) of every file."""
    with open(path, encoding="utf-8", newline="") as file:
        return [
            (row["filename"], *(int(row[key]) for key in ("line_total", "line_covered", "branch_total", "branch_covered")))
            for row in csv.DictReader(file)
        ]


def read_missing(path):
    """The lines that were not reached, as gcovr's table of lines has them, by file."""
    missing, name = {}, ""
    with open(path, encoding="utf-8") as file:
        for line in file:
            # Long names stand on a line of their own.
            found = re.match(r"(\S+)?\s+\d+\s+\d+\s+\d+%\s*(\S*)$", line.rstrip())
            if found:
                missing[found.group(1) or name] = found.group(2)
            name = line.strip()
    return missing


def main():
    files = read_files(sys.argv[1])
    missing = read_missing(sys.argv[2])
    folders = {}
    for name, *counts in files:
        for folder in (os.path.dirname(name), "all"):
            folders[folder] = [a + b for a, b in zip(folders.get(folder, [0] * 4), counts)]
    print(f"{'folder':24} {'lines':>7} {'reached':>8} {'branches':>9} {'reached':>8}")
    for folder, (lines, reached, branches, taken) in sorted(folders.items(), key=lambda item: (item[0] == "all", item[0])):
        print(f"{folder:24} {lines:7} {share(reached, lines):>8} {branches:9} {share(taken, branches):>8}")
    gaps = sorted(((lines - reached, name) for name, lines, reached, _, _ in files if reached < lines), reverse=True)
    print(f"\n{sum(gap for gap, _ in gaps)} lines in {len(gaps)} files are not reached")
    for gap, name in gaps[:MOST_FILES]:
        print(f"{gap:5}  {name}  {missing.get(name, '')}")


if __name__ == "__main__":
    main()
