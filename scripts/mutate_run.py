"""Builds and tries the faults of mutate_lines.py in a clone of what is committed; called by scripts/mutate."""

import argparse
import json
import os
import re
import resource
import signal
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path

import mutate_lines

ROOT = Path.cwd()
PLACE = ROOT / "build" / "mutate"
TREE = PLACE / "tree"
BUILD = TREE / "build" / "dev"
MOST_MEMORY = 8 << 30
NOTICED = ("killed", "timeout")


# What compiler and linker say of a source; a build can also break off for want of memory or room.
REFUSED = re.compile(r"^\S+:\d+(:\d+)?: error: |undefined reference to", re.MULTILINE)


def fail(message):
    sys.exit(f"error: {message}")


def checked(command, **more):
    ran = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **more)
    if ran.returncode != 0:
        fail(f"{' '.join(map(str, command))}\n{ran.stdout}")
    return ran.stdout.strip()


def renew_clone():
    """The clone with what is committed here; files that have not changed keep their times, so little is rebuilt."""
    if not (TREE / ".git").exists():
        PLACE.mkdir(parents=True, exist_ok=True)
        checked(["git", "clone", "-q", "--shared", "--no-checkout", ROOT, TREE])
    checked(["git", "-C", TREE, "fetch", "-q", ROOT, "HEAD"])
    checked(["git", "-C", TREE, "checkout", "-q", "--force", "--detach", "FETCH_HEAD"])
    checked(["cmake", "--preset", "dev"], cwd=TREE)


def mirrored(folder):
    """Where the tests of a room lie: tests/ has the folders of src/, practice/ and lab/, without the name `core`."""
    parts = [part for part in Path(folder).parts if part != "core"]
    return str(Path("tests", *(parts[1:] if parts[0] == "src" else parts)))


def own_program(command):
    """What a test tries: the program of ours that it is, or that it is given; None without one."""
    for word in command:
        if word.startswith(f"{BUILD}/") and os.path.isfile(word) and os.access(word, os.X_OK):
            return word
    return None


class Test:
    def __init__(self, told):
        properties = {entry["name"]: entry["value"] for entry in told["properties"]}
        self.name = told["name"]
        self.command = told["command"]
        self.folder = properties["WORKING_DIRECTORY"]
        self.settings = dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))
        self.seconds = 0.0

    def target(self):
        return str(Path(own_program(self.command)).relative_to(BUILD))

    def limit(self):
        """Generous, for a machine that others use as well."""
        return 20 + 5 * self.seconds

    def run(self, limit):
        """("passed", "killed" or "timeout", last words). Whatever it writes or starts is kept within bounds."""
        for name in ("home", "tmp"):
            (PLACE / name).mkdir(exist_ok=True)
        settings = {**os.environ, "HOME": str(PLACE / "home"), "TMPDIR": str(PLACE / "tmp"), **self.settings}
        running = subprocess.Popen(self.command, cwd=self.folder, env=settings, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
                                   start_new_session=True, preexec_fn=bound)
        try:
            output = running.communicate(timeout=limit)[0]
        except subprocess.TimeoutExpired:
            end_group(running)
            return "timeout", ""
        finally:
            end_group(running)
        if running.returncode == 0:
            return "passed", ""
        return "killed", first_complaint(output, running.returncode)


