"""Decides the collation orders of kinds 1 to 4; docs/collation.md describes the outcome.

A Latin letter is first named as a Form (letter, variant, marks, style); a second pass gives each form its extension
and diacritic number. What no rule places takes the next free number in the order of the codes.
"""
from typing import NamedTuple

SPACES, SYMBOLS, DIGITS, LETTERS, OTHER_SCRIPTS = 1, 80, 16128, 0x4000, 0x8000
UNDEFINED_ORDER = 13  # no character has it
SEVERAL_ORDERS = 0xFFFF
FIRST_FREE_SYMBOL = 140

# The symbols with an index of their own, by index. 52 is the apostrophe, 88 the acute accent that heads the accents.
NAMED_SYMBOLS = dict(zip(
    [32, 34, 35, 36, 37, 38, 39, 40, 41, 42, 44, 46, 49, 50, 52, 55, 58, 59, 60, 62, 64, 65, 66, 67, 68, 69, 70, 71,
     73, 74, 75, 76, 77, 78, 79, 80, 81, 82, 83, 85, 87, 88, 89, 91, 94, 96, 98, 99, 101, 103, 105, 106, 107, 108, 109,
     110, 139],
    "_\u00AF\u00AD-,;:!\u00A1?/.\u00B7\u00B8'\"\u00AB\u00BB()[]{}\u00A7\u00B6\u00A9\u00AE"
    "@\u00A4\u00A2$\u00A3\u00A5*\\&#%+\u00B1\u00B4`^\u00A8~\u00F7\u00D7<=>\u00AC|\u00A6\u00B0"
    "\u00B5\u00BF"))

# Places of a digit's variants beside it; odd ones carry the expand flag.
DIGIT_VARIANTS = {"": 0, "<super>": 1, "<sub>": 3, "<wide>": 5}

# ---- marks ---------------------------------------------------------------------------------------------------------

STROKE = "stroke"
CIRCUMFLEX, BREVE, HORN = 0x302, 0x306, 0x31B
ACUTE, GRAVE, HOOK_ABOVE, TILDE, DOT_BELOW = 0x301, 0x300, 0x309, 0x303, 0x323

MARK_NUMBERS = {(0x327,): 1, (ACUTE,): 2, (GRAVE,): 3, (CIRCUMFLEX,): 4, (TILDE,): 5, (0x308,): 6, (0x30A,): 7,
                (STROKE,): 8, (0x30C,): 9, (0x304,): 10, (BREVE,): 11, (0x307,): 12, (0x328,): 13, (0x30B,): 14,
                (DOT_BELOW,): 15, (HOOK_ABOVE,): 16, (HORN,): 17, (0x30F,): 28, (0x311,): 29}
for place, mark in enumerate((ACUTE, GRAVE, HOOK_ABOVE, TILDE, DOT_BELOW)):
    MARK_NUMBERS[(CIRCUMFLEX, mark)] = 18 + place
    MARK_NUMBERS[(BREVE, mark)] = MARK_NUMBERS[(HORN, mark)] = 23 + place
MARK_NUMBERS = {frozenset(marks): number for marks, number in MARK_NUMBERS.items()}
FREE_MARKS = range(15, 30)  # by letter, where the numbers above leave room
RAISED, WIDE = 30, 31
SIGN = "sign"  # Kelvin, Angstrom

# ---- letters -------------------------------------------------------------------------------------------------------

# The variant of a letter that has extension 1 to itself and takes marks as a letter does.
PRINCIPALS = {"\u00E6": "A", "\u00F0": "D", "\u0259": "E", "\u0263": "G", "\u0195": "H", "\u0131": "I", "\u0237": "J",
              "\u0138": "K", "\u1EFB": "L", "\u014B": "N", "\u0153": "O", "\u00DF": "S", "\u00FE": "T", "\u028A": "U",
              "\u01BF": "W", "\u021D": "Y", "\u0292": "Z"}
PRINCIPAL_NAMES = {"AE": "\u00E6", "ETH": "\u00F0", "EZH": "\u0292", "OE": "\u0153", "THORN": "\u00FE"}
NO_LETTER = "Z+"  # after z: Z's extension 3

