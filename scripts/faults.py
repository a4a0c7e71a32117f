#!/usr/bin/env python3
"""Breaks the code on purpose and says which test finds it: whether the suite is tight.

    scripts/faults.py sample COUNT [--seed N] > LIST   one-token faults at random
    scripts/faults.py run LIST [--build DIR]           each in turn: break, build, test, mend

A list has a line per fault, `FILE | FRAGMENT | REPLACEMENT`, and may have lines that start with #.
The fragment stands once in the file, however its lines are broken; a file that has moved is found
by its name, a fragment that has moved to another file if it stands once in all of them.
The result has the same lines and behind each of them the test that failed, `not found`, `no effect`
(the test programs are the same) or `does not build`. Tests of the broken unit run first, then those
of its folder, then all others, slow ones at the end; a test that fails and passes when it is run
again has found nothing.
Needs a configured build folder, fastest with -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld. The work tree
and the folder are left as they were.
"""
import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SPARED = ["bench", "designer", "examples", "fuzz", "tests"]
SWAPS = [("<=", "<"), (">=", ">"), ("==", "!="), ("!=", "=="), ("&&", "||"), ("||", "&&"),
         (" < ", " <= "), (" > ", " >= "), (" + ", " - "), (" - ", " + "), (" * ", " / "),
         (" / ", " * "), ("++", "--"), ("true", "false"), ("false", "true"), ("(!", "("),
         ("std::min", "std::max"), ("std::max", "std::min"), (" 0", " 1"), (" 1", " 2"),
         ("return;", ";"), ("continue;", "break;")]
CHUNK_S = 4  # of tests in one process
# For endless faults; tests that end programs by signals need those that nohup ignores.
LIMITS = ["env", "--default-signal", "prlimit", "--as=8000000000", "--core=0"]


def sources(pattern="*.cpp"):
    listed = subprocess.run(["git", "ls-files", pattern], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.split()
    return [name for name in listed if name.split("/")[0] not in SPARED and not name.endswith("main.cpp")]


def code_lines(text):
    """Lines that do something, without comments, includes and texts."""
    for line in text.splitlines():
        bare = re.sub(r"//.*", "", line)
        if bare.strip() and not bare.lstrip().startswith("#") and '"' not in bare:
            yield bare.strip()


def places(text, fragment):
    """Where the fragment stands, whatever white space lies within it: pairs of start and end."""
    ink = [i for i, letter in enumerate(text) if not letter.isspace()]
    squeezed = "".join(text[i] for i in ink)
    wanted = "".join(fragment.split())
    found = [m.start() for m in re.finditer(f"(?={re.escape(wanted)})", squeezed)]
    return [(ink[at], ink[at + len(wanted) - 1] + 1) for at in found]


def sample(count, seed):
    """Lines are drawn, each as likely as any other."""
    draw = random.Random(seed)
    lines = []
    for name in sources():
        text = (ROOT / name).read_text()
        lines += [(name, line) for line in code_lines(text) if text.count(line) == 1]
    draw.shuffle(lines)
    for name, line in lines:
        fitting = [(old, new) for old, new in SWAPS if old in line and "template" not in line]
        if not fitting or " | " in line:
            continue
        old, new = draw.choice(fitting)
        fault = line.replace(old, new, 1)
        if len(places((ROOT / name).read_text(), line)) != 1:
            continue
        print(f"{name} | {line} | {fault}")
        count -= 1
        if count == 0:
            return


def locate(name, fragment):
    """The file in which the fragment stands once, and where; or how often it was found."""
    listed = sources("*.cpp") + sources("*.h")
    same = [other for other in listed if pathlib.Path(other).name == pathlib.Path(name).name]
    counts = []
    for candidates in ([name] if name in listed else [], same if len(same) == 1 else [], listed):
        found = [(other, place) for other in candidates
                 for place in places((ROOT / other).read_text(), fragment)]
        if len(found) == 1:
            return found[0], 1
        counts.append(len(found))
    return None, counts[0] or counts[-1]


class Test:
    def __init__(self, program, name, file, seconds):
        self.program = program
        self.name = name
        self.gl = name.split(".")[0].split("/")[-1].startswith("Gl")
        self.file = pathlib.Path(os.path.normpath(program.parent.parent / file))
        self.seconds = seconds


class Display:
    """A virtual screen for the suites that need OpenGL, while it lives."""

    def __init__(self):
        take, give = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(give), "-screen", "0", "1600x1000x24", "-nolisten", "tcp"],
            pass_fds=[give], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(give)
        with os.fdopen(take) as answer:
            self.name = ":" + answer.readline().strip()

    def close(self):
        self.server.terminate()
        self.server.wait()


