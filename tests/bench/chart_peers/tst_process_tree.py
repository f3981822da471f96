#!/usr/bin/python3
"""That processor time and memory are summed over a program and all that it has started, and nothing else."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "bench/chart_peers"))
import process_tree  # noqa: E402


def made(folder, processes):
    """Such a /proc: of each process its parent, user and system ticks, and proportional size in kB."""
    for process, (parent, user, system, size) in processes.items():
        path = Path(folder) / str(process)
        path.mkdir()
        (path / "stat").write_text(f"{process} (a) name) S {parent} 1 1 0 -1 0 0 0 0 0 {user} {system} 99 99 20 0\n")
        (path / "smaps_rollup").write_text(f"0-1 ---p 0 0:0 0 [rollup]\nRss: 9999 kB\nPss: {size} kB\nPss_Anon: 1 kB\n")
    return Path(folder)


class ProcessTree(unittest.TestCase):
    def test_children_of_children_belong_to_it_and_others_do_not(self):
        parents = {1: 0, 10: 1, 11: 10, 12: 11, 20: 1}
        self.assertEqual({10, 11, 12}, process_tree.tree_of(10, parents))

    def test_a_name_with_brackets_and_blanks_hides_no_field(self):
        self.assertEqual((7, 5 + 6), process_tree.stat_fields("3 (a) b (c) S 7 0 0 0 0 0 0 0 0 0 5 6 99 99"))

    def test_processor_time_is_that_of_the_whole_tree_without_what_ended_children_used(self):
        with tempfile.TemporaryDirectory() as folder:
            proc = made(folder, {10: (1, 100, 20, 1), 11: (10, 3, 4, 1), 20: (1, 5000, 0, 1)})
            self.assertEqual(127 / process_tree.TICKS, process_tree.seconds(10, proc))

    def test_memory_is_the_sum_of_proportional_sizes(self):
        with tempfile.TemporaryDirectory() as folder:
            proc = made(folder, {10: (1, 0, 0, 1000), 11: (10, 0, 0, 500), 20: (1, 0, 0, 7000)})
            self.assertAlmostEqual(1.536, process_tree.megabytes(10, proc))

    def test_a_process_that_has_ended_meanwhile_counts_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            proc = made(folder, {10: (1, 0, 0, 1000), 11: (10, 0, 0, 500)})
            (proc / "11" / "smaps_rollup").unlink()
            self.assertAlmostEqual(1.024, process_tree.megabytes(10, proc))

    def test_a_real_child_is_found(self):
        with subprocess.Popen(["sleep", "60"]) as child:
            try:
                self.assertIn(child.pid, process_tree.members(child.pid))
                self.assertGreater(process_tree.megabytes(child.pid), 0)
            finally:
                child.kill()


if __name__ == "__main__":
    unittest.main()
