"""Makes mutants in several scratch copies at once, and keeps the outcomes, so that a run can be interrupted."""

import hashlib
import json
import os
import subprocess
import threading
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor, as_completed

from mutation.equivalents import as_entry
from mutation.scratch import Scratch
from mutation.sources import ROOT
from mutation.tests import decides, is_of_tool, tests_for


def tree_hash(of_tool):
    """Of everything that the outcome of a mutant of the library, or of the tool, depends on."""
    names = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\0")
    total = hashlib.sha256()
    for name in sorted(name for name in names if name and decides(name, of_tool) and (ROOT / name).is_file()):
        total.update(f"{name}\0{hashlib.sha256((ROOT / name).read_bytes()).hexdigest()}\n".encode())
    return total.hexdigest()


class Outcomes:
    """The outcomes of earlier mutants, one JSON value a line; those of other sources or tests are forgotten."""

    def __init__(self, file):
        self.file = file
        self.trees = {of_tool: tree_hash(of_tool) for of_tool in (False, True)}
        self.known = {}
        lines = file.read_text().splitlines() if file.exists() else []
        for line in lines:
            try:
                tree, mutant, outcome = json.loads(line)
            except ValueError:
                continue  # cut off when the run was killed
            if tree in self.trees.values():
                self.known[tree, tuple(mutant)] = outcome
        file.write_text("".join(self.line(tree, mutant, outcome) for (tree, mutant), outcome in self.known.items()))

    def line(self, tree, mutant, outcome):
        return json.dumps([tree, mutant, outcome]) + "\n"

    def key(self, mutant):
        return self.trees[is_of_tool(mutant.file)], (mutant.file, mutant.start, mutant.end, mutant.new)

    def get(self, mutant):
        return self.known.get(self.key(mutant))

    def add(self, mutant, outcome):
        self.known[self.key(mutant)] = outcome
        with self.file.open("a") as file:
            file.write(self.line(*self.key(mutant), outcome))


class Session:
    def __init__(self, work, jobs, workers):
        self.outcomes = Outcomes(work / "outcomes.jsonl")
        self.scratches = [Scratch(work / str(number), max(1, jobs // workers)) for number in range(workers)]
        self.counts = {}
        self.survivors = []
        self.tried = 0

    def run(self, mutants):
        """Tries those whose outcome is not known. False if it was interrupted."""
        for mutant in mutants:
            if outcome := self.outcomes.get(mutant):
                self.count(mutant, outcome)
        rest = [mutant for mutant in mutants if not self.outcomes.get(mutant)]
        print(f"{len(mutants)} mutants, {len(mutants) - len(rest)} of them tried before", flush=True)
        if not rest:
            return True
        start = time.monotonic()
        pool = ThreadPoolExecutor(len(self.scratches))
        try:
            self.prepare(pool, rest)
            prepared = time.monotonic()
            print(f"built in {prepared - start:.0f} s", flush=True)
            self.try_all(pool, rest)
            print(f"{len(rest)} mutants tried, one in {(time.monotonic() - prepared) / len(rest):.1f} s")
            return True
        except KeyboardInterrupt:
            print(f"interrupted after {self.tried} of {len(rest)} mutants; the next run goes on there")
            return False
        finally:
            for scratch in self.scratches:
                scratch.runner.stop()
            pool.shutdown(cancel_futures=True)

    def prepare(self, pool, mutants):
        tests = list(dict.fromkeys(test for mutant in mutants for test in tests_for(mutant.file)))
        with_tool = any(is_of_tool(mutant.file) for mutant in mutants)
        for done in [pool.submit(scratch.prepare, tests, with_tool) for scratch in self.scratches]:
            done.result()
        self.scratches[0].measure(tests)
        for scratch in self.scratches:
            scratch.runs = self.scratches[0].runs

    def try_all(self, pool, mutants):
        idle = list(self.scratches)
        lock = threading.Lock()

        def attempt(mutant):
            with lock:
                scratch = idle.pop()
            try:
                began = time.monotonic()
                return scratch.outcome(mutant), time.monotonic() - began
            finally:
                with lock:
                    idle.append(scratch)

        attempts = {pool.submit(attempt, mutant): mutant for mutant in mutants}
        for done in as_completed(attempts):
            mutant, (outcome, seconds) = attempts[done], done.result()
            if os.environ.get("ZON_MUTATE_TIMES"):
                print(f"TIME {seconds:.1f} {outcome} {mutant.file}:{mutant.line} {mutant.start} {mutant.new!r}", flush=True)
            self.tried += 1
            self.outcomes.add(mutant, outcome)
            self.count(mutant, outcome)
            if self.tried % 50 == 0:
                print(f"... {self.tried}", flush=True)

    def count(self, mutant, outcome):
        self.counts.setdefault(mutant.file, Counter())[outcome] += 1
        if outcome == "survived":
            self.survivors.append(mutant)
            print(f"{mutant.file}:{mutant.line}\n{as_entry(mutant)}", flush=True)

    def report(self, equivalent):
        """Prints the table. The score: how many of 100 mutants that compile and are not equivalent were killed."""
        total = Counter()
        form = "{:<58} {:>8} {:>8} {:>8} {:>10}"
        print("\n" + form.format("", "killed", "survived", "invalid", "equivalent"))
        for file in sorted({*self.counts, *equivalent}):
            row = self.counts.get(file, Counter()) + Counter({"equivalent": equivalent.get(file, 0)})
            total += row
            print(form.format(file, *(row[column] for column in ("killed", "survived", "invalid", "equivalent"))))
        print(form.format("", *(total[column] for column in ("killed", "survived", "invalid", "equivalent"))))
        counted = total["killed"] + total["survived"]
        score = 100 * total["killed"] / counted if counted else 100
        print(f"score: {score:.1f} %, {total['killed']} of {counted} mutants killed")
        return score
