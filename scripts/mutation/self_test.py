"""Checks that sources, lists, outcomes and processes are read as they should be: tables whose failing row names itself."""

import os
import tempfile
import time
from pathlib import Path

from mutation.equivalents import dead_entries, entries_in, without
from mutation.processes import Runner
from mutation.scratch import copy_changed, file_times
from mutation.session import Outcomes
from mutation.sources import mutants_in
from mutation.tests import decides, tests_for

# A source's text, and each mutant's line as it would be; the lines of a body are indented as the formatter does it.
MUTANTS = [
    ("return a < b;", ["return a <= b;", "return a >= b;"]),
    ("return a == b;", ["return a != b;"]),
    ("return a && !b;", ["return a || !b;", "return a && b;"]),
    ("x <<= 1;", ["x <<= 2;", "x <<= 0;"]),
    ("return x % 010;", ["return x / 010;", "return x % 011;", "return x % 07;"]),
    ("return 0x10;", ["return 0x11;", "return 0xf;"]),
    ("return 0;", ["return 1;"]),
    ("return 16U;", ["return 17U;", "return 15U;"]),
    ("return a1 + 1.5;", ["return a1 - 1.5;"]),
    ("return true;", ["return false;"]),
    ("return 'a';", ["return 'b';"]),
    ("return '~';", ["return '!';"]),
    (r"return '\n';", [r"return '\0';"]),
    (r"return '\0';", [r"return '\1';"]),
    ('return "text";', ['return "~ext";']),
    ('return "";', ['return "~";']),
    (r'return "\t1";', ['return "~1";']),
    ('return R"(a "raw" 1 < 2)";', []),
    ("// a < b", []),
    ("return a; /* 1 < 2 */", []),
    ("return a; // 'quoted 1", []),
    ("#define LIMIT 3 \\\n    + 4", []),
    ("static_assert(sizeof(int) == 4 && (1 < 2));", []),
    ("constexpr bool holds()\n{\n    return 1 < 2;\n}", []),
    ("    if (ready)\n", ["if (!(ready))"]),
    ("    if (!ready)\n", ["if (ready)"]),
    ("    if (a == b)\n", ["if (a != b)"]),
    ("    while (next(x) && y)\n", ["while (!(next(x) && y))", "while (next(x) || y)"]),
    ("    if (int n = f(); g(n))\n", ["if (int n = f(); !(g(n)))"]),
    ("{\n    stop();\n}", [";"]),
    ("{\n    first();\n    second();\n}", [";", ";", "second(); first();"]),
    ("{\n    a = b;\n    c = d;\n}", [";", ";"]),
    ("{\n    a = b;\n    b = d;\n}", [";", ";", "b = d; a = b;"]),
    ("{\n    ++count;\n}", [";", "--count;"]),
    ("{\n    return stop();\n}", []),
    ("{\n    call(a,\n         b);\n}", []),
    ("member();", []),
]

LIST = """# a comment
cfg_ini/a.cpp
- if (a)
+ if (!(a))
- x;
+ ;
= a reason,
= in two lines

cfg_ini/b.cpp
- y;
+ ;
= another
"""


def complain(found, expected, what):
    if found != expected:
        print(f"{what}: {found}, not {expected}")
    return found != expected


def test_sources():
    for text, expected in MUTANTS:
        after = [mutant.after for mutant in mutants_in(text + "\n", "cfg_ini/file.cpp")]
        yield complain(sorted(after), sorted(expected), f"mutants of {text!r}")
    mutant = next(mutants_in("a;\n\n  b <  c;\n", "cfg_ini/file.cpp"))
    yield complain(mutant[1:], (3, 8, 9, "<=", "b < c;", "b <= c;"), "what a mutant holds")


