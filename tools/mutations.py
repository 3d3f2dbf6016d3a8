"""Finds the places in a C++ source where one small change makes a mutant.

`mutations_of(text)` lists them all; tools/mutate.py chooses among them. The
patterns rely on clang-format's blanks: a `<` with blanks around it is a comparison,
one without belongs to a template.
"""

import dataclasses
import re


@dataclasses.dataclass(frozen=True)
class Mutation:
    """Replaces text[start:end] of one line (counted from 1) by `new`."""

    line: int
    start: int
    end: int
    new: str
    kind: str
    old_line: str

    @property
    def new_line(self):
        return self.old_line[: self.start] + self.new + self.old_line[self.end :]


# Comments and the contents of strings and characters: not code, or texts that
# transcripts compare byte for byte anyway.
NOT_CODE = re.compile(
    r"""//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'""", re.DOTALL
)


def code_of(text):
    """`text` with everything that is not code blanked out, of the same length."""
    return NOT_CODE.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), text)


# kind, pattern, replacements of the group (or of the whole match)
SWAPS = {
    "comparison": {
        " < ": [" <= ", " > "],
        " <= ": [" < "],
        " > ": [" >= ", " < "],
        " >= ": [" > "],
        " == ": [" != "],
        " != ": [" == "],
    },
    "arithmetic": {
        " + ": [" - "],
        " - ": [" + "],
        " * ": [" + "],
        " / ": [" * "],
        " % ": [" / "],
        " += ": [" -= "],
        " -= ": [" += "],
    },
    "logic": {" && ": [" || "], " || ": [" && "]},
    "bits": {
        " & ": [" | "],
        " | ": [" & "],
        " ^ ": [" | "],
        " << ": [" >> "],
        " >> ": [" << "],
        " |= ": [" &= "],
        " &= ": [" |= "],
        " ^= ": [" |= "],
    },
}
WORDS = [
    ("white", "black"),
    ("own", "enemy"),
    ("from", "to"),
    ("FromSquare", "ToSquare"),
    ("FileOf", "RankOf"),
    ("true", "false"),
    ("std::min", "std::max"),
    ("knight", "bishop"),
    ("rook", "queen"),
    ("alpha", "beta"),
    ("lowerBound", "upperBound"),
    ("side", "(side ^ 1)"),
    ("board.sideToMove", "(board.sideToMove ^ 1)"),
]
NUMBER = re.compile(r"(?<![\w.'])(?:0[xX][0-9A-Fa-f]+|\d+\.\d+|\d+)(?=[uUlL]*\b|[fF]\b)(?!\.?\d|')")
ARRAY_DECLARATION = re.compile(r"^\s*(?:[\w:<>,&*]+ )+\w+(?:\[[^\]]*\])+(?: = .*|\{.*)?;?$")
CONDITION = re.compile(r"\b(?:if|while) \(")
CALL_OF_TWO = re.compile(r"(?<=\()(-?\w[\w.\->]*), (-?\w[\w.\->]*)(?=\))")
TWO_INDICES = re.compile(r"\[([\w.]+)\]\[([\w.]+)\]")
NEGATION = re.compile(r"(?<![\w)\]])[!~](?=[\w(])|(?<=[(,=?:] )-(?=[A-Za-z(])|(?<=[(])-(?=[A-Za-z(])"
                      r"|(?<=return )-(?=[A-Za-z(])")
STEP = re.compile(r"\+\+|--")
STATEMENT = re.compile(
    r"^\s*(?:(?:if|for|while) \(.*\) )?"
    r"(?:[\w:.\->\[\]]+\(.*\)|[\w:.*\->\[\]()^+]+ [-+*/|&^]?(?:<<|>>)?= .*|(?:\+\+|--)[\w:.\->\[\]]+"
    r"|break|continue|return);$"
)
GUARDED_RETURN = re.compile(r"^\s*(?:if|for|while) \(.*\) return\b.*;$")
# Lines without effect at run time, or only on what must not happen anyway.
IGNORED = re.compile(r"^\s*(?:#|assert\(|static_assert\(|namespace|using|template|}|extern)")


def closing(code, opening):
    """The index of the bracket that closes the one at `opening`, or -1."""
    depth = 0
    for index in range(opening, len(code)):
        depth += (code[index] == "(") - (code[index] == ")")
        if depth == 0:
            return index
    return -1


def changed_numbers(literal):
    if literal[:2] in ("0x", "0X"):
        return [f"0x{int(literal, 16) ^ 1:X}", f"0x{int(literal, 16) << 1:X}"]
    if "." in literal:
        digits = len(literal.split(".")[1])
        return [f"{float(literal) + 10 ** -digits:.{digits}f}"]
    value = int(literal)
    return [str(value + 1)] + ([str(value - 1)] if value > 0 else [])


def in_line(code):
    """(start, end, new, kind) of every change within one line of code; a `new`
    of None negates what is there."""
    padded = code + " "
    for kind, swaps in SWAPS.items():
        for old, news in swaps.items():
            for found in re.finditer(re.escape(old), padded):
                # A pointer or reference in a declaration is not an operator.
                if found.end() > len(code) and old.strip() in ("*", "&", "<", ">"):
                    continue
                for new in news:
                    # At the end of a line the blank after the operator is missing.
                    yield found.start(), min(found.end(), len(code)), (
                        new[: len(code) - found.start()] if found.end() > len(code) else new
                    ), kind
    if not ARRAY_DECLARATION.match(code.split(" = ")[0]):
        for found in NUMBER.finditer(code):
            for new in changed_numbers(found.group()):
                yield *found.span(), new, "number"
    for pair in WORDS:
        for old, new in (pair, pair[::-1]):
            for found in re.finditer(rf"(?<![\w.>:]){re.escape(old)}(?![\w:])", code):
                if not old.startswith("("):
                    yield *found.span(), new, "swapped names"
    for found in CONDITION.finditer(code):
        end = closing(code, found.end() - 1)
        if end > 0 and ";" not in code[found.end() : end]:
            yield found.end(), end, None, "negated condition"
    for pattern, join in ((CALL_OF_TWO, "{1}, {0}"), (TWO_INDICES, "[{1}][{0}]")):
        for found in pattern.finditer(code):
            if found.group(1) != found.group(2):
                yield *found.span(), join.format(*found.groups()), "swapped arguments"
    for found in NEGATION.finditer(code):
        yield *found.span(), "", "dropped sign"
    for found in STEP.finditer(code):
        yield *found.span(), "--" if found.group() == "++" else "++", "arithmetic"


def mutations_of(text):
    """Every mutation of a source, in order."""
    result = []
    originals = text.split("\n")
    previous = ";"
    for number, code in enumerate(code_of(text).split("\n"), 1):
        code = code.rstrip()
        if not code:
            continue
        starts_statement = previous.endswith((";", "{", "}", ":"))
        previous = code
        if IGNORED.match(code):
            continue
        original = originals[number - 1]

        def add(start, end, new, kind):
            if original[start:end] != new:
                result.append(Mutation(number, start, end, new, kind, original))

        for start, end, new, kind in in_line(code):
            if new is None:
                new = f"!({original[start:end]})"
            add(start, end, new, kind)
        if starts_statement and (STATEMENT.match(code) or GUARDED_RETURN.match(code)):
            add(len(original) - len(original.lstrip()), len(original), ";", "deleted statement")
    return result
