"""Times velmar-cfg as a process beside git's commands on files that hold the same, and prints ratios with a verdict per
goal. Run by `scripts/benchmark tool`.

The runs of a row's two commands alternate, in random order, so that a change of the machine's speed meets both. A ratio
is the median of the ratios of neighbouring runs, of processor time (user and system), which other programs disturb less
than the time that passes; that is shown as well. Peak memory is the largest resident size of any run. It is no less
than this program's own, some 15 MiB, with which every process begins.
"""

import argparse
import itertools
import json
import os
import random
import statistics
import tempfile
import time
from collections import namedtuple

MEBIBYTE = 2**20

Run = namedtuple("Run", "passed processor memory")
Files = namedtuple("Files", "directory lines name settings git bytes")
Row = namedtuple("Row", "what ours theirs rounds at_most memory_at_most", defaults=(None,))

# A goal in milliseconds of the time that passes, for a command that a person waits for. `names` is its standard input.
Wait = namedtuple("Wait", "what ours rounds at_most names", defaults=(os.devnull,))

WORDS = "route place clock timing power net pin cell fanout buffer delay skew slack macro seed effort limit".split()


def distinct_names(count, generator):
    """In random order; of the letters that git allows as well, but for the underscore."""
    names = {}
    while len(names) < count:
        words = [generator.choice(WORDS) for _ in range(generator.randint(1, 3))]
        names["_".join(words) + "_" + str(generator.randrange(10**7))] = None
    return list(names)


def value(generator):
    kind = generator.random()
    if kind < 0.5:
        return str(generator.randrange(100000))
    if kind < 0.8:
        return generator.choice(["on", "off"])
    return f"/proj/libs/{generator.getrandbits(32):x}/v{generator.randrange(9)}"


def git_key(name):
    return name.replace("_", "-")


def in_a_child(work, *arguments):
    """Has a child do the work, so that this process stays small: every command that it starts is at first as large."""
    child = os.fork()
    if child == 0:
        work(*arguments)
        os._exit(0)
    if os.waitpid(child, 0)[1] != 0:
        raise SystemExit("could not write the files")


def write_lines(settings, git, lines):
    generator = random.Random(lines)
    with open(settings, "w", encoding="ascii") as ours, open(git, "w", encoding="ascii") as theirs:
        theirs.write("[s]\n")
        for name in distinct_names(lines, generator):
            text = value(generator)
            ours.write(f"{name} = {text}\n")
            theirs.write(f"\t{git_key(name)} = {text}\n")


