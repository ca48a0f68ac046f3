#!/usr/bin/env python3
"""check_layers.py root: fails when an include points up the layers or into a sibling library's inside.

check_layers.py --self-test: fails unless made-up violations of each kind are found, and legal includes are not.
"""

import pathlib
import re
import sys
import tempfile

LIBRARY = 0  # ktbs, ktin and common: below all of src
LAYERS = {"text": 1, "values": 2, "ops": 3, "table": 4, "module": 5}

# Public headers are value classes unless they stand here.
PUBLIC = {
    "ktapi.h": LIBRARY,
    "_ktnulty.h": 1,
    "ktchar.h": 1,
    "ktoption.h": 1,
    "ktstriter.h": 1,
    "kttypbnd.h": 3,
    "kttypdsc.h": 3,
    "kttypcvd.h": 3,
    "kttypops.h": 3,
    "kttypmgr.h": 5,
    "kttm.h": 5,
}
PUBLIC_DEFAULT = LAYERS["values"]

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')


class File:
    """A source file: its home (library whose inside it belongs to) and its rank."""

    def __init__(self, path):
        self.path = path
        parts = path.parts
        self.name = path.as_posix()
        self.home, self.public = parts[0], False
        self.rank = LIBRARY
        if parts[0] == "inc":
            self.home, self.public = "src", True
            self.rank = PUBLIC.get("/".join(parts[1:]), PUBLIC_DEFAULT)
        elif parts[0] == "src":
            if len(parts) < 3 or parts[1] not in LAYERS:
                raise ValueError(f"{self.name}: belongs to no layer")
            self.rank = LAYERS[parts[1]]
        elif parts[0] in ("ktbs", "ktin"):
            self.public = parts[1] == "inc"


def project_files(root):
    """All C++ sources below the library folders, by path relative to the root."""
    files = []
    for folder in ("common", "ktbs/inc", "ktbs/src", "ktin/inc", "ktin/src", "inc", "src"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp", ".inc"):
                files.append(File(path.relative_to(root)))
    return files


def resolve(root, source, target, by_path):
    """The project's file that an include names: beside the source, in its library's inside, then anywhere public."""
    beside = pathlib.PurePosixPath(source.path.parent.as_posix()) / target
    inside = {"src": "src", "ktbs": "ktbs/src", "ktin": "ktin/src", "common": "common"}[source.home]
    folders = [inside, "inc", "ktbs/inc", "ktin/inc", "common", "src", "ktbs/src", "ktin/src"]
    candidates = [beside] + [pathlib.PurePosixPath(folder) / target for folder in folders]
    for candidate in candidates:
        path = (root / candidate).resolve()
        if path.is_file() and path.is_relative_to(root):
            found = by_path.get(path.relative_to(root).as_posix())
            if found:
                return found
    return None


def fault(source, target):
    """Why source must not include target, or None."""
    if target.rank > source.rank:
        return f"points up, from layer {source.rank} to layer {target.rank}"
    if target.home != source.home and target.home != "common" and not target.public:
        return f"reaches into the inside of {target.home}"
    if source.public and not target.public:
        return "a public header needs a header that is not installed"
    if {source.home, target.home} == {"ktbs", "ktin"}:
        return "points sideways, from one sibling library to the other"
    return None


def violations(root):
    root = root.resolve()
    try:
        files = project_files(root)
    except ValueError as error:
        return [str(error)]
    by_path = {file.name: file for file in files}
    found = []
    for source in files:
        text = (root / source.path).read_text(encoding="utf-8")
        for number, line in enumerate(text.splitlines(), 1):
            match = INCLUDE.match(line)
            target = match and resolve(root, source, match.group(1), by_path)
            reason = target and fault(source, target)
            if reason:
                found.append(f"{source.name}:{number}: {target.name}: {reason}")
    return found


# A small tree: what each file includes. The self-test expects exactly the files of GUILTY to be reported.
TREE = {
    "common/clones.h": [],
    "ktbs/inc/ktbs.h": [],
    "ktbs/src/inner.h": [],
    "ktbs/src/store.cpp": ["ktbs.h", "inner.h", "clones.h", "vector"],
    "ktin/inc/ktin.h": [],
    "ktin/src/sideways.cpp": ["ktin.h", "ktbs.h"],
    "inc/ktchar.h": ["ktin.h"],
    "inc/ktstring.h": ["ktchar.h"],
    "inc/kttypops.h": ["ktstring.h"],
    "inc/kttm.h": ["kttypops.h", "ktbs.h"],
    "inc/ktleaky.h": ["text/core.h"],
    "src/text/core.h": ["ktchar.h"],
    "src/text/core.cpp": ["text/core.h", "core.h"],
    "src/text/up.cpp": ["ktstring.h"],
    "src/values/string.cpp": ["ktstring.h", "text/core.h", "clones.h"],
    "src/values/up.cpp": ["../ops/run.h"],
    "src/values/inside.cpp": ["inner.h"],
    "src/ops/run.h": ["ktbs.h", "kttypops.h", "text/core.h"],
    "src/ops/up.h": ["kttm.h"],
    "src/table/rows.cpp": ["ops/run.h"],
    "src/module/manager.cpp": ["kttm.h", "ops/run.h"],
}
GUILTY = {
    "ktin/src/sideways.cpp",
    "inc/ktleaky.h",
    "src/text/up.cpp",
    "src/values/up.cpp",
    "src/values/inside.cpp",
    "src/ops/up.h",
}


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, includes in TREE.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text("".join(f'#include "{i}"\n' for i in includes), encoding="utf-8")
        found = {line.split(":")[0] for line in violations(root)}
        (root / "src/stray.cpp").write_text("")
        stray = violations(root)
    faults = [f"missed: {name}" for name in sorted(GUILTY - found)]
    faults += [f"wrongly reported: {name}" for name in sorted(found - GUILTY)]
    if stray != ["src/stray.cpp: belongs to no layer"]:
        faults.append(f"a file outside the layers: {stray}")
    return faults


def main():
    if len(sys.argv) != 2:
        print(__doc__)
        return 2
    faults = self_test() if sys.argv[1] == "--self-test" else violations(pathlib.Path(sys.argv[1]))
    for line in faults:
        print(line)
    print(f"layers: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