def test_list():
    entries = list(entries_in(LIST))
    yield complain([entry[:] for entry in entries],
                   [(4, "cfg_ini/a.cpp", "if (a)", "if (!(a))"), (6, "cfg_ini/a.cpp", "x;", ";"),
                    (12, "cfg_ini/b.cpp", "y;", ";")], "entries")
    # Any file that exists stands for the entries' files: what it holds is given.
    text = "    if (a)\n{\n    y;\n}\n"
    alive = [entry._replace(file="CMakeLists.txt") for entry in entries]
    dead = list(dead_entries(alive + [entries[0]], lambda file: mutants_in(text, file)))
    yield complain([(entry.line, why) for entry, why in dead],
                   [(6, "CMakeLists.txt has no such line any more: x;"), (4, "there is no file cfg_ini/a.cpp")], "dead entries")
    changed = [entries[0]._replace(file="CMakeLists.txt", after="if (b)")]
    yield complain([why for _, why in dead_entries(changed, lambda file: mutants_in(text, file))],
                   ["CMakeLists.txt has the line, but no mutant makes this of it: if (b)"], "an entry without its mutant")
    for gone, expected in (([0], LIST.replace("- if (a)\n+ if (!(a))\n", "")), ([2], LIST[:LIST.index("\ncfg_ini/b")]),
                           ([], LIST)):
        yield complain(without(LIST, [entries[number] for number in gone]), expected, f"the list without {gone}")


def test_table():
    for file, first in (("cfg_ini/cfg_ini_reader/lookup.cpp", "variable_store_tests"),
                        ("cfg_ini/cfg_cached_value.h", "cfg_cached_value_tests"),
                        ("platform/thr/thr_mutex.cpp", "platform_tests"), ("tools/velmar-cfg/text.cpp", "velmar_cfg_model_tests")):
        yield complain(tests_for(file)[0], first, f"the first test of {file}")
    for name, of_tool, expected in (("cfg_ini/cfg_ini.h", False, True), ("tools/velmar-cfg/text.h", False, False),
                                    ("tools/velmar-cfg/text.h", True, True), ("tests/velmar_cfg/get_test.cpp", False, False),
                                    ("tests/velmar_cfg/get_test.cpp", True, True), ("tests/equivalent_mutants.txt", True, False),
                                    ("README.md", True, False), ("scripts/mutation/scratch.cmake", False, True),
                                    ("scripts/mutation/self_test.py", False, False)):
        yield complain(decides(name, of_tool), expected, f"whether {name} decides")


def test_outcomes(directory):
    file = directory / "outcomes.jsonl"
    mutant, other = list(mutants_in("return a < b;\n", "cfg_ini/file.cpp"))
    outcomes = Outcomes(file)
    outcomes.add(mutant, "killed")
    with file.open("a") as text:
        text.write('["of other sources", ["cfg_ini/file.cpp", 9, 10, ">="], "survived"]\n["cut o')
    again = Outcomes(file)
    yield complain((again.get(mutant), again.get(other)), ("killed", None), "the outcomes kept")
    yield complain(len(file.read_text().splitlines()), 1, "the lines kept")


def test_putting_back(directory):
    build, original = directory / "build", directory / "original"
    (build / "below").mkdir(parents=True)
    (build / "below/a.o").write_text("one")
    (build / "b.o").write_text("two")
    (build / "c.o").symlink_to("b.o")
    times = copy_changed(build, original, file_times(original))
    (build / "below/a.o").write_text("new")
    (build / "b.o").unlink()
    copy_changed(original, build, file_times(build), times)
    yield complain(((build / "below/a.o").read_text(), (build / "c.o").read_text()), ("one", "two"), "what was put back")
    yield complain(file_times(build), times, "the times of what was put back")


def test_processes():
    for command, seconds, idle, expected in (
            ("exit 0", 60, 60, 0),
            ("exit 3", 60, 60, 3),
            ("kill -SEGV $$", 60, 60, -11),
            ("sleep 60 & wait", 60, 0.6, None),
            ("while :; do :; done & sleep 1; kill $!", 60, 0.3, 0),
            ("while :; do :; done", 0.6, 60, None)):
        start = time.monotonic()
        status, _ = Runner().run(["sh", "-c", command], seconds, idle)
        yield complain((status, time.monotonic() - start < 30), (expected, True), f"running {command!r}")


def run():
    failures = 0
    with tempfile.TemporaryDirectory(prefix="zon_mutation_") as directory:
        for rows in (test_sources(), test_list(), test_table(), test_outcomes(Path(directory)),
                     test_putting_back(Path(directory) / "files"), test_processes()):
            failures += sum(rows)
    print(f"{failures} rows failed" if failures else "all rows hold")
    return 1 if failures else 0