class Suite:
    """The tests of a build folder: the file in which each stands, and how long it takes."""

    def __init__(self, programs, display, jobs):
        self.display = display
        self.jobs = jobs
        self.digests = {program: self.digest(program) for program in programs}
        self.tests = [Test(program, *row) for program in programs for row in self.rows(program)]

    def rows(self, program):
        """Name, file and seconds of each test of a program, which passes; kept for the next time."""
        known = program.with_suffix(".json")
        if known.exists():
            digest, rows = json.loads(known.read_text())
            if digest == self.digests[program]:
                return rows
        rows = self.listed(program, False) + self.listed(program, True)
        known.write_text(json.dumps([self.digests[program], rows]))
        return rows

    @staticmethod
    def digest(program):
        with open(program, "rb") as file:
            return hashlib.file_digest(file, "sha1").hexdigest()

    def is_concerned(self, program):
        """Whether the fault has changed the program; one of them reads the sources."""
        return program.name == "tree_tests" or self.digest(program) != self.digests[program]

    def listed(self, program, gl):
        with tempfile.NamedTemporaryFile(suffix=".json") as report:
            code, text = self.start(program, gl, ["Gl*"] if gl else ["*", "-Gl*"], 600,
                                    [f"--gtest_output=json:{report.name}"])
            if code != 0:
                sys.exit(f"{program.name} fails as it is\n{text[-2000:]}")
            return [(f"{suite['name']}.{test['name']}", test["file"], float(test["time"][:-1]))
                    for suite in json.load(open(report.name))["testsuites"]
                    for test in suite["testsuite"]]

    def start(self, program, gl, names, limit_s, options=()):
        """Exit code, or None if it hangs, and output. What it has started ends with it."""
        environment = os.environ | {"LIBGL_ALWAYS_SOFTWARE": "1", "GTEST_FAIL_FAST": "1",
                                    "QT_QPA_PLATFORM": "xcb" if gl else "offscreen",
                                    "DISPLAY": self.display.name if gl else ""}
        with tempfile.TemporaryDirectory(prefix="faults", ignore_cleanup_errors=True) as folder:
            flags = pathlib.Path(folder) / "flags"
            flags.write_text("--gtest_filter=" + ":".join(names).replace(":-", "-") + "\n")
            with open(pathlib.Path(folder) / "output", "w+b") as output:
                process = subprocess.Popen(
                    [*LIMITS, program, f"--gtest_flagfile={flags}", *options], stdout=output,
                    stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                    env=environment | {"TMPDIR": folder})
                try:
                    code = process.wait(limit_s)
                except subprocess.TimeoutExpired:
                    code = None
                finally:
                    try:
                        os.killpg(process.pid, signal.SIGKILL)
                    except ProcessLookupError:
                        pass
                    process.wait()
                output.seek(0)
                return code, output.read().decode(errors="replace")

    def failure(self, tests):
        """The first of these tests of one program that fails, and how; or None."""
        limit_s = 20 + 5 * sum(test.seconds for test in tests)
        names = [test.name for test in tests]
        code, text = self.start(tests[0].program, tests[0].gl, names, limit_s)
        if code == 0:
            return None
        failed = re.findall(r"\[  FAILED  \] ([\w./]+)", text)
        started = re.findall(r"\[ RUN      \] ([\w./]+)", text)
        how = "" if failed and code is not None else " hangs" if code is None else " crashes"
        name = failed[0] if failed else started[-1] if started else tests[0].name
        return name, how

    def run(self, tests):
        """As failure(), but what passes when it is run again is left out."""
        unsure = set()
        while tests := [test for test in tests if test.name not in unsure]:
            first = self.failure(tests)
            if first is None:
                break
            again = self.failure([test for test in tests if test.name == first[0]] or tests)
            if again:
                return again[0] + again[1], set()
            unsure.add(first[0])
        return None, unsure

    def chunks(self, tests):
        """Parts of one program and platform each that take about as long."""
        parts = []
        for test in sorted(tests, key=lambda t: (str(t.program), t.gl)):
            last = parts[-1] if parts else []
            fits = last and (last[0].program, last[0].gl) == (test.program, test.gl)
            if fits and sum(other.seconds for other in last) + test.seconds <= CHUNK_S:
                last.append(test)
            else:
                parts.append([test])
        return parts

    def find(self, path):
        """Tests of the unit first, of its folder next, then all others; slow ones at the end."""
        unit = path.stem.split("_")[0]
        header = path.with_name(f"{unit}.h").as_posix()
        files = {test.file for test in self.tests}
        includes = {file: f'"{header}"' in file.read_text() for file in files}
        concerned = {program for program in self.digests if self.is_concerned(program)}
        stages = {}
        for test in self.tests:
            if test.program not in concerned:
                continue
            shared = len(set(path.parts[:-1]) & set(test.file.parts[len(ROOT.parts):]))
            key = (test.seconds > 1, test.file.stem != unit, not includes[test.file], -shared)
            stages.setdefault(key, []).append(test)
        doubtful = set()
        for key in sorted(stages):
            with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
                found = None
                for found, unsure in pool.map(self.run, self.chunks(stages[key])):
                    doubtful |= unsure
                    if found:
                        pool.shutdown(cancel_futures=True)
                        return found
        if len(concerned) == 1:
            return "no effect"
        return "not found" + "".join(f", once {name}" for name in sorted(doubtful))