def write_settings(directory, lines):
    """A project's settings file, and git's with the same names and values."""
    project = os.path.join(directory, f"project_{lines}")
    os.mkdir(project)
    settings, git = os.path.join(project, "velmar.ini"), os.path.join(project, "git.config")
    in_a_child(write_lines, settings, git, lines)
    with open(settings, encoding="ascii") as file:
        name = next(itertools.islice(file, lines // 2, None)).split(" ")[0]
    return Files(project, lines, name, settings, git, os.path.getsize(settings))


def catalogue(tool):
    """Section, key and an allowed value of each preference."""
    rows = json.loads(output_of([tool, "--json", "prefs", "list", "--all"]))
    keys = []
    for row in rows:
        section = json.loads(output_of([tool, "--json", "prefs", "describe", row["key"]]))["catalogue_section"]
        keys.append((section, row["key"], (row["allowed"] or ["text"])[0]))
    return sorted(keys)


def write_known_preferences(path, keys, count):
    """The catalogue's keys, over and over in the sections of further releases."""
    with open(path, "w", encoding="ascii") as file:
        release = 0
        while count > 0:
            release += 1
            last_section = None
            for section, key, text in keys:
                if section != last_section:
                    file.write(f"[{section} {release // 10}.{release % 10}_pro]\n")
                    last_section = section
                file.write(f"{key} = {text}\n")
            count -= len(keys)


def write_unknown_preferences(path, keys, count):
    """Keys that begin like the catalogue's and are none of them, in one section."""
    generator = random.Random(count)
    names = {}
    while len(names) < count:
        names[f"{generator.choice(keys)[1]}_{generator.randrange(10**8)}"] = None
    with open(path, "w", encoding="ascii") as file:
        file.write("[General 23.4_pro]\n")
        file.writelines(f"{name} = on\n" for name in names)


def output_of(command):
    with tempfile.TemporaryFile() as file:
        run_once(command, file.fileno())
        file.seek(0)
        return file.read()


def run_once(command, standard_output, standard_input=os.devnull):
    begin = time.perf_counter()
    process = os.posix_spawnp(
        command[0], command, os.environ,
        file_actions=[(os.POSIX_SPAWN_OPEN, 0, standard_input, os.O_RDONLY, 0), (os.POSIX_SPAWN_DUP2, standard_output, 1)],
    )
    _, status, usage = os.wait4(process, 0)
    passed = time.perf_counter() - begin
    if os.waitstatus_to_exitcode(status) not in (0, 1):  # 1: findings, or differences
        raise SystemExit(f"{' '.join(command)}: exit status {os.waitstatus_to_exitcode(status)}")
    return Run(passed, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


def measure(row, rounds, nowhere):
    """The runs of our command and of theirs, after one of each that does not count."""
    commands = {"ours": row.ours, "theirs": row.theirs}
    runs = {who: [] for who in commands}
    for command in commands.values():
        run_once(command, nowhere)
    for _ in range(rounds):
        for who in random.sample(sorted(commands), len(commands)):
            runs[who].append(run_once(commands[who], nowhere))
    return runs


def ratio(runs, figure):
    return statistics.median(
        getattr(a, figure) / getattr(b, figure) for a, b in zip(runs["ours"], runs["theirs"])
    )


def report(row, runs):
    """A row of the table, and the same for programs."""
    of_processor, of_time = ratio(runs, "processor"), ratio(runs, "passed")
    memory = max(run.memory for run in runs["ours"])
    met = of_processor <= row.at_most and (row.memory_at_most is None or memory <= row.memory_at_most)
    limit = "-" if row.memory_at_most is None else f"{row.memory_at_most / MEBIBYTE:.0f} MiB"
    median = statistics.median(run.processor for run in runs["ours"])
    print(
        f"| {row.what} | {row.at_most} x | {of_processor:.2f} | {of_time:.2f} | {1000 * median:.1f} ms | "
        f"{memory / MEBIBYTE:.0f} MiB | {limit} | {'met' if met else '**missed**'} |",
        flush=True,
    )
    return {
        "what": row.what,
        "at_most": row.at_most,
        "ratio_of_processor_time": of_processor,
        "ratio_of_time_passed": of_time,
        "peak_memory": memory,
        "peak_memory_at_most": row.memory_at_most,
        "met": met,
    }


def report_wait(row, rounds, nowhere):
    """Runs and reports a row of the table of times, and returns the same for programs."""
    runs = [run_once(row.ours, nowhere, row.names) for _ in range(rounds + 1)][1:]
    passed = [1000 * run.passed for run in runs]
    median = statistics.median(passed)
    met = median <= row.at_most
    print(
        f"| {row.what} | {row.at_most} ms | {median:.1f} ms | {min(passed):.1f} ms | {max(passed):.1f} ms | "
        f"{max(run.memory for run in runs) / MEBIBYTE:.0f} MiB | {'met' if met else '**missed**'} |",
        flush=True,
    )
    return {"what": row.what, "at_most_ms": row.at_most, "median_ms": median, "minimum_ms": min(passed), "met": met}


def change_lines(settings, every):
    """Every so many lines get another value."""
    with open(settings, encoding="ascii") as file:
        lines = file.readlines()
    lines[::every] = [line.split(" ")[0] + " = changed\n" for line in lines[::every]]
    with open(settings, "w", encoding="ascii") as file:
        file.writelines(lines)


def waits_of(tool, directory, short):
    """What a person waits for, on projects and documents of usual size."""
    sizes = (10, 100) if short else (1000, 10_000)
    project, documented = [write_settings(os.path.join(directory, "waits"), lines) for lines in sizes]
    names = os.path.join(directory, "names")
    with open(project.settings, encoding="ascii") as file, open(names, "w", encoding="ascii") as out:
        out.writelines(line.split(" ")[0] + "\n" for line in file)
    before, after = os.path.join(directory, "before.json"), os.path.join(directory, "after.json")
    output_of([tool, "--project", documented.directory, "snapshot", "-o", before])
    in_a_child(change_lines, documented.settings, 10)
    output_of([tool, "--project", documented.directory, "snapshot", "-o", after])
    rounds = 21
    of = f"of {documented.lines} variables"
    return [
        Wait(
            f"get --stdin, {project.lines} names of {project.lines} lines",
            [tool, "--project", project.directory, "get", "--stdin"], rounds, 20, names,
        ),
        Wait(f"explain --of a snapshot {of}", [tool, "explain", documented.name, "--of", before], rounds, 100),
        Wait(f"diff of two snapshots {of}, a tenth changed", [tool, "diff", before, after], rounds, 100),
    ]


def rows_of(tool, load_preferences, directory, short):
    """The goals. With `short`, on files of a hundredth, which show only that every row runs."""
    sizes = (10, 100, 1000) if short else (1000, 100_000, 1_000_000)
    small, medium, large = [write_settings(directory, lines) for lines in sizes]
    keys = catalogue(tool)
    count = 3000 if short else 300_000
    known, unknown = [os.path.join(directory, kind, "velmar2.ini") for kind in ("known", "unknown")]
    for path, write in ((known, write_known_preferences), (unknown, write_unknown_preferences)):
        os.mkdir(os.path.dirname(path))
        in_a_child(write, path, keys, count)

    def ours(files, *arguments):
        return [tool, "--project", files.directory, *arguments]

    def git_get(files):
        return ["git", "config", "-f", files.git, "--get", "s." + git_key(files.name)]

    def load(path):
        return ["env", "VELMAR2_INI=" + os.path.dirname(path), load_preferences]

    snapshot, changed = os.path.join(directory, "a.json"), os.path.join(directory, "b.json")
    output_of(ours(large, "snapshot", "-o", snapshot))
    with open(large.settings, "a", encoding="ascii") as file:
        file.write(f"{large.name} = changed\n")
    output_of(ours(large, "snapshot", "-o", changed))
    document = os.path.getsize(snapshot)

    def spaced(number):
        return f"{number:,}".replace(",", " ")

    def lines(files):
        return spaced(files.lines) + " lines"

    few, many = 5, 100
    return [
        Row("start (--version) / git --version", [tool, "--version"], ["git", "--version"], many, 1.5),
        Row(f"get, {lines(small)} / git config --get", ours(small, "get", small.name), git_get(small), many, 1.5),
        Row(
            f"get, {lines(large)} / git config --get",
            ours(large, "get", large.name), git_get(large), 2 * few, 2.5, 2 * large.bytes + 20 * MEBIBYTE,
        ),
        Row(
            f"list, {lines(large)} / git config --list",
            ours(large, "list"), ["git", "config", "-f", large.git, "--list"], few, 4,
        ),
        Row(f"lint, {lines(large)} / git config --get", ours(large, "lint"), git_get(large), few, 12),
        Row(f"lint, {lines(large)} / lint of a tenth", ours(large, "lint"), ours(medium, "lint"), few, 15),
        Row(
            f"snapshot, {lines(large)} / git config --get",
            ours(large, "snapshot", "-o", "/dev/null"), git_get(large), few, 12, 5 * large.bytes,
        ),
        Row(
            "diff of two such snapshots / git config --get",
            [tool, "diff", snapshot, changed], git_get(large), few, 25, 1.5 * document,
        ),
        Row(
            f"prefs lint, {spaced(count)} known keys / the library's load",
            [tool, "prefs", "lint", known], load(known), 2 * few, 1.5,
        ),
        Row(
            f"prefs lint, {spaced(count)} unknown keys / the library's load",
            [tool, "prefs", "lint", unknown], load(unknown), 2 * few, 1.5,
        ),
    ]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--short", action="store_true", help="show only that every row runs; its figures say nothing")
    parser.add_argument("--json", metavar="FILE", help="write the figures as JSON too")
    parser.add_argument("--rows", metavar="TEXT", default="", help="only the rows whose title holds this")
    parser.add_argument("tool", help="velmar-cfg")
    parser.add_argument("load_preferences", help="the program that loads the preference file in use")
    options = parser.parse_args()
    tool, load_preferences = os.path.abspath(options.tool), os.path.abspath(options.load_preferences)

    with tempfile.TemporaryDirectory() as directory, open(os.devnull, "wb") as nowhere:
        for name in list(os.environ):
            if name.startswith(("VELMAR", "APPENDED_VELMAR", "GIT_")):
                del os.environ[name]
        os.environ.update(HOME=directory, GIT_CONFIG_NOSYSTEM="1", LC_ALL="C")
        os.chdir(directory)
        os.mkdir("waits")
        waits = [row for row in waits_of(tool, directory, options.short) if options.rows in row.what]
        rows = [row for row in rows_of(tool, load_preferences, directory, options.short) if options.rows in row.what]
        print(f"Load of the machine at the beginning: {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors\n")
        print("| Work | At most | Ratio | Ratio of time passed | Ours | Peak memory | At most | Verdict |")
        print("|---|---|---|---|---|---|---|---|")
        figures = [report(row, measure(row, 1 if options.short else row.rounds, nowhere.fileno())) for row in rows]
        print("\n| Work | At most | Median of the time passed | Minimum | Maximum | Peak memory | Verdict |")
        print("|---|---|---|---|---|---|---|")
        figures += [report_wait(row, 1 if options.short else row.rounds, nowhere.fileno()) for row in waits]
        print(f"\nLoad of the machine at the end: {os.getloadavg()[0]:.1f}")
    if options.json:
        with open(options.json, "w", encoding="utf-8") as file:
            json.dump(figures, file, indent=2)


main()
