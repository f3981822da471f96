"""What scripts/faults says of a run: nothing may pass for survived that was not tried."""

import contextlib
import io
import unittest

import told

END = "********* Finished testing of {} *********\n"
TABLE = ("close\tbetween\tduplicate\t120\t30\t20\t9\t8\tpassed; stays one answer behind until its connections are cut\n"
         "news\tbody\tcut\t7\t40\t5\t1\t0\t\n")


def run(table=TABLE, log=END.format("tst_A") + END.format("tst_B"), short=True):
    said = io.StringIO()
    with contextlib.redirect_stdout(said):
        well = told.tell(told.cases_in(table), log, ["tst_A", "tst_B"], 100, short)
    return well, said.getvalue()


class TestTold(unittest.TestCase):
    def test_what_survived_is_counted(self):
        well, said = run()
        self.assertTrue(well)
        self.assertIn("2 cases of 2 kinds of requests survived, 0 not\n", said)
        self.assertIn("in 1 of them the next answer was not that to the next request; 9 tries at most were needed\n", said)
        self.assertIn("in 1 of these a refused change passed for done, 8 times at most\n", said)
        self.assertIn("in 1 of them a connection stayed one answer behind until it ended\n", said)
        self.assertIn("late by 120 ms at most (close, between, duplicate), by more than 100 ms in 1 cases\n", said)
        self.assertIn("held for 40 ms at most in one go (news, body, cut)\n", said)
        self.assertIn("at work for 20 ms at most in one go (close, between, duplicate)\n", said)
        self.assertNotIn("   120 ms", said)
        self.assertIn("   120 ms", run(short=False)[1])

    def test_a_failure_is_told_and_counts(self):
        log = "FAIL!  : tst_A::x(news) Compared values\n   Actual: 0\n   Loc: [x.cpp(1)]\nPASS   : tst_A::y()\n"
        well, said = run(log=log + END.format("tst_A") + END.format("tst_B"))
        self.assertFalse(well)
        self.assertIn("survived, 1 not\n", said)
        self.assertIn("   Loc: [x.cpp(1)]\n", said)
        self.assertNotIn("PASS", said)

    def test_a_program_that_ends_in_the_middle_fails(self):
        well, said = run(log=END.format("tst_A") + "PASS   : tst_B::x()\n")
        self.assertFalse(well)
        self.assertIn("tst_B did not come to its end: cases are missing\n", said)

    def test_no_case_is_a_failure(self):
        well, said = run(table="")
        self.assertFalse(well)
        self.assertIn("0 cases of 0 kinds of requests survived, 0 not\n", said)


if __name__ == "__main__":
    unittest.main()