def build(folder, targets):
    return subprocess.run(["cmake", "--build", folder, "-j2", "--target", *targets], cwd=ROOT,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def fault(row, suite, make):
    """The row with what finds its fault behind it."""
    name, old, new = (part.strip() for part in row.split(" | ")[:3])
    place, count = locate(name, old)
    if not place:
        return f"{name} | {old} | {new} | stands {count} times"
    name, (start, end) = place
    path = ROOT / name
    before = path.read_text()
    try:
        path.write_text(before[:start] + new + before[end:])
        found = suite.find(pathlib.Path(name)) if make() else "does not build"
    finally:
        path.write_text(before)
    return f"{name} | {old} | {new} | {found}"


def run(listing, folder, jobs):
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    help_text = subprocess.run(["cmake", "--build", folder, "--target", "help"], cwd=ROOT,
                               capture_output=True, text=True).stdout
    # Those two need what ctest installs or lends them.
    others = {"designer_tests", "stranger_tests"}
    targets = sorted(set(re.findall(r"^(\w+_tests):", help_text, re.M)) - others)
    make = lambda: build(folder, targets)
    if not targets or not make():
        sys.exit(f"{folder} does not build as it is")
    display = Display()
    try:
        suite = Suite([folder / "tests" / target for target in targets], display, jobs)
        for row in pathlib.Path(listing).read_text().splitlines():
            if row.strip() and not row.startswith("#"):
                print(fault(row, suite, make), flush=True)
    finally:
        display.close()
        make()


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(dest="command", required=True)
    sampling = commands.add_parser("sample")
    sampling.add_argument("count", type=int)
    sampling.add_argument("--seed", type=int, default=1)
    running = commands.add_parser("run")
    running.add_argument("list")
    running.add_argument("--build", type=pathlib.Path, default=ROOT / "build/release")
    running.add_argument("--jobs", type=int, default=4, help="tests side by side; most wait")
    arguments = parser.parse_args()
    if arguments.command == "sample":
        sample(arguments.count, arguments.seed)
    else:
        run(arguments.list, arguments.build.resolve(), arguments.jobs)


if __name__ == "__main__":
    main()
