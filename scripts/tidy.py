#!/usr/bin/env python3
"""clang-tidy over the project.

    scripts/tidy.py all [--build DIR]   all that a build folder, configured with clang, compiles of the
                                        program, its examples and benchmarks (build/asan)
    scripts/tidy.py changed             the sources of units that differ from the main branch, in a
                                        folder that is configured for it (build/lint)

What was clean before is not read again while neither its text after the preprocessor nor the checks
have changed.
"""
import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
CLEAN = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache")) / "velmora/tidy"
# Sources that are compiled a dozen at a time are included by a file that lists them.
CHECKS = "--checks=-bugprone-suspicious-include"


def output(*command):
    return subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout


def database(folder):
    entries = json.loads((folder / "compile_commands.json").read_text())
    skipped = re.compile(r"mocs_compilation|qrc_|cmake_pch|/(tests|fuzz)/")
    return [e for e in entries if not skipped.search(e["file"].removeprefix(str(ROOT)))]


def mark(entry, settings):
    """A file that exists when this text was clean with these settings."""
    command = shlex.split(entry["command"])
    while "ccache" in command[0]:
        command = command[1:]
    at = command.index("-o")
    text = subprocess.run(command[:at] + command[at + 2:] + ["-E", "-P"], cwd=entry["directory"],
                          check=True, capture_output=True).stdout
    return CLEAN / hashlib.sha256(settings + text).hexdigest()


def check(entry, folder, settings):
    """What clang-tidy says of a source; empty if it is clean."""
    done = mark(entry, settings)
    if done.exists():
        return ""
    tidy = subprocess.run(["clang-tidy", "-p", folder, "--quiet", CHECKS, entry["file"]], cwd=ROOT,
                          capture_output=True, text=True)
    if tidy.returncode == 0:
        done.touch()
        return ""
    return tidy.stdout + tidy.stderr


def unit(name):
    """What a header and its sources have in common: model/Timer.h, model/Timer_linux.cpp."""
    path = pathlib.Path(name)
    return path.with_name(path.stem.split("_")[0])


def changed():
    """The changed units' entries in a folder in which each source is compiled by itself."""
    subprocess.run(["cmake", "--preset", "lint"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    names = output("git", "diff", "--name-only", "main", "--", "*.cpp", "*.h").split()
    names += output("git", "ls-files", "--others", "--exclude-standard", "*.cpp", "*.h").split()
    wanted = {unit(ROOT / name) for name in names}
    return ROOT / "build/lint", [e for e in database(ROOT / "build/lint") if unit(e["file"]) in wanted]


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=["all", "changed"])
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/asan")
    arguments = parser.parse_args()
    folder, entries = changed() if arguments.what == "changed" else (
        arguments.build.resolve(), database(arguments.build.resolve()))
    CLEAN.mkdir(parents=True, exist_ok=True)
    settings = (output("clang-tidy", "--version") + (ROOT / ".clang-tidy").read_text()).encode()
    faults = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        for said in workers.map(lambda e: check(e, folder, settings), entries):
            if said:
                faults += 1
                print(said, flush=True)
    print(f"{len(entries)} sources, {faults} with faults")
    sys.exit(bool(faults) or not entries and arguments.what == "all")


if __name__ == "__main__":
    main()