# Where a reader looks for letters whose names do not begin with their letter.
NAME_LETTERS = {"SCHWA": "E", "ESH": "S", "EZH": "Z", "ENG": "N", "ETH": "D", "YR": "R", "OI": "G", "HORN": "O",
                "CHI": "X", "YAT": "E", "EULER": "E", "DELTA": "D", "TWO": "Z", "FIVE": "Q", "SIX": "H",
                "ALEF": "A", "AIN": "A", "SALTILLO": NO_LETTER, "TRESILLO": NO_LETTER, "CUATRILLO": NO_LETTER,
                "STOP": NO_LETTER, "CLICK": NO_LETTER, "PERCUSSIVE": NO_LETTER, "FRICATIVE": NO_LETTER,
                "SPIRANT": NO_LETTER, "DOT": NO_LETTER}
ROMAN_NUMERALS = {0x2180: "C", 0x2181: "D", 0x2182: "M", 0x2183: "C", 0x2184: "C", 0x2185: "V", 0x2186: "L",
                  0x2187: "L", 0x2188: "C"}
FILLER_WORDS = {"LATIN", "LETTER", "CAPITAL", "SMALL", "LIGATURE", "MODIFIER", "EPIGRAPHIC", "DIGRAPH", "SUBSCRIPT"}

UPPER, LOWER, SMALL_CAPITAL, OTHER_LOWER = range(4)


class Form(NamedTuple):
    letter: str              # "A" to "Z", or NO_LETTER
    variant: int = 0         # lower-case character of the variant; 0: the letter itself
    marks: tuple = ()        # in the order of the decomposition
    style: object = ""       # "raised", "wide", or a tag that keeps look-alikes apart
    case: int = UPPER


class Latin:
    """Names the Latin letters as forms."""

    def __init__(self, data):
        self.data = data
        self.forms = {}
        for char in sorted(data.category):
            if self.is_latin(char):
                self.forms[char] = self.form(char)

    def is_latin(self, char):
        data = self.data
        if data.script.get(char) == "Latin":
            return data.category[char] in ("Lu", "Ll", "Lt", "Lm", "Lo", "Nl")
        parts = data.parts[char]  # letterlike symbols
        return (0x2100 <= char < 0x2150 and data.category[char] in ("Lu", "Ll") and len(parts) == 1
                and self.is_latin(parts[0]))

    def case(self, char):
        category = self.data.category[char]
        if category in ("Lu", "Lt"):
            return UPPER if category == "Lu" else SMALL_CAPITAL
        if category == "Nl":
            return LOWER if self.data.name[char].startswith("SMALL") else UPPER
        return SMALL_CAPITAL if "SMALL CAPITAL" in self.data.name[char] else LOWER

    def form(self, char):
        if char < 0x80:
            return Form(chr(char).upper(), case=self.case(char))
        if chr(char) == "\u017F":
            return Form("S", case=OTHER_LOWER)
        tag, parts = self.data.tag[char], self.data.parts[char]
        if not parts or self.data.category[char] == "Nl":
            return self.form_by_name(char)
        if tag == "<compat>" or not self.is_latin(parts[0]):
            return self.compatible_form(char, parts)
        base = self.form(parts[0])
        if len(parts) == 2:
            return base._replace(marks=base.marks + (parts[1],))
        return self.styled_form(self.data, char, tag, base)

    def form_by_name(self, char):
        """No decomposition: the name tells the letter, and a mark only where it says "with stroke" and no more."""
        data, case = self.data, self.case(char)
        lower = data.lower.get(char, char)
        if chr(lower) in PRINCIPALS:
            return Form(PRINCIPALS[chr(lower)], lower, case=case)
        stem, _, rest = data.name[char].partition(" WITH ")
        words = [word for word in stem.split() if word not in FILLER_WORDS]
        root = self.root(words)
        if root and rest == "STROKE":
            return root._replace(marks=(STROKE,), case=case)
        if root and not rest and case == SMALL_CAPITAL and char not in data.upper:
            return root._replace(case=case)
        return Form(ROMAN_NUMERALS.get(char) or self.letter_of(data, char, words), lower, case=case)

    @staticmethod
    def root(words):
        """The form that a name of one word, a letter's or a principal variant's, stands for."""
        if len(words) != 1:
            return None
        if words[0] in PRINCIPAL_NAMES:
            variant = PRINCIPAL_NAMES[words[0]]
            return Form(PRINCIPALS[variant], ord(variant))
        return Form(words[0]) if len(words[0]) == 1 else None

    @staticmethod
    def letter_of(data, char, words):
        if data.parts[char]:  # a Roman numeral: its first letter
            return chr(data.parts[char][0]).upper()
        single = [word for word in words if len(word) == 1]
        known = [NAME_LETTERS[word] for word in words if word in NAME_LETTERS]
        return (single + known + [words[-1][0]])[0]

    def compatible_form(self, char, parts):
        """Ligatures are variants of their first letter; a letter beside a sign has that sign as its mark."""
        letters = [part for part in parts if self.is_latin(part)]
        if len(letters) == 1 and len(parts) == 2:
            return self.form(letters[0])._replace(marks=tuple(part for part in parts if part != letters[0]))
        return Form(self.form(letters[0]).letter, self.data.lower.get(char, char), case=self.case(char))

    @staticmethod
    def styled_form(data, char, tag, base):
        plain = not base.marks and (not base.variant or chr(base.variant) in PRINCIPALS)
        if char in (0xAA, 0xBA):
            return base._replace(case=OTHER_LOWER)
        if plain and tag == "<sub>":
            return base._replace(style=RAISED, case=OTHER_LOWER)
        if plain and tag in ("<super>", "<wide>"):
            return base._replace(style=RAISED if tag == "<super>" else WIDE)
        if not tag:  # the same letter once more
            return base._replace(style=SIGN)
        if tag == "<font>":  # "SCRIPT", ...: capital and small letter share a place
            return base._replace(style=data.name[char].replace("CAPITAL", "SMALL").split(" SMALL")[0])
        return base._replace(style="U+%04X" % char)