def bound():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def end_group(running):
    try:
        os.killpg(running.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    running.wait()


def first_complaint(output, status):
    if status < 0:
        return signal.Signals(-status).name
    for line in output.splitlines():
        if line.startswith("FAIL"):
            return line.removeprefix("FAIL!").removeprefix("FAIL").strip(" :")[:120]
    return f"status {status}"


def build(targets):
    return subprocess.run(["ninja", "-j2", "-C", BUILD, *targets], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          env={**os.environ, "LC_ALL": "C.UTF-8"})


def tests_of(folders):
    """Builds the tests of these folders, lets each pass once for its time, and returns them."""
    for folder in folders:
        if not (TREE / folder / "CMakeLists.txt").exists():
            fail(f"{folder} has no tests; name their folder with --tests")
    print(f"== Building {', '.join(folders)}", flush=True)
    built = build([f"{folder}/all" for folder in folders])
    if built.returncode != 0:
        fail(f"the code as it is does not build\n{built.stdout[-3000:]}")
    listed = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only=json-v1"], check=True, stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL, text=True)
    told = json.loads(listed.stdout)
    places = [str(BUILD / folder) for folder in folders]
    tests = [Test(entry) for entry in told["tests"] if own_program(entry.get("command", []))
             and any(value["name"] == "WORKING_DIRECTORY" and value["value"] in places
                     for value in entry["properties"])]
    usable = []
    for test in tests:
        begun = time.monotonic()
        outcome, words = test.run(300)
        test.seconds = time.monotonic() - begun
        if outcome == "passed":
            usable.append(test)
        elif test.command[0] == own_program(test.command):
            fail(f"{test.name} does not pass on the code as it is: {words or outcome}")
        else:  # may need what is not there, such as a browser
            print(f"{test.name} is left out: {words or outcome}", flush=True)
    if not usable:
        fail(f"no tests in {', '.join(folders)}")
    return usable


def noticed(test):
    """How a test ends, which passes unless it fails twice: once may be chance, or a machine that is busy elsewhere."""
    first = test.run(test.limit())
    return first if first[0] == "passed" else test.run(2 * test.limit())


def tried(path, mutation, tests):
    """One mutant's fate: {"outcome": killed, survived, timeout or "did not compile", "by": test, "words": ...}."""
    source = TREE / path
    original = source.read_text(encoding="utf-8")
    broken = mutation.applied(original)
    try:
        source.write_text(broken, encoding="utf-8")
        by_name = {test.name: test for test in tests}
        order = mutate_lines.likely_first(by_name, source.stem, {test.name: test.seconds for test in tests})
        for name in order:
            test = by_name[name]
            built = build([test.target()])
            if built.returncode != 0:
                if not REFUSED.search(built.stdout):
                    fail(f"the build broke off\n{built.stdout[-3000:]}")
                return {"outcome": "did not compile"}
            outcome, words = noticed(test)
            if outcome != "passed":
                return {"outcome": outcome, "by": name, "words": words}
        return {"outcome": "survived"}
    finally:
        source.write_text(original, encoding="utf-8")


def read_notes(notes, head):
    """Whether the last run had this code, these tests and this seed, and what it has found; (None, []) without one."""
    if not notes.exists():
        return None, []
    lines = [json.loads(line) for line in notes.read_text(encoding="utf-8").splitlines() if line.endswith("}")]
    if not lines:
        return None, []
    return lines[0] == head, lines[1:]


def note(notes, entry):
    with notes.open("a", encoding="utf-8") as file:
        file.write(json.dumps(entry) + "\n")


def described(entry):
    return (f"{entry['path']}:{entry['line']}  {entry['before'].strip()}\n"
            f"{'':8}→ {entry['after'].strip()}")


def summary(entries):
    counts = Counter(entry["outcome"] for entry in entries)
    meant = sum(counts[name] for name in (*NOTICED, "survived"))
    print(f"\n== {meant} faults: {counts['killed']} killed, {counts['timeout']} timeout, "
          f"{counts['survived']} survived; {counts['did not compile']} more did not compile")
    for entry in entries:
        if entry["outcome"] == "survived":
            print(described(entry))


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/mutate")
    parser.add_argument("folder")
    parser.add_argument("--lines", type=int, default=20)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--minutes", type=float, default=0, help="stop after these; the next run goes on")
    parser.add_argument("--survivors", action="store_true", help="try again what has survived")
    parser.add_argument("--tests", action="append", metavar="FOLDER", help="other tests than those that mirror FOLDER")
    return parser.parse_args()


def again(entries, sources):
    """The survivors of an earlier run whose line still stands somewhere in its file, nearest to where it was."""
    for entry in entries:
        if entry["outcome"] != "survived":
            continue
        lines = sources.get(entry["path"], "").split("\n")
        same = [number for number, line in enumerate(lines, 1) if line == entry["before"]]
        if not same:
            print(f"gone      {described(entry)}")
            continue
        line = min(same, key=lambda number: abs(number - entry["line"]))
        yield entry["path"], mutate_lines.Mutation(line, entry["kind"], entry["before"], entry["after"])


def main():
    options = arguments()
    began = time.monotonic()
    folder = str(Path(options.folder).resolve().relative_to(ROOT))
    renew_clone()
    places = options.tests or [mirrored(folder)]
    tests = tests_of(places)
    sources = {str(path.relative_to(TREE)): path.read_text(encoding="utf-8")
               for path in sorted((TREE / folder).iterdir()) if path.suffix in (".cpp", ".h")}
    head = {"folder": folder, "seed": options.seed, "tests": places,
            "state": checked(["git", "-C", TREE, "rev-parse", *(f"HEAD:{place}" for place in (folder, *places))])}
    notes = PLACE / "results" / f"{folder.replace('/', '_')}-{options.seed}.jsonl"
    notes.parent.mkdir(exist_ok=True)
    same, entries = read_notes(notes, head)

    if options.survivors:
        if not entries:
            fail(f"nothing has survived yet with seed {options.seed}")
        tries = list(again(entries, sources))
        wanted = len(tries)
        entries = []
    else:
        if not same:
            notes.write_text(json.dumps(head) + "\n", encoding="utf-8")
            entries = []
        done = {(entry["path"], entry["line"]) for entry in entries}
        tries = [(path, mutation) for path, mutation in mutate_lines.chosen(sources, f"{folder} {options.seed}")
                 if (path, mutation.line) not in done]
        wanted = options.lines - sum(entry["outcome"] != "did not compile" for entry in entries)

    for path, mutation in tries:
        if wanted <= 0 or (options.minutes and time.monotonic() - began > 60 * options.minutes):
            break
        fate = tried(path, mutation, tests)
        entry = {"path": path, "line": mutation.line, "kind": mutation.kind, "before": mutation.before,
                 "after": mutation.after, **fate}
        entries.append(entry)
        if not options.survivors:
            note(notes, entry)
        by = f"  [{fate['by']}: {fate['words']}]" if "by" in fate else ""
        print(f"{fate['outcome'] + '  ':<11}{described(entry)}{by}", flush=True)
        wanted -= fate["outcome"] != "did not compile"
    summary(entries)


def run():
    os.environ.pop("DISPLAY", None)
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        main()
    except KeyboardInterrupt:
        sys.exit("interrupted; the next run goes on from here")


if __name__ == "__main__":
    run()
