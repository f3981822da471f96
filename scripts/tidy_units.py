"""Runs clang-tidy over many sources at the price of few.

Nearly all the time goes into the headers of Qt, so the sources of a folder are read together, as
one translation unit that includes them. Sources that cannot share one (two helpers of the same name, say)
are put into further units.

Called by scripts/tidy: tidy_units.py BUILD_FOLDER JOBS PATH...
"""

import json
import os
import re
import shlex
import subprocess
import sys
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path.cwd()
# Included by the sources, made by a build that has not happened; clang-tidy can do without their contents.
MOC_INCLUDE = re.compile(r'#include "(\w+\.moc)"')


def coroutine_flags():
    """Before version 15, clang hides coroutines from the standard library of gcc and from Boost."""
    version = subprocess.run(["clang", "-dumpversion"], capture_output=True, text=True, check=True).stdout
    if int(version.split(".")[0]) >= 15:
        return []
    return ["-fcoroutines-ts", "-D__cpp_impl_coroutine=201902L", "-DBOOST_ASIO_HAS_CO_AWAIT",
            "-DBOOST_ASIO_HAS_STD_COROUTINE"]


def flags_of(command):
    """The flags that matter for reading the source, in their order, each `-isystem folder` as one."""
    words = iter(shlex.split(command))
    flags = []
    for word in words:
        if word in ("-o", "-c", "-include"):
            next(words)
        elif word == "-isystem":
            flags.append(f"-isystem{next(words)}")
        elif word.startswith(("-I", "-D", "-std", "-W", "-fPIC")) and "_autogen" not in word:
            flags.append(word)
    return [flag for flag in flags if flag not in ("-Winvalid-pch", "-Werror")]


def chosen_sources(database, paths):
    """Path below the root and flags of each compiled source in one of `paths`; each source once."""
    wanted = [Path(path).resolve() for path in paths]
    sources = {}
    for entry in json.loads(database.read_text()):
        source = Path(entry["file"]).resolve()
        if any(source == path or path in source.parents for path in wanted):
            sources.setdefault(source.relative_to(ROOT), flags_of(entry["command"]))
    return sources


def grouped(sources):
    """Sources of one folder that are built under the same rules, by name of their first unit."""
    groups = defaultdict(list)
    for source in sorted(sources):
        folder = "-".join(source.parts[:2] if len(source.parts) > 2 else source.parts[:1])
        rules = [flag for flag in sources[source] if flag.startswith("-DQT_NO_")]
        groups[folder, tuple(rules)].append(source)
    return groups.values()


class Unit:
    """A generated file that includes several sources, and the flags of all of them."""

    def __init__(self, path, sources, flags):
        self.path, self.sources = path, sources
        # Each program has a main function; and that a source is included is the very purpose here.
        lines = [f'#define main main{number}\n#include "{ROOT / source}" // NOLINT\n#undef main\n'
                 for number, source in enumerate(sources)]
        path.write_text("".join(lines))
        union = dict.fromkeys(flag for source in sources for flag in flags[source])
        # What a source shadows is often a name of its neighbour only; gcc warns where it is its own.
        # What moc defines is not there. And each room of tests names folders of its own.
        quiet = ["-Wno-shadow", "-Wno-undefined-internal", "-Wno-macro-redefined"]
        self.command = [*union, *quiet, *coroutine_flags(), f"-I{path.parent}"]

    def misfits(self):
        """The sources that do not compile after the ones before them."""
        result = subprocess.run(["clang++", "-fsyntax-only", "-w", "-ferror-limit=0", "-fno-caret-diagnostics",
                                 *self.command, str(self.path)], capture_output=True, text=True)
        bad, current = set(), None
        for line in result.stderr.splitlines():
            within = re.match(rf"In file included from {re.escape(str(self.path))}:(\d+):", line)
            if within:
                current = self.sources[(int(within[1]) - 1) // 3]
            elif "error: " in line and current:
                bad.add(current)
        # The first one fails by itself; clang-tidy will say why.
        return [source for source in self.sources[1:] if source in bad]

    def tidy(self):
        """What clang-tidy has to say, and whether it found anything."""
        result = subprocess.run(["clang-tidy", "--quiet", "--header-filter", HEADER_FILTER, str(self.path), "--",
                                 *self.command], capture_output=True, text=True)
        noise = "" if result.returncode == 0 or result.stdout else result.stderr
        return result.returncode == 0, result.stdout + noise


HEADER_FILTER = f"^{re.escape(str(ROOT))}/(src|practice|lab|tests|bench)/.*"


def check_group(folder, sources, flags):
    """Checks the sources in as few units as they allow. True if there is nothing to report."""
    clean, rest, number = True, sources, 1
    while rest:
        # The analyzer takes included sources for code, rather than for headers, under this name only.
        name = "-".join(rest[0].parts[:2] if len(rest[0].parts) > 2 else rest[0].parts[:1])
        path = folder / f"UnifiedSource-{name}-{number}-{rest[0].stem}.cpp"
        misfits = Unit(path, rest, flags).misfits()
        fits = [source for source in rest if source not in misfits]
        fine, report = Unit(path, fits, flags).tidy()
        print(f"== {name}: {len(fits)} sources{'' if fine else ', with findings'}\n{report}", end="", flush=True)
        clean, rest, number = clean and fine, misfits, number + 1
    return clean


def prove_that_faults_are_found(folder):
    """Stops unless a fault in an included source is found: silence would otherwise look like cleanness."""
    fault = folder / "fault.cpp"
    fault.write_text("int read(int n)\n{\n    int* p = nullptr;\n    if (n > 3)\n        p = &n;\n    return *p;\n}\n")
    unit = folder / "UnifiedSource-fault.cpp"
    unit.write_text('#include "fault.cpp" // NOLINT\n')
    result = subprocess.run(["clang-tidy", "--quiet", "--header-filter", ".*", str(unit), "--"],
                            capture_output=True, text=True)
    if "clang-analyzer-core.NullDereference" not in result.stdout:
        sys.exit(f"error: clang-tidy does not look into sources read together\n{result.stdout}{result.stderr}")


def main(build, jobs, *paths):
    for path in paths:
        if not Path(path).exists():
            sys.exit(f"error: there is no {path}")
    sources = chosen_sources(Path(build) / "compile_commands.json", paths)
    folder = Path(build).resolve() / "units"
    folder.mkdir(exist_ok=True)
    prove_that_faults_are_found(folder)
    for source in sources:
        for name in MOC_INCLUDE.findall(source.read_text()):
            (folder / name).touch()
    with ThreadPoolExecutor(int(jobs)) as pool:
        results = list(pool.map(lambda group: check_group(folder, group, sources), grouped(sources)))
    print(f"{len(sources)} sources {'are clean' if all(results) else 'checked; see the findings above'}")
    sys.exit(0 if all(results) and sources else 1)


main(*sys.argv[1:])
