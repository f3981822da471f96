#!/usr/bin/python3
"""That mutate_run.py puts a fault in, judges the tests by it and takes it out again, whatever happens meanwhile.

The real program runs in a repository of one folder. Its compiler and its list of tests are stand-ins that it finds in
the PATH first; the one test there is a shell script, which can be told by a file to look or to hang.
"""

import json
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

RUNNER = Path(__file__).resolve().parents[2] / "scripts" / "mutate_run.py"

SOURCE = """int quiet(int a)
{
    return a + 1;
}
"""

# Says what the tests are, as ctest does: that of the room, which the file `script` may run, and one of another folder.
CTEST = """#!/usr/bin/python3
import json
import os
build = os.getcwd() + "/build/mutate/tree/build/dev"
script = ["/bin/bash", os.path.abspath("script")] if os.path.exists("script") else []
def test(name, folder):
    return {"name": name, "command": [*script, build + "/tests/" + name],
            "properties": [{"name": "WORKING_DIRECTORY", "value": build + "/" + folder},
                           {"name": "ENVIRONMENT", "value": ["MEANT=yes"]}]}
print(json.dumps({"tests": [test("check_Quiet", "tests/room"), test("check_Elsewhere", "tests/other")]}))
"""

# "Compiles" by copying the test, but only a source with what the file `needed` says, if there is one.
NINJA = """#!/bin/bash
mkdir -p "$3/tests/room"
cd "$3/../.."
install -m 755 ../../../check build/dev/tests/check_Quiet
case "$4" in
    tests/room/all) ;;
    *) if [ -f ../../../held ]; then touch ../../../building; exec sleep 60; fi ;;
esac
[ ! -f ../../../needed ] || grep -qF -f ../../../needed src/room/Quiet.cpp || { cat ../../../refusal; exit 1; }
"""

# What each way to look at the source makes of it; the test's folder is build/dev/tests/room in the clone.
LOOKING = """#!/bin/bash
source=../../../../src/room/Quiet.cpp
[ "$MEANT" = yes ] || exit 9
"""
NOTICES = LOOKING + """grep -q 'return a + 1;' "$source" || { echo 'FAIL! a sum is wrong'; exit 1; }\n"""
NOTICES_NOTHING = LOOKING
NOTICES_ONCE = LOOKING + """grep -q 'return a + 1;' "$source" && exit 0
once=../../../../../../../once
[ ! -e $once ] || exit 0
touch $once
exit 1
"""
HANGS = LOOKING + """grep -q 'return a + 1;' "$source" && exit 0
root=../../../../../../..
echo $$ > $root/pid
mv $root/pid $root/hanging
sleep 60
"""


