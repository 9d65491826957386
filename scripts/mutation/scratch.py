"""A scratch copy of the project with a build of its own, in which mutants are made one at a time.

A mutant is built in two steps. The first builds what its tests load or run, the shared library for most, and runs the tests
that have nothing of the mutant in themselves: this kills most mutants for the compilation of one source and one link. The
second builds and runs one after the other those that include the changed header or contain the changed source, the quickest
to build first. Afterwards the source and all files of the build are put back with their old times: the build is what it was,
and nothing of it has to be compiled again for the next mutant.
"""

import atexit
import json
import os
import re
import resource
import shutil
import subprocess
import tempfile
import time
from collections import namedtuple
from pathlib import Path

from mutation.processes import Runner
from mutation.sources import ROOT
from mutation.tests import RUNS, tests_for

# Tests that take longer come after the others: quick ones kill most mutants.
QUICK_SECONDS = 0.02

# One run of a test executable: a filter, and how long it takes on the unchanged sources.
Run = namedtuple("Run", "filter seconds processor_seconds")

COMPILER_LIMITS = ["prlimit", "--cpu=120"]  # for compile-time computations without an end


class Scratch:
    def __init__(self, directory, jobs):
        self.source = directory / "source"
        self.build = directory / "build"
        self.original = directory / "original"  # a copy of the build of the unchanged sources
        # Not below `directory`, which other users may not be able to enter: some tests go on as another user.
        self.playground = Path(tempfile.mkdtemp(prefix="mutation."))
        self.playground.chmod(0o755)
        atexit.register(shutil.rmtree, self.playground, ignore_errors=True)
        self.jobs = jobs
        self.runner = Runner()
        self.runs = {}  # of each test executable

    # --- The unchanged project ---

    def prepare(self, tests, with_tool):
        self.copy_sources()
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
        self.call(["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=",
                   "-DCMAKE_CXX_FLAGS=-O0 -g0 -w", "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold -Wl,--no-as-needed",
                   "-DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=gold", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
                   "-DZON_PRECOMPILE_HEADERS=ON", "-DZON_BUILD_EXAMPLES=OFF", f"-DZON_BUILD_TOOLS={'ON' if with_tool else 'OFF'}",
                   "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST",
                   f"-DCMAKE_PROJECT_INCLUDE={ROOT / 'scripts/mutation/scratch.cmake'}", *launcher])
        self.call(["ninja", "-C", self.build, f"-j{self.jobs}", *tests])
        self.products = {test: self.products_of(test) for test in tests}
        self.keep_build()

    def copy_sources(self):
        names = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True, text=True).stdout
        wanted = {name for name in names.split("\0") if name and (ROOT / name).is_file()}
        for name in wanted:
            copy = self.source / name
            content = (ROOT / name).read_bytes()
            if not (copy.is_file() and copy.read_bytes() == content):
                copy.parent.mkdir(parents=True, exist_ok=True)
                copy.write_bytes(content)
                shutil.copymode(ROOT / name, copy)
        for file in self.source.rglob("*"):
            if file.is_file() and str(file.relative_to(self.source)) not in wanted:
                file.unlink()

    def call(self, command):
        status, output = self.runner.run(command, 3600, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if status != 0 and not self.runner.stopped:
            raise RuntimeError(f"{' '.join(map(str, command))}\n{output}")

    def products_of(self, test):
        """What is built for the test but is not in it: the shared libraries that it loads, and what it runs."""
        loaded = subprocess.run(["ldd", self.build / "bin" / test], check=True, capture_output=True, text=True).stdout
        libraries = [Path(path).resolve() for path in re.findall(r"=> (\S+)", loaded)]
        return [str(path.relative_to(self.build)) for path in libraries if path.is_relative_to(self.build)] + RUNS.get(test, [])

    def measure(self, tests):
        for test in tests:
            slow = self.slow_tests(test)
            filters = ["-" + slow, slow] if slow else ["*"]
            self.runs[test] = [Run(chosen, *self.time_taken(test, chosen)) for chosen in filters]

    def slow_tests(self, test):
        output = self.build / f"{test}.json"
        self.call([self.build / "bin" / test, f"--gtest_output=json:{output}"])
        suites = json.loads(output.read_text())["testsuites"]
        return ":".join(f"{suite['name']}.{case['name']}" for suite in suites for case in suite["testsuite"]
                        if float(case["time"].rstrip("s")) > QUICK_SECONDS)

    def time_taken(self, test, chosen):
        start, used = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
        if not self.passes(test, Run(chosen, 600, 600)) and not self.runner.stopped:
            raise RuntimeError(f"{test} fails without any change")
        now = resource.getrusage(resource.RUSAGE_CHILDREN)
        return time.monotonic() - start, now.ru_utime + now.ru_stime - used.ru_utime - used.ru_stime

    # --- Putting the build back ---

    def keep_build(self):
        self.times = copy_changed(self.build, self.original, file_times(self.original))

    def put_build_back(self):
        copy_changed(self.original, self.build, file_times(self.build), self.times)

    # --- A mutant ---

    def outcome(self, mutant):
        """"killed", "survived", "invalid" if it does not compile, or None if it was stopped."""
        path = self.source / mutant.file
        before = path.stat()
        original = path.read_text()
        path.write_text(original[:mutant.start] + mutant.new + original[mutant.end:])
        try:
            outcome = self.outcome_in_place(mutant, tests_for(mutant.file))
            return None if self.runner.stopped else outcome
        finally:
            path.write_text(original)
            os.utime(path, ns=(before.st_atime_ns, before.st_mtime_ns))
            self.put_build_back()

    def outcome_in_place(self, mutant, tests):
        products = list(dict.fromkeys(product for test in tests for product in self.products[test]))
        built = self.builds(products) if products else "yes"
        if built != "yes":
            return "killed" if built == "refused" else "invalid"
        steps = {test: self.steps_to(test) for test in tests}
        if not self.all_pass([test for test in tests if steps[test] == 0 and self.has_changed(*self.products[test])]):
            return "killed"
        for test in sorted((test for test in tests if steps[test] > 0), key=steps.get):
            built = self.builds([test])
            if built != "yes":
                return "killed" if built == "refused" else "invalid"
            if self.has_changed(f"bin/{test}", *self.products[test]) and not self.all_pass([test]):
                return "killed"
        return "survived"

    def steps_to(self, target):
        """How many files have to be built for it."""
        _, output = self.runner.run(["ninja", "-C", self.build, "-n", target], 60, stdout=subprocess.PIPE, text=True)
        return len(re.findall(r"^\[\d+/\d+\]", output, re.MULTILINE))

    def has_changed(self, *products):
        stats = {product: (self.build / product).stat() for product in products}
        return any(self.times.get(product) != (stat.st_mtime_ns, stat.st_size) for product, stat in stats.items())

    def builds(self, targets):
        """"yes", "no", or "refused" by a static assertion."""
        status, output = self.runner.run([*COMPILER_LIMITS, "ninja", "-C", self.build, f"-j{self.jobs}", "--quiet", *targets], 600,
                                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                         env={**os.environ, "CCACHE_DISABLE": "1"})
        if status == 0:
            return "yes"
        return "refused" if "static assertion failed" in output else "no"

    def all_pass(self, tests):
        """Quick tests of all executables first."""
        for number in range(2):
            for test in tests:
                if number < len(self.runs[test]) and not self.passes(test, self.runs[test][number]):
                    return False
        return True

    def passes(self, test, run):
        shutil.rmtree(self.playground, ignore_errors=True)
        self.playground.mkdir(parents=True)
        # An endless loop shows in the processor's time, which does not grow when the machine is busy.
        limits = ["prlimit", f"--cpu={2 + int(3 * run.processor_seconds)}", f"--as={4 << 30}", "--core=0", f"--fsize={1 << 28}"]
        status, _ = self.runner.run([*limits, self.build / "bin" / test, "--gtest_brief=1", "--gtest_fail_fast",
                                     f"--gtest_filter={run.filter}"], 20 + 10 * run.seconds, 8 + 2 * run.seconds,
                                    cwd=self.playground, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                    env={**os.environ, "TMPDIR": str(self.playground)})
        return status == 0


def file_times(directory):
    """The time and size of each file below the directory, by its name there."""
    found = {}
    for parent, _, names in os.walk(directory):
        for name in names:
            path = os.path.join(parent, name)
            stat = os.stat(path, follow_symlinks=False)
            found[os.path.relpath(path, directory)] = stat.st_mtime_ns, stat.st_size
    return found


def copy_changed(source, target, there, here=None):
    """Copies the files of `source` that are not the same in `target`, times included."""
    here = file_times(source) if here is None else here
    for name, times in here.items():
        if there.get(name) != times:
            (target / name).parent.mkdir(parents=True, exist_ok=True)
            if (target / name).is_symlink():
                (target / name).unlink()
            shutil.copy2(source / name, target / name, follow_symlinks=False)
    return here
