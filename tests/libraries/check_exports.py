#!/usr/bin/env python3
"""check_exports.py [--update] library...: compares what shared libraries export with the committed lists.

exports/<library>.txt beside this script has one demangled name a line, alike on every platform: names with a type of
platform-dependent width (std::size_t, std::int64_t) would not be. Inline functions need not be listed, as whether they
are exported is the compiler's choice; those that are listed must be there. ELF marks them as weak; a DLL does not tell
them from others, so that there members of listed classes may come in addition.

--update writes the lists from ELF libraries. A name that disappears breaks programs: it takes a new major version.
"""

import argparse
import pathlib
import re
import subprocess
import sys

LISTS = pathlib.Path(__file__).resolve().parent / "exports"
# What compilers emit beside a name: resolvers and variants of functions that are cloned for several processors.
VARIANT = re.compile(r"\.(resolver|ifunc|default|[a-z0-9_]+\.\d+)$")
# Belongs to a class, whose functions are listed.
DATA_OF_CLASSES = ("vtable for ", "typeinfo for ", "typeinfo name for ")
# What every program that is linked dynamically has.
LINKER = {"_init", "_fini", "_edata", "_end", "__bss_start"}


def output(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, check=True, text=True).stdout


def elf_symbols(library, bindings):
    """readelf, unlike nm, reads libraries of every architecture."""
    for line in output("readelf", "--dyn-syms", "--wide", library).splitlines():
        fields = line.split()  # number, value, size, type, binding, visibility, section, name
        if len(fields) >= 8 and fields[4] in bindings and fields[6] != "UND":
            yield fields[7].split("@")[0]


def dll_symbols(library, objdump):
    table = output(objdump, "-p", library).partition("[Ordinal/Name Pointer] Table")[2]
    for line in table.splitlines()[1:]:
        match = re.match(r"\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+[0-9a-f]+\s+)?(\S+)$", line)
        if not match:
            break
        yield match.group(1)


def demangled(symbols):
    plain = [s for s in symbols if s not in LINKER and not VARIANT.search(s)]
    names = output("c++filt", "--no-strip-underscore", text="\n".join(plain) + "\n").splitlines()
    return {n for n in names if n and not n.startswith(DATA_OF_CLASSES)}


def class_of(name):
    """The class that a member function or variable belongs to, or None."""
    return (re.match(r"([A-Za-z_]\w*)::", name.split("(")[0]) or [None, None])[1]


def is_dll(path):
    return path.suffix == ".dll"


def compare(path, objdump):
    """The guilty names, each with what is wrong with it."""
    library = path.name.split(".")[0].removeprefix("lib")
    listed = set((LISTS / f"{library}.txt").read_text().splitlines())
    if is_dll(path):
        found = demangled(dll_symbols(path, objdump))
        classes = {class_of(name) for name in listed} - {None}
        extra = {name for name in found - listed if class_of(name) not in classes}
    else:
        found = demangled(elf_symbols(path, {"GLOBAL", "WEAK"}))
        extra = demangled(elf_symbols(path, {"GLOBAL"})) - listed
        extra |= {name for name in demangled(elf_symbols(path, {"UNIQUE"})) if not name.startswith("std::")}
    problems = [f"{path.name}: not exported any more: {name}" for name in sorted(listed - found)]
    return problems + [f"{path.name}: exported, but not in the list: {name}" for name in sorted(extra)]


def update(path):
    library = path.name.split(".")[0].removeprefix("lib")
    LISTS.mkdir(exist_ok=True)
    file = LISTS / f"{library}.txt"
    listed = set(file.read_text().splitlines()) if file.exists() else set()
    kept = listed & demangled(elf_symbols(path, {"WEAK"}))
    file.write_text("\n".join(sorted(kept | demangled(elf_symbols(path, {"GLOBAL"})))) + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--update", action="store_true", help="write the lists, from ELF libraries")
    parser.add_argument("--objdump", default="i686-w64-mingw32-objdump", help="that reads DLLs")
    parser.add_argument("libraries", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    if arguments.update:
        for path in arguments.libraries:
            update(path)
        return 0
    problems = [problem for path in arguments.libraries for problem in compare(path, arguments.objdump)]
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