class Runs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tavoran-mutate-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.put("src/room/Quiet.cpp", SOURCE)
        self.put("refusal", "Quiet.cpp:7:5: error: no such thing\n")
        self.put("tests/room/CMakeLists.txt", "")
        self.git("init", "-q")
        self.git("add", ".")
        self.git("commit", "-q", "-m", "A room")
        for name, text in (("ctest", CTEST), ("ninja", NINJA), ("cmake", "#!/bin/sh\n")):
            self.put(f"bin/{name}", text).chmod(0o755)
        self.source = self.root / "build/mutate/tree/src/room/Quiet.cpp"

    def put(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path

    def git(self, *words):
        subprocess.run(["git", "-c", "user.name=A", "-c", "user.email=a@example.com", *words], cwd=self.root, check=True)

    def begun(self, check, *options, runner=""):
        """The program, started with this test in the room. `runner` is what it is changed by."""
        self.put("check", check)
        text = (f"import sys\nsys.path.insert(0, {str(RUNNER.parent)!r})\nimport mutate_run\n{runner}\n"
                "mutate_run.run()\n")
        settings = {**os.environ, "PATH": f"{self.root}/bin:{os.environ['PATH']}"}
        running = subprocess.Popen([sys.executable, "-c", text, "src/room", *options], cwd=self.root, env=settings,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                   preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
        self.addCleanup(running.stdout.close)
        self.addCleanup(running.kill)
        return running

    def said(self, check, *options, **more):
        running = self.begun(check, *options, **more)
        output = running.communicate(timeout=60)[0]
        self.assertEqual(0, running.returncode, output)
        return output

    def appears(self, name):
        for _ in range(1000):
            if (self.root / name).exists():
                return
            time.sleep(0.01)
        self.fail(f"no {name}")

    def notes(self):
        lines = (self.root / "build/mutate/results/src_room-1.jsonl").read_text(encoding="utf-8").splitlines()
        return [json.loads(line) for line in lines[1:]]

    def test_a_fault_that_a_test_notices_is_killed_by_its_name_and_words(self):
        output = self.said(NOTICES)
        self.assertIn("killed     src/room/Quiet.cpp:3  return a + 1;", output)
        self.assertIn("[check_Quiet: a sum is wrong]", output)
        self.assertIn("== 1 faults: 1 killed, 0 timeout, 0 survived; 0 more did not compile", output)
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))

    def test_a_fault_that_no_test_notices_survives_and_is_told_at_the_end(self):
        head, _, end = self.said(NOTICES_NOTHING).partition("== 1 faults: 0 killed, 0 timeout, 1 survived")
        self.assertIn("survived   src/room/Quiet.cpp:3  return a + 1;", head)
        self.assertIn("src/room/Quiet.cpp:3  return a + 1;", end)
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))

    def test_a_test_that_fails_once_and_then_passes_has_noticed_nothing(self):
        self.assertIn("== 1 faults: 0 killed, 0 timeout, 1 survived", self.said(NOTICES_ONCE))
        self.appears("once")

    def test_a_test_that_does_not_end_is_a_timeout_and_no_survivor(self):
        output = self.said(HANGS, runner="mutate_run.Test.limit = lambda self: 0.5")
        self.assertIn("timeout    src/room/Quiet.cpp:3", output)
        self.assertIn("== 1 faults: 0 killed, 1 timeout, 0 survived", output)
        self.assertEqual("timeout", self.notes()[0]["outcome"])
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))

    def test_a_fault_that_does_not_compile_counts_as_none_and_is_put_back(self):
        two = SOURCE + SOURCE.replace("quiet", "loud").replace("a + 1", "a + 7")
        self.put("src/room/Quiet.cpp", two)
        self.git("commit", "-q", "-a", "-m", "Another function")
        self.put("needed", "return a + 7;")
        output = self.said(NOTICES_NOTHING, "--lines", "2")
        self.assertIn("did not compile  src/room/Quiet.cpp:7  return a + 7;", output)
        self.assertIn("== 1 faults: 0 killed, 0 timeout, 1 survived; 1 more did not compile", output)
        self.assertEqual(two, self.source.read_text(encoding="utf-8"))

    def test_a_build_that_breaks_off_says_nothing_of_a_fault(self):
        self.put("needed", "return a + 1;")
        self.put("refusal", "cc1plus: out of memory\n")
        running = self.begun(NOTICES_NOTHING)
        output = running.communicate(timeout=60)[0]
        self.assertEqual(1, running.returncode, output)
        self.assertIn("error: the build broke off\ncc1plus: out of memory", output)
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))

    def test_code_that_does_not_build_without_a_fault_ends_the_run(self):
        self.put("needed", "return a + 7;")
        running = self.begun(NOTICES_NOTHING)
        self.assertIn("error: the code as it is does not build", running.communicate(timeout=60)[0])
        self.assertEqual(1, running.returncode)

    def interrupted_at(self, moment, how, check):
        running = self.begun(check)
        self.appears(moment)
        self.assertNotEqual(SOURCE, self.source.read_text(encoding="utf-8"))
        running.send_signal(how)
        output = running.communicate(timeout=30)[0]
        self.assertNotEqual(0, running.returncode)
        self.assertIn("interrupted; the next run goes on from here", output)
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))
        self.assertEqual([], self.notes())

    def test_a_fault_is_put_back_by_ctrl_c_while_its_test_runs(self):
        self.interrupted_at("hanging", signal.SIGINT, HANGS)

    def test_a_fault_is_put_back_when_the_run_is_ended(self):
        self.interrupted_at("hanging", signal.SIGTERM, HANGS)

    def test_a_fault_is_put_back_by_ctrl_c_while_it_is_built(self):
        self.put("held", "")
        self.interrupted_at("building", signal.SIGINT, NOTICES)

    def test_a_fault_is_put_back_by_ctrl_c_while_it_is_written(self):
        running = self.begun(NOTICES, runner="""
def write_text(path, text, encoding):
    written(path, text, encoding)
    if "#line 1" in text:
        raise KeyboardInterrupt
written = mutate_run.Path.write_text
mutate_run.Path.write_text = write_text""")
        self.assertIn("interrupted", running.communicate(timeout=60)[0])
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))

    def test_a_fault_that_a_killed_run_has_left_is_gone_at_the_next(self):
        running = self.begun(HANGS)
        self.appears("hanging")
        running.kill()
        running.wait()
        os.killpg(int((self.root / "hanging").read_text(encoding="utf-8")), signal.SIGKILL)
        self.assertNotEqual(SOURCE, self.source.read_text(encoding="utf-8"))
        self.assertIn("1 killed", self.said(NOTICES))
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))

    def test_a_fault_is_put_back_when_its_build_cannot_even_be_started(self):
        running = self.begun(NOTICES, runner="mutate_run.built = mutate_run.build\n"
                             "mutate_run.build = lambda targets: mutate_run.built(targets)"
                             " if targets[0].endswith('/all') else 1 / 0")
        self.assertIn("ZeroDivisionError", running.communicate(timeout=60)[0])
        self.assertEqual(SOURCE, self.source.read_text(encoding="utf-8"))

    def test_what_is_not_committed_is_neither_broken_nor_tried(self):
        self.put("src/room/Quiet.cpp", SOURCE.replace("a + 1", "a + 5"))
        self.assertIn("return a + 1;", self.said(NOTICES))
        self.assertIn("a + 5", (self.root / "src/room/Quiet.cpp").read_text(encoding="utf-8"))

    def test_a_test_that_fails_without_a_fault_ends_the_run(self):
        running = self.begun("#!/bin/sh\necho FAIL of its own\nexit 1\n")
        self.assertIn("check_Quiet does not pass on the code as it is: of its own",
                      running.communicate(timeout=60)[0])
        self.assertEqual(1, running.returncode)

    def test_a_test_may_be_a_script_that_tries_a_program(self):
        self.put("script", '"$1" && echo fine')
        self.assertIn("1 killed", self.said(NOTICES))

    def test_a_script_that_cannot_try_its_program_here_is_left_out(self):
        self.put("script", "echo FAIL no browser; exit 77")
        running = self.begun(NOTICES)
        output = running.communicate(timeout=60)[0]
        self.assertIn("check_Quiet is left out: no browser", output)
        self.assertIn("no tests in tests/room", output)
        self.assertEqual(1, running.returncode)

    def test_a_second_run_tries_nothing_twice_and_tells_the_whole(self):
        self.said(NOTICES_NOTHING)
        output = self.said(NOTICES_NOTHING)
        self.assertNotIn("survived   src", output)
        self.assertIn("== 1 faults: 0 killed, 0 timeout, 1 survived", output)

    def test_survivors_are_tried_again_where_their_line_has_gone_to(self):
        self.said(NOTICES_NOTHING)
        self.put("src/room/Quiet.cpp", "// A line more.\n" + SOURCE)
        self.git("commit", "-q", "-a", "-m", "Comment")
        output = self.said(NOTICES, "--survivors")
        self.assertIn("killed     src/room/Quiet.cpp:4  return a + 1;", output)
        self.put("src/room/Quiet.cpp", SOURCE.replace("a + 1", "a + 4"))
        self.git("commit", "-q", "-a", "-m", "Change")
        output = self.said(NOTICES_NOTHING, "--survivors")
        self.assertIn("gone      src/room/Quiet.cpp:3", output)
        self.assertIn("== 0 faults", output)


if __name__ == "__main__":
    unittest.main()
