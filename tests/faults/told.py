"""Sums up what the fault matrix has written, and says whether all of it survived.

told.py TABLE LOG CLASSES LONGEST [--short]

TABLE has a line a case (FaultTable.h), LOG is what the program of the tests has said, in which each of the CLASSES, with commas
between, must have come to its end. LONGEST are the milliseconds for which the event loop may be held in one go; by how much it
was late is told against them, too. With --short the cases are only counted.
"""

import re
import sys
from collections import namedtuple

Case = namedtuple("Case", "request moment fault late held work tries misled said")


def cases_in(text):
    """The cases of the table; numbers are milliseconds and counts."""
    cases = []
    for line in text.splitlines():
        columns = line.split("\t")
        cases.append(Case(*columns[:3], *(int(column) for column in columns[3:8]), columns[8]))
    return cases


def broken_off(log, classes):
    """The classes that did not come to their end, in their order."""
    ended = set(re.findall(r"^\*+ Finished testing of (\w+) \*+$", log, re.MULTILINE))
    return [name for name in classes if name not in ended]


def failures(log):
    """Each failed case, with the two lines that tell of it."""
    lines = log.splitlines()
    return [lines[i:i + 3] for i, line in enumerate(lines) if line.startswith("FAIL!")]


def longest(cases, column):
    case = max(cases, key=lambda each: getattr(each, column))
    return getattr(case, column), f"{case.request}, {case.moment}, {case.fault}"


def tell(cases, log, classes, longest_ms, short):
    """Prints all of it; true when all cases survived and none is missing."""
    failed = failures(log)
    if not short:
        for case in cases:
            print(f"{case.request:16} {case.moment:11} {case.fault:17} {case.late:5} ms {case.held:5} ms {case.work:5} ms "
                  f"{case.tries:2} {case.misled:2}  {case.said}")
    kinds = len({case.request for case in cases})
    print(f"{len(cases)} cases of {kinds} kinds of requests survived, {len(failed)} not")
    if cases:
        late = sum(case.late > longest_ms for case in cases)
        print(f"in {sum(case.tries > 1 for case in cases)} of them the next answer was not that to the next request; "
              f"{max(case.tries for case in cases)} tries at most were needed")
        print(f"in {sum(case.misled > 0 for case in cases)} of these a refused change passed for done, "
              f"{max(case.misled for case in cases)} times at most")
        print(f"in {sum('stays one answer behind' in case.said for case in cases)} of them a connection stayed one answer "
              "behind until it ended")
        print("the event loop was late by {} ms at most ({}), by more than {} ms in {} cases".format(
            *longest(cases, "late"), longest_ms, late))
        print("it was held for {} ms at most in one go ({})".format(*longest(cases, "held")))
        print("it was at work for {} ms at most in one go ({})".format(*longest(cases, "work")))
    for lines in failed:
        print("\n".join(lines))
    unfinished = broken_off(log, classes)
    for name in unfinished:
        print(f"{name} did not come to its end: cases are missing")
    return bool(cases) and not failed and not unfinished


def main(table, log, classes, longest_ms, *options):
    with open(table, encoding="utf-8") as file:
        cases = cases_in(file.read())
    with open(log, encoding="utf-8", errors="replace") as file:
        said = file.read()
    return 0 if tell(cases, said, classes.split(","), int(longest_ms), "--short" in options) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
