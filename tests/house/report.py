"""Adds up the tests of some build trees, says what those trees hold, and judges.

report.py BUILD TREE...   exit status 1 when a test failed, when a tree is not what its name says,
                          or when it ran fewer tests than tests/house/least_tests.txt asks for
"""
import pathlib
import subprocess
import sys
import xml.etree.ElementTree as xml

SANITIZERS = {"asan": {"address", "undefined"}, "tsan": {"thread"}}
MARKS = {"address": "__asan_", "undefined": "__ubsan_handle_", "thread": "__tsan_"}


def read_least_tests():
    path = pathlib.Path(__file__).with_name("least_tests.txt")
    rows = (line.split("#")[0].split() for line in path.read_text().splitlines())
    return {row[0]: int(row[1]) for row in rows if row}


def output_of(*command):
    """What a command prints; nothing when it can't be run."""
    try:
        return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                              check=True).stdout
    except (OSError, subprocess.CalledProcessError):
        return ""


def count_program(path, passed_as_a_whole):
    """(passed, failed) of one GoogleTest program; a crash counts as one failure."""
    root = xml.parse(path).getroot()
    failed = int(root.get("failures")) + int(root.get("errors"))
    passed = int(root.get("tests")) - int(root.get("disabled")) - failed
    return passed, failed if passed_as_a_whole or failed else 1


def was_left_out(case):
    """Whether the test itself said that it can't run here, as opposed to not having been built."""
    skipped = case.find("skipped")
    return skipped is not None and skipped.get("message", "").startswith("SKIP_")


def count_tree(tree):
    """(passed, failed, names of the failed programs) of one build tree."""
    passed, failed, names = 0, 0, []
    results = tree / "results"
    if not (results / "ctest.xml").exists():
        return 0, 1, ["ctest"]
    for case in xml.parse(results / "ctest.xml").getroot().iter("testcase"):
        if was_left_out(case):
            print(f"{tree.name}: {case.get('name')} is left out, for want of what it needs")
            continue
        fine = case.get("status") == "run"
        program = results / (case.get("name") + ".xml")
        more = (1, 0) if fine else (0, 1)
        if program.exists():
            more = count_program(program, fine)
        passed, failed = passed + more[0], failed + more[1]
        if not fine:
            names.append(case.get("name"))
    return passed, failed, names


def find_sanitizers(tree):
    """What the library in the tree was instrumented with, read from the library itself."""
    symbols = output_of("nm", "-D", tree / "lib" / "libvrad.so")
    return {name for name, mark in MARKS.items() if mark in symbols}


def judge(tree, least):
    name = tree.name
    passed, failed, names = count_tree(tree)
    built = output_of(tree / "bin" / "built_with").strip() or "not built"
    found = find_sanitizers(tree)
    print(f"{name}: {built}, sanitizers: {'+'.join(sorted(found)) or 'none'}, shared library; "
          f"{passed + failed} tests, at least {least} expected")
    complaints = [f"{name}: {program} failed" for program in names]
    if found != SANITIZERS.get(name, set()):
        complaints.append(f"{name}: other sanitizers than its name says")
    if passed + failed < least:
        complaints.append(f"{name}: only {passed + failed} tests ran, {least} expected")
    return passed, failed, complaints


def main():
    build, trees = pathlib.Path(sys.argv[1]), sys.argv[2:]
    least = read_least_tests()
    passed, failed, complaints = 0, 0, []
    print()
    for name in trees:
        more = judge(build / name, least[name])
        passed, failed = passed + more[0], failed + more[1]
        complaints += more[2]
    for complaint in complaints:
        print(complaint)
    # A complaint that no test stands for is a failure of its own.
    failed = max(failed, len(complaints))
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
