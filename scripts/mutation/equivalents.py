"""The list of mutants that no test can kill, because they are equivalent to the original."""

from collections import namedtuple

from mutation.sources import ROOT, mutants_of

LIST = "tests/equivalent_mutants.txt"

Entry = namedtuple("Entry", "line file before after")


def entries_in(text):
    """Stanzas of a file's name, pairs of a "- " and a "+ " line, and one or more "= " lines that give the reason."""
    file = before = None
    for number, line in enumerate(text.splitlines(), 1):
        kind, rest = line[:2], line[2:]
        if not line or line.startswith("#") or kind == "= ":
            continue
        if kind == "- ":
            before = rest
        elif kind == "+ ":
            yield Entry(number, file, before, rest)
        else:
            file = line


def read_equivalents():
    """The entries, by (file, line as it is, line as it would be)."""
    return {entry[1:]: entry for entry in entries_in((ROOT / LIST).read_text())}


def dead_entries(entries, mutants_in_file=mutants_of):
    """Each entry that stands for no mutant, and why: it hides nothing today, but who knows what later."""
    offered = {}
    for entry in entries:
        if entry.file not in offered:
            mutants = mutants_in_file(entry.file) if (ROOT / entry.file).is_file() else ()
            offered[entry.file] = {(mutant.before, mutant.after) for mutant in mutants}
        if not (ROOT / entry.file).is_file():
            why = f"there is no file {entry.file}"
        elif not any(before == entry.before for before, _ in offered[entry.file]):
            why = f"{entry.file} has no such line any more: {entry.before}"
        elif (entry.before, entry.after) not in offered[entry.file]:
            why = f"{entry.file} has the line, but no mutant makes this of it: {entry.after}"
        else:
            continue
        yield entry, why


def without(text, entries):
    """The list without these entries, and without the stanzas that hold no others."""
    gone = {entry.line for entry in entries} | {entry.line - 1 for entry in entries}
    kept = "\n".join(line for number, line in enumerate(text.splitlines(), 1) if number not in gone)
    stanzas = [stanza for stanza in kept.split("\n\n") if stanza.startswith("#") or "\n+ " in stanza]
    return "\n\n".join(stanzas).rstrip("\n") + "\n"


def key(mutant):
    return mutant.file, mutant.before, mutant.after


def as_entry(mutant):
    return f"- {mutant.before}\n+ {mutant.after}"
