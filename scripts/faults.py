#!/usr/bin/env python3
"""Breaks the code on purpose and says which test finds it: whether the suite is tight.

    scripts/faults.py sample COUNT [--seed N] > LIST   one-token faults at random
    scripts/faults.py run LIST [--build DIR]           each in turn: break, build, test, mend

A list has a line per fault, `FILE | FRAGMENT | REPLACEMENT`; the fragment stands once in the file.
The result has the same lines and behind each of them the test that failed, `not found`, `does not
build` or `hangs`. Tests of the broken unit run first, then those of its folder, then all others.
Needs a work tree without changes and a configured build folder; both are left as they were.
"""
import argparse
import json
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ["model", "signals", "shapes", "exchange", "components", "view3d", "export", "viewer"]
SWAPS = [("<=", "<"), (">=", ">"), ("==", "!="), ("!=", "=="), ("&&", "||"), ("||", "&&"),
         (" < ", " <= "), (" > ", " >= "), (" + ", " - "), (" - ", " + "), (" * ", " / "),
         (" / ", " * "), ("++", "--"), ("true", "false"), ("false", "true"), ("(!", "("),
         ("std::min", "std::max"), ("std::max", "std::min"), (" 0", " 1"), (" 1", " 2"),
         ("return;", ";"), ("continue;", "break;")]
LIMIT_S = 150


def sources():
    listed = subprocess.run(["git", "ls-files", "*.cpp"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.split()
    return [name for name in listed if name.split("/")[0] in ROOMS and not name.endswith("main.cpp")]


def code_lines(text):
    """Lines that do something, without comments, includes and texts."""
    for line in text.splitlines():
        bare = re.sub(r"//.*", "", line)
        if bare.strip() and not bare.lstrip().startswith("#") and '"' not in bare:
            yield bare.rstrip()


def sample(count, seed):
    """Places are drawn by line of code, so that each line is as likely as any other."""
    draw = random.Random(seed)
    places = []
    for name in sources():
        text = (ROOT / name).read_text()
        places += [(name, line) for line in code_lines(text) if text.count(line) == 1]
    draw.shuffle(places)
    for name, line in places:
        fitting = [(old, new) for old, new in SWAPS if old in line and "template" not in line]
        if not fitting:
            continue
        old, new = draw.choice(fitting)
        print(f"{name} | {line.strip()} | {line.strip().replace(old, new, 1)}")
        count -= 1
        if count == 0:
            return


class Suite:
    """The test programs of a build folder and the file in which each test stands."""

    def __init__(self, build):
        self.build = build
        self.programs = {}

    def load(self):
        for program in sorted((self.build / "tests").glob("*_tests")):
            if program.name == "designer_tests":
                continue
            with tempfile.NamedTemporaryFile(suffix=".json") as listing:
                subprocess.run([program, "--gtest_list_tests", f"--gtest_output=json:{listing.name}"],
                               check=True, stdout=subprocess.DEVNULL, env=self.environment(False))
                suites = json.load(open(listing.name))["testsuites"]
            self.programs[program] = [(suite["name"], test["name"], test.get("file", ""))
                                      for suite in suites for test in suite["testsuite"]]

    @staticmethod
    def environment(gl):
        return os.environ | {"QT_QPA_PLATFORM": "xcb" if gl else "offscreen",
                             "LIBGL_ALWAYS_SOFTWARE": "1", "GTEST_FAIL_FAST": "1"}

    def run(self, chosen):
        """Runs the chosen (program, gl, filter); the name of the first failed test, or None."""
        for program, gl, names in chosen:
            with tempfile.NamedTemporaryFile(suffix=".flags") as flags:
                pathlib.Path(flags.name).write_text("--gtest_filter=" + ":".join(names) + "\n")
                try:
                    done = subprocess.run([program, f"--gtest_flagfile={flags.name}"],
                                          capture_output=True, timeout=LIMIT_S,
                                          env=self.environment(gl))
                except subprocess.TimeoutExpired:
                    return "hangs"
            if done.returncode != 0:
                failed = re.findall(rb"\[  FAILED  \] ([\w./]+)", done.stdout)
                started = re.findall(rb"\[ RUN      \] ([\w./]+)", done.stdout)
                if failed:
                    return failed[0].decode()
                return (started[-1].decode() if started else program.name) + " (crash)"
        return None

    def find(self, path):
        """Tests of the unit first, of its folder next, all others last."""
        unit, folder = path.stem.split("_")[0], path.parts[0]
        near, room, far = [], [], []
        for program, tests in self.programs.items():
            for gl in (False, True):
                names = {True: [], False: [], None: []}
                for suite, test, file in tests:
                    if suite.split("/")[-1].startswith("Gl") != gl:
                        continue
                    place = pathlib.Path(file)
                    key = True if place.stem == unit else False if folder in place.parts else None
                    names[key].append(f"{suite}.{test}")
                for key, group in ((True, near), (False, room), (None, far)):
                    if names[key]:
                        group.append((program, gl, names[key]))
        for group in (near, room, far):
            if found := self.run(group):
                return found
        return "not found"


def build(folder):
    return subprocess.run(["cmake", "--build", folder], cwd=ROOT, capture_output=True).returncode == 0


def run(listing, folder):
    if not build(folder):
        sys.exit(f"{folder} does not build as it is")
    suite = Suite(folder)
    suite.load()
    for row in pathlib.Path(listing).read_text().splitlines():
        if not row.strip():
            continue
        name, old, new = (part.strip() for part in row.split(" | ")[:3])
        path = ROOT / name
        before = path.read_text()
        if before.count(old) != 1:
            print(f"{name} | {old} | {new} | stands {before.count(old)} times", flush=True)
            continue
        try:
            path.write_text(before.replace(old, new))
            found = suite.find(pathlib.Path(name)) if build(folder) else "does not build"
        finally:
            path.write_text(before)
        print(f"{name} | {old} | {new} | {found}", flush=True)
    build(folder)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(dest="command", required=True)
    sampling = commands.add_parser("sample")
    sampling.add_argument("count", type=int)
    sampling.add_argument("--seed", type=int, default=1)
    running = commands.add_parser("run")
    running.add_argument("list")
    running.add_argument("--build", type=pathlib.Path, default=ROOT / "build/debug")
    arguments = parser.parse_args()
    if arguments.command == "sample":
        sample(arguments.count, arguments.seed)
    else:
        run(arguments.list, arguments.build.resolve())


if __name__ == "__main__":
    main()