class Placement:
    """Gives forms their (extension, diacritic); forms that differ in case only share a place."""

    def __init__(self, forms):
        self.places = {}
        self.taken = {}
        forms = [form._replace(case=0) for form in forms]
        for rule in (self.fixed, self.beside_letter, self.own_letter):
            for form in sorted(forms, key=lambda form: form.style != SIGN and (1 if form.marks else 2)):
                if form not in self.places:
                    self.take(form, rule(form))

    def take(self, form, place):
        if place is None:
            return
        cell = (form.letter, *place)
        assert cell not in self.taken, (form, place, self.taken[cell])
        self.taken[cell] = form
        self.places[form] = place

    @staticmethod
    def row(form):
        """The extension that a form belongs to by right, if any."""
        if form.letter == NO_LETTER:
            return None
        if not form.variant:
            return 0
        return 1 if chr(form.variant) in PRINCIPALS else None

    def fixed(self, form):
        row = self.row(form)
        if row is None or (form.style and form.marks):
            return None
        if form.style:
            return (row, form.style) if form.style in (RAISED, WIDE) else None
        number = MARK_NUMBERS.get(frozenset(form.marks)) if form.marks else 0
        return None if number is None else (row, number)

    def beside_letter(self, form):
        row = self.row(form)
        return None if row is None else self.free(form, [(row, number) for number in FREE_MARKS])

    def own_letter(self, form):
        if form.letter == NO_LETTER:
            extensions = (3,)
        else:
            extensions = (2, 1) if form.letter in "NZ" else (2, 3, 1)  # N's 3 is kind 2's, Z's is NO_LETTER's
        numbers = {2: range(32), 3: range(32), 1: FREE_MARKS}
        place = self.free(form, [(ext, number) for ext in extensions for number in numbers[ext]])
        assert place, form
        return place

    def free(self, form, places):
        return next((place for place in places if (form.letter, *place) not in self.taken), None)


def letter_order(index, case, diacritic, extension):
    return LETTERS | case << 12 | diacritic << 7 | index << 2 | extension


def alphabet_index(letter):
    return 3 + ord(letter[0]) - ord("A")


