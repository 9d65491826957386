"""Finds the mutants that a source file offers.

The text is read without a parser: comments, preprocessor lines, compile-time checks and the insides of literals are blanked
out, so that positions stay, and regular expressions find operators, constants, conditions and statements in the rest. They
rely on the formatter: binary operators have blanks around them, and a statement that ends on its line stands alone there.
"""

import re
from collections import namedtuple
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent

# `start` to `end` of the file's text becomes `new`. `before` and `after` are the lines it is in, blanks run together.
Mutant = namedtuple("Mutant", "file line start end new before after")


# --- Reading sources ---

TOKENS = re.compile(r"""//[^\n]* | /\*.*?\*/ | \bR"\(.*?\)" | "(?:[^"\\\n]|\\.)*" | (?<![0-9A-Fa-f])'(?:[^'\\\n]|\\.)+'""",
                    re.VERBOSE | re.DOTALL)


def masked(text):
    """The text with comments, literals, preprocessor lines and compile-time checks blanked out; the literals."""
    literals = []

    def blank(match):
        if match[0][0] in "\"'":  # not a raw one
            literals.append((match.start(), match.end()))
            return match[0][0] + "_" * (len(match[0]) - 2) + match[0][0]
        return re.sub(r"[^\n]", " ", match[0])

    code = list(TOKENS.sub(blank, text))

    def hide(start, end):
        code[start:end] = [c if c == "\n" else " " for c in code[start:end]]

    for match in re.finditer(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", "".join(code), re.MULTILINE):
        hide(*match.span())
    for match in re.finditer(r"^(?:consteval|constexpr) bool \w+\(\)\n\{.*?^\}", "".join(code),
                             re.MULTILINE | re.DOTALL):
        hide(*match.span())
    for match in re.finditer(r"\b(?:static_assert|__attribute__)\(", "".join(code)):
        hide(match.start(), closing(code, match.end() - 1))
    code = "".join(code)
    return code, [(start, end) for start, end in literals if code[start] != " "]


def closing(code, opening):
    """The position of the parenthesis that closes the one at `opening`."""
    depth = 0
    for at in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        if depth == 0:
            return at
    raise ValueError("unbalanced parentheses")


# --- Mutation operators: each yields (start, end, new) ---

OPERATORS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["+"], "%": ["/"], "<<": [">>"], ">>": ["<<"],
    "&": ["|"], "|": ["&"], "+=": ["-="], "-=": ["+="], "|=": ["="],
}


def operators(text, code, _literals):
    # The formatter puts blanks around binary operators, and around no other.
    choices = "|".join(re.escape(operator) for operator in sorted(OPERATORS, key=len, reverse=True))
    for match in re.finditer(rf"(?<= )({choices})(?=[ \n])", code):
        for new in OPERATORS[match[1]]:
            yield match.start(), match.end(), new
    for match in re.finditer(r"\+\+|--", code):
        yield match.start(), match.end(), "--" if match[0] == "++" else "++"
    for match in re.finditer(r"!(?=[\w(*])", code):
        yield match.start(), match.end(), ""


def constants(text, code, literals):
    for match in re.finditer(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(?=[uUlL]*(?![\w.]))", code):
        hexadecimal, octal = match[1].startswith("0x"), re.fullmatch(r"0\d+", match[1])
        number = int(match[1], 16 if hexadecimal else 8 if octal else 10)
        for other in (number + 1, number - 1) if number > 0 else (1,):
            yield match.start(), match.end(), f"{other:#x}" if hexadecimal else f"0{other:o}" if octal else str(other)
    for match in re.finditer(r"\b(true|false)\b", code):
        yield match.start(), match.end(), "false" if match[0] == "true" else "true"
    for start, end in literals:
        inside = text[start + 1:end - 1]
        if text[start] == "'":
            other = "\\1" if inside == "\\0" else "\\0" if inside[0] == "\\" else "!" if inside == "~" else \
                chr(ord(inside) + 1)
            yield start + 1, end - 1, other
        elif inside.startswith("\\"):
            yield start + 1, start + 3, "~"
        else:
            yield start + 1, start + 1 + len(inside[:1]), "~"


def conditions(text, code, _literals):
    for match in re.finditer(r"\b(?:if|while) \(", code):
        end = closing(code, match.end() - 1)
        start = max(match.end(), code.rfind(";", match.end(), end) + 1)
        start += len(code[start:end]) - len(code[start:end].lstrip())
        condition = code[start:end]
        alone = not re.search(r"&&|\|\|", condition)
        # Those are negated by the operator's own change.
        if not (alone and re.search(r"^!| (?:==|!=|<|>|<=|>=) ", condition)):
            yield start, end, f"!({text[start:end]})"


DECLARATION = re.compile(r"^ *(?:const(?:expr|init)? |static )*[\w:<>, *]+[\w>*&] \w+(?: = .*|[({].*)?;$")
ASSIGNMENT = re.compile(r"^ *(?P<target>[\w.\[\]>-]+) [+-]?= .*;$")
STATEMENT = re.compile(r"^(?P<indent> +)(?!return\b|using\b|case\b|friend\b|throw\b)(?P<rest>[^\n{}]*[\w)\]'\"+-]);$")


def order_matters(line, other):
    """Whether it may: not of two declarations, nor of two assignments that have nothing to do with each other."""
    if DECLARATION.match(line) and DECLARATION.match(other):
        return False
    assignments = [ASSIGNMENT.match(line), ASSIGNMENT.match(other)]
    if not all(assignments):
        return True
    names = [set(re.findall(r"\w+", assignment["target"])) for assignment in assignments]
    words = [set(re.findall(r"\w+", assignment[0])) for assignment in assignments]
    return assignments[0]["target"] == assignments[1]["target"] or "(" in line + other or \
        names[0] <= words[1] or names[1] <= words[0]


def statements(text, code, _literals, header):
    lines = code.split("\n")
    starts = [0]
    for line in lines:
        starts.append(starts[-1] + len(line) + 1)
    single = []
    for at, line in enumerate(lines):
        match = STATEMENT.match(line)
        before = next((lines[i].rstrip() for i in range(at - 1, -1, -1) if lines[i].strip()), "")
        alone = match and line.count("(") == line.count(")") and re.search(r"[;{}:)]$|\belse$", before)
        inside_function = match and len(match["indent"]) >= (8 if header else 4)
        single.append(match if alone and inside_function else None)
    for at, match in enumerate(single):
        if match is None:
            continue
        start = starts[at] + len(match["indent"])
        yield start, starts[at] + len(lines[at]), ";"
        other = single[at + 1] if at + 1 < len(single) else None
        if other is not None and other["indent"] == match["indent"] and order_matters(lines[at], lines[at + 1]):
            end = starts[at + 1] + len(lines[at + 1])
            yield start, end, text[starts[at + 1] + len(match["indent"]):end] + "\n" + match["indent"] + \
                text[start:starts[at] + len(lines[at])]


def mutants_of(file):
    return mutants_in((ROOT / file).read_text(), file)


def mutants_in(text, file):
    code, literals = masked(text)
    found = set()
    found.update(operators(text, code, literals))
    found.update(constants(text, code, literals))
    found.update(conditions(text, code, literals))
    found.update(statements(text, code, literals, file.endswith(".h")))
    for start, end, new in sorted(found):
        first = text.rfind("\n", 0, start) + 1
        last = text.find("\n", end)
        one_line = lambda part: " ".join(part.split())
        yield Mutant(file, text.count("\n", 0, start) + 1, start, end, new, one_line(text[first:last]),
                     one_line(text[first:start] + new + text[end:last]))
