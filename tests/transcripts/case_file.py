"""Case files: what a transcript sets up, sends, and expects. README.md describes the
format; `read_case` reads a file into a `Case`."""

import dataclasses
import re
import shlex

DEFAULT_TIME_LIMIT = 20.0

# A directive is a word of letters and dashes at the start of a line.
DIRECTIVE = re.compile(r"([a-z][a-z-]*)(?: (.*))?$")
NO_NEWLINE = "\\ no newline"


class CaseError(Exception):
    """A case file that cannot be understood; the text says where and why."""


@dataclasses.dataclass
class Block:
    """Lines of text: literal ones, patterns, and gaps."""
    entries: list  # (kind, text), kind "|" literal, "~" pattern, "..." gap
    ends_with_newline: bool = True
    first_line: int = 0  # line numbers in the case file: [first, behind last)
    end_line: int = 0

    def text(self):
        """The text of a block that has literal lines only."""
        text = "".join(line + "\n" for _, line in self.entries)
        return text if self.ends_with_newline else text[:-1]

    def pattern(self):
        """A regular expression for the whole text."""
        parts = []
        for kind, line in self.entries:
            if kind == "...":
                parts.append(r"(?:[^\n]*\n)*?")
            else:
                parts.append((re.escape(line) if kind == "|" else f"(?:{line})") + r"\n")
        if not self.ends_with_newline:
            parts.append(parts.pop()[:-len(r"\n")])
        return "".join(parts)


@dataclasses.dataclass
class Step:
    line: int
    verb: str
    argument: str = ""
    block: Block | None = None


@dataclasses.dataclass
class Run:
    """One start of the program and what it must do."""
    line: int
    arguments: list = dataclasses.field(default_factory=list)
    setup: list = dataclasses.field(default_factory=list)   # steps before the start
    script: list = dataclasses.field(default_factory=list)  # steps while it runs
    checks: list = dataclasses.field(default_factory=list)  # steps after its end
    status: int = 0
    output: Block | None = None
    log: Block | str = "same"
    normalise: list = dataclasses.field(default_factory=list)  # (pattern, replacement)
    once: list = dataclasses.field(default_factory=list)  # patterns


@dataclasses.dataclass
class Case:
    path: object
    runs: list
    time_limit: float = DEFAULT_TIME_LIMIT
    platform: str = "any"


SETUP = {"file": "block", "bytes": "text", "folder": "text", "link": "text", "copy": "text"}
SCRIPT = {"send": "any", "send-bytes": "text", "expect": "text", "close": "none",
          "close-output": "none"}
CHECKS = {"expect-file": "block", "expect-bytes": "text", "no-file": "text"}


def literal(line):
    """A literal line; one backslash at its end only marks the end."""
    return line[:-1] if line.endswith("\\") else line


def as_entry(line):
    """The case file's spelling of a literal line."""
    return "|" + line + ("\\" if line.endswith(("\\", " ", "\t", "\r")) else "")


def is_block_line(line):
    return line[:1] in ("|", "~") or line == "..." or line == NO_NEWLINE


def read_block(lines, index):
    """The block lines from `index` on, and the index after them."""
    block = Block(entries=[], first_line=index)
    while index < len(lines) and is_block_line(lines[index]):
        line = lines[index]
        if line == "...":
            block.entries.append(("...", ""))
        elif line == NO_NEWLINE:
            block.ends_with_newline = False
        elif line[0] == "|":
            block.entries.append(("|", literal(line[1:])))
        else:
            block.entries.append(("~", line[1:]))
        index += 1
    block.end_line = index
    return block, index


def parse_normalise(argument, where):
    pattern, separator, replacement = argument.partition(" => ")
    if not separator:
        raise CaseError(f"{where}: normalise needs PATTERN => REPLACEMENT")
    return re.compile(pattern, re.MULTILINE), replacement


def apply_directive(case, word, argument, block, line, where):
    run = case.runs[-1]
    step = Step(line, word, argument, block)
    for table, target in ((SETUP, run.setup), (SCRIPT, run.script), (CHECKS, run.checks)):
        if word in table:
            if table[word] == "text" and not argument or table[word] == "none" and argument:
                raise CaseError(f"{where}: wrong argument for {word}")
            if table[word] in ("text", "any", "none") and block is not None:
                raise CaseError(f"{where}: {word} takes no lines")
            step.block = block or Block(entries=[])
            target.append(step)
            return
    if word == "run":
        case.runs.append(Run(line))
    elif word == "args":
        run.arguments = shlex.split(argument)
    elif word == "status":
        run.status = int(argument)
    elif word == "output":
        run.output = block or Block(entries=[], first_line=line, end_line=line)
    elif word == "log":
        if argument not in ("", "same", "any", "none"):
            raise CaseError(f"{where}: log takes lines, or one of same, any, none")
        run.log = argument or block or Block(entries=[], first_line=line, end_line=line)
    elif word == "normalise":
        run.normalise.append(parse_normalise(argument, where))
    elif word == "once":
        if not argument:
            raise CaseError(f"{where}: once needs a pattern")
        run.once.append(re.compile(argument))
    elif word == "time-limit":
        case.time_limit = float(argument)
    elif word == "platform":
        case.platform = argument
    else:
        raise CaseError(f"{where}: unknown directive {word}")


def read_case(path):
    # Bytes that are not UTF-8 are kept when reading and writing.
    lines = path.read_text(encoding="utf-8", errors="surrogateescape").split("\n")
    case = Case(path, [Run(0)])
    index = 0
    while index < len(lines):
        line = lines[index]
        where = f"{path}:{index + 1}"
        index += 1
        if not line.strip() or line.startswith("#"):
            continue
        match = DIRECTIVE.match(line)
        if not match:
            raise CaseError(f"{where}: no directive: {line!r}")
        block = None
        start = index
        if index < len(lines) and is_block_line(lines[index]):
            block, index = read_block(lines, index)
        apply_directive(case, match[1], match[2] or "", block, start, where)
    # A file that begins with "run" has no run before it.
    first = case.runs[0]
    if len(case.runs) > 1 and first.output is None and not first.script and not first.arguments:
        case.runs[1].setup[:0] = first.setup
        case.runs.pop(0)
    for run in case.runs:
        if run.output is None:
            raise CaseError(f"{path}: the run at line {run.line} expects no output; add 'output'")
    return case