# Kind to its own letters: (letter, letter index, extension).
OWN_LETTERS = {1: [], 2: [("\u00F1", alphabet_index("N"), 3)],
               3: [("\u00E5", 29, 0), ("\u00E4", 30, 0), ("\u00F6", 31, 0)],
               4: [("\u00E6", 29, 0), ("\u00F8", 30, 0), ("\u00E5", 31, 0)]}


def letters(data, kind):
    """Orders of the Latin letters: those of kind 1, then the kind's own letters with what is composed from them."""
    forms = Latin(data).forms
    places = Placement(forms.values()).places
    orders = {}
    for char, form in forms.items():
        extension, diacritic = places[form._replace(case=0)]
        orders[char] = letter_order(alphabet_index(form.letter), form.case, diacritic, extension)
    for letter, index, extension in OWN_LETTERS[kind]:
        own = own_forms(forms, forms[ord(letter)], keep_marks=extension != 0)
        places = Placement(own.values()).places
        for char, form in own.items():
            orders[char] = letter_order(index, form.case, places[form._replace(case=0)][1], extension)
    assert len(set(orders.values())) == len(orders), kind
    return orders


def own_forms(forms, root, keep_marks):
    """The forms composed from `root`, as forms of a letter that `root` is itself."""
    return {char: form._replace(variant=0, marks=form.marks if keep_marks else form.marks[len(root.marks):])
            for char, form in forms.items()
            if (form.letter, form.variant) == (root.letter, root.variant)
            and form.marks[:len(root.marks)] == root.marks}


# ---- everything else -----------------------------------------------------------------------------------------------

# Scripts whose marks are points beside letters that stand without them; other scripts' marks are part of the word.
POINTED_SCRIPTS = {"Common", "Inherited", "Latin", "Greek", "Cyrillic", "Hebrew", "Arabic", "Syriac"}
NO_SCRIPT = {"Common", "Inherited"}


def is_other_letter(data, char):
    """Letters, numbers and marks that order as their code does."""
    category, script = data.category[char], data.script.get(char, "Common")
    if category in ("Co", "Cs"):
        return True
    if category[0] == "M":
        return script not in POINTED_SCRIPTS
    if category == "Lm" and script in NO_SCRIPT:  # accents, but for the marks that repeat or lengthen a letter
        return 0x3000 <= char < 0x3100 or char >= 0xA980
    if category[0] == "L":
        return char != ord(NAMED_SYMBOLS[110])
    return category == "Nd" or (category[0] == "N" and script not in NO_SCRIPT)


def spaces(data):
    chars = [char for char in sorted(data.category) if char and (char < 0x20 or char == 0x7F
                                                                 or data.category[char][0] == "Z")]
    orders = [order for order in range(SPACES, SYMBOLS) if order != UNDEFINED_ORDER]
    assert len(chars) <= len(orders)
    return dict(zip(chars, orders))


def digits(data):
    orders = {}
    for char, category in data.category.items():
        parts = data.parts[char] or [char]
        if category in ("Nd", "No") and len(parts) == 1 and 0x30 <= parts[0] <= 0x39 \
                and data.tag[char] in DIGIT_VARIANTS:
            orders[char] = DIGITS + 10 * (parts[0] - 0x30) + DIGIT_VARIANTS[data.tag[char]]
    return orders


def symbols(chars):
    orders = {ord(symbol): SYMBOLS + index for index, symbol in NAMED_SYMBOLS.items()}
    orders.update((char, SYMBOLS + char - 0x80) for char in range(0x80, 0xA0))
    rest = [char for char in sorted(chars) if char not in orders]
    orders.update((char, SYMBOLS + FIRST_FREE_SYMBOL + place) for place, char in enumerate(rest))
    assert max(orders.values()) < DIGITS and len(set(orders.values())) == len(orders)
    return orders


def first_orders(data, kind):
    """The first order of each of the 65,536 characters; SEVERAL_ORDERS where more follow."""
    orders = {0: 0, **spaces(data), **digits(data), **letters(data, kind)}
    orders.update(symbols(char for char in data.category if char not in orders and not is_other_letter(data, char)))
    return [orders.get(char, min(OTHER_SCRIPTS + char, SEVERAL_ORDERS)) for char in range(65536)]
