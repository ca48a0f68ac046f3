"""Reads what ktin needs of the Unicode character database, characters below U+10000 only."""
from pathlib import Path
from types import SimpleNamespace

FOLDER = Path("/usr/share/unicode")
AGE_LIMIT = "15.0"  # later characters count as unassigned: see generate_tables.py


def properties(name):
    """(first, last, value) of the lines of a property file."""
    for line in (FOLDER / name).read_text(encoding="utf-8").splitlines():
        fields = [field.strip() for field in line.split("#")[0].split(";")]
        if len(fields) >= 2:
            ends = [int(end, 16) for end in fields[0].split("..")]
            yield ends[0], ends[-1], fields[1]


def spread(name):
    return {char: value for first, last, value in properties(name) for char in range(first, min(last, 0xFFFF) + 1)}


def load():
    age = {char: tuple(map(int, value.split("."))) for char, value in spread("DerivedAge.txt").items()}
    limit = tuple(map(int, AGE_LIMIT.split(".")))
    data = SimpleNamespace(name={}, category={}, tag={}, parts={}, lower={}, upper={}, script=spread("Scripts.txt"))
    first = 0
    for line in (FOLDER / "UnicodeData.txt").read_text(encoding="ascii").splitlines():
        fields = line.split(";")
        code = int(fields[0], 16)
        if code > 0xFFFF:
            break
        if fields[1].endswith(", First>"):
            first = code
        for char in range(first, code + 1) if fields[1].endswith(", Last>") else [code]:
            if age.get(char, limit) <= limit:
                add(data, char, fields)
    return data


def add(data, char, fields):
    """name, general category, decomposition (tag "" where it is canonical) and simple case partners."""
    data.name[char], data.category[char] = fields[1], fields[2]
    words = fields[5].split()
    data.tag[char] = words.pop(0) if words and words[0].startswith("<") else ""
    data.parts[char] = [int(word, 16) for word in words]
    for mapping, field in ((data.upper, fields[12]), (data.lower, fields[13])):
        if field:
            mapping[char] = int(field, 16)
