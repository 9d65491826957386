"""Which test executables are to kill the mutants of which sources."""

import re

from mutation.sources import ROOT

# The first row whose beginning a file's name has. The executables that kill most stand first.
KILLED_BY = [
    ("cfg_ini/cfg_ini_reader/", ["variable_store_tests", "variable_store_fault_tests", "variable_store_memory_tests",
                                 "cfg_cached_value_tests", "variable_store_thread_tests", "plugin_tests",
                                 "variable_store_fork_tests"]),
    ("cfg_ini/cfg_user_ini_reader/", ["preference_store_tests", "preference_store_fault_tests",
                                      "preference_store_memory_tests"]),
    ("cfg_ini/cfg_cached_value.h", ["cfg_cached_value_tests", "cfg_cached_value_threads_tests"]),
    ("cfg_ini/", ["variable_store_tests", "public_header_tests", "variable_store_memory_tests", "preference_store_tests"]),
    ("platform/thr/", ["platform_tests", "variable_store_thread_tests", "variable_store_fork_tests", "variable_store_tests"]),
    ("platform/", ["platform_tests", "variable_store_tests", "preference_store_tests"]),
    ("cfg_run_report/", ["cfg_run_report_tests"]),
    ("tools/velmar-cfg/", ["velmar_cfg_model_tests", "velmar_cfg_tests", "velmar_cfg_states_tests",
                           "velmar_cfg_documentation_tests"]),
]

# Executables that stand in no row.
NOT_RUN = {
    "cfg_cached_value_plugin_tests": "what the header does in a plugin; its own tests kill its mutants",
    "example_tests": "the examples'",
    "fakes_tests": "the fakes'",
    "generated_settings_tests": "the benchmarks'",
    "loading_tests": "the library as it is loaded; the tests above kill its mutants sooner",
    "old_thread_service_tests": "a host's own thread service",
    "static_host_tests": "the names that a host may define",
    "symbol_version_tests": "how symbols are bound, not what functions do",
    "variable_store_hash_count_tests": "counts calls within one program; here the library is a shared one",
    "variable_store_load_tests": "takes long by intention",
    "velmar_cfg_tutorial_tests": "the tutorial's",
}

# What an executable runs, beside the shared libraries that it loads.
RUNS = {
    "platform_tests": ["bin/print_paths"],
    "velmar_cfg_tests": ["bin/velmar-cfg", "completions/velmar-cfg", "completions/_velmar-cfg"],
    "velmar_cfg_states_tests": ["bin/velmar-cfg"],
    "velmar_cfg_documentation_tests": ["bin/velmar-cfg"],
}

# What the outcome depends on: the first for all mutants, the second for those outside the library as well.
LIBRARY_TREE = ("CMakeLists.txt", "cmake/", "cfg_ini/", "platform/", "tests/", "scripts/mutation/scratch.",
                "scripts/mutation/processes.py", "scripts/mutation/tests.py")
TOOL_TREE = ("cfg_run_report/", "tools/", "docs/man/")
TOOL_TESTS = ("tests/cfg_run_report/", "tests/velmar_cfg/")
OUTSIDE_TREE = ("tests/equivalent_mutants.txt", "tests/install_consumer/", "tests/examples/", "tests/benchmarks/")


def tests_for(file):
    return next(tests for start, tests in KILLED_BY if file.startswith(start))


def is_of_tool(file):
    return file.startswith(TOOL_TREE)


def decides(name, of_tool):
    """Whether the outcome of a mutant depends on the file of that name."""
    if name.startswith(OUTSIDE_TREE) or (name.startswith(TOOL_TESTS) and not of_tool):
        return False
    return name.startswith(LIBRARY_TREE + (TOOL_TREE if of_tool else ()))


def complaints():
    """What is wrong with the table above: executables that it does not know, or that are gone."""
    existing = set()
    for lists in (ROOT / "tests").rglob("CMakeLists.txt"):
        existing.update(re.findall(r"^ *zon_add(?:_\w+)?_tests\((\w+)", lists.read_text(), re.MULTILINE))
    rows = {test for _, tests in KILLED_BY for test in tests}
    for test in sorted(existing - rows - set(NOT_RUN)):
        yield f"scripts/mutation/tests.py: {test} stands in no row of KILLED_BY: add it to one, or to NOT_RUN"
    for test in sorted((rows | set(NOT_RUN)) - existing):
        yield f"scripts/mutation/tests.py: there is no test executable {test}: remove it"
