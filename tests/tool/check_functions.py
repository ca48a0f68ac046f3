#!/usr/bin/env python3
"""check_functions.py KTTM ROOT: what `kttm types TYPE` tells of the functions behind a row, against the sources.

Every function that the public headers declare for the rows is the answer for some type, and no other name is; every
field of the descriptor has its answer; the source that is named describes the operations that the row is made of; and
each reason for what is not offered stands on the page of the types."""
import pathlib
import re
import subprocess
import sys

ANSWER = re.compile(r"^    (\w+) +(.+)$")
NOT_OFFERED = "not offered: "


def declared(root):
    """The names of the functions that rows can point at."""
    operations = (root / "inc/kttypops.h").read_text()
    base = (root / "ktbs/inc/ktbs.h").read_text()
    return set(re.findall(r"^KTTM_API [\w ]+?(\w+)\(", operations, re.M)) | set(
        re.findall(r"^KTBS_API unsigned long (\w+(?:Store|Load|SizeGet))\(", base, re.M))


def fields(root):
    text = (root / "inc/kttypdsc.h").read_text()
    row = text[text.index("struct KtTypeDescriptor {"):]
    return re.findall(r"^  Kt\w+Func (\w+);", row, re.M)


class Sources:
    """Which source describes the operations of a row, as the type table's text has it."""

    def __init__(self, root):
        self.table = (root / "src/table/type_table.cpp").read_text()
        self.rows = dict(re.findall(r"^ +/\*\s*(\d+) \*/ (.+),$", self.table, re.M))
        self.home = {}
        for header in sorted((root / "src/ops").glob("*.h")):
            for name in re.findall(r"^(?:struct|using) (\w+Ops)\b", header.read_text(), re.M):
                self.home[name] = header.relative_to(root).as_posix()

    def of(self, text):
        """The home of the first family that the text names, or that the functions do which it calls."""
        for name in re.findall(r"\b(\w+Ops)\b", text):
            if name in self.home:
                return self.home[name]
        for function in re.findall(r"\b(\w+)(?:<[\w:]+>)?\(", text):
            body = re.search(rf"^constexpr KtTypeDescriptor {function}\(.*?^}}$", self.table, re.M | re.S)
            if body:
                return self.of(body.group().split("{", 1)[1])
        return None


def main():
    tool, root = sys.argv[1], pathlib.Path(sys.argv[2])
    names, operations, sources = declared(root), fields(root), Sources(root)
    page = (root / "docs/operations.md").read_text()
    failures, printed = [], set()
    for number, row in sources.rows.items():
        shown = subprocess.run([tool, "types", number], check=True, capture_output=True, text=True).stdout
        answers = [m.groups() for m in map(ANSWER.match, shown.splitlines()) if m]
        if [operation for operation, _ in answers] != operations:
            failures.append(f"type {number}: the fields are {[operation for operation, _ in answers]}")
        printed |= {answer for _, answer in answers if answer != "inside" and not answer.startswith(NOT_OFFERED)}
        for operation, answer in answers:
            if answer.startswith(NOT_OFFERED) and answer.removeprefix(NOT_OFFERED) not in page:
                failures.append(f"type {number}, {operation}: docs/operations.md does not say '{answer}'")
        source = re.search(r"^  source +(.*)$", shown, re.M).group(1)
        if source != sources.of(row):
            failures.append(f"type {number}: {source} is told, and its row is of {sources.of(row)}")
    if len(sources.rows) < 41 or len(operations) < 22 or len(names) < 40:
        failures.append("the sources are not read as they were meant to be")
    failures += [f"no type answers {name}, which is declared" for name in sorted(names - printed)]
    failures += [f"{name} is told, and declared nowhere" for name in sorted(printed - names)]
    print(*failures, sep="\n", end="\n" if failures else "")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
