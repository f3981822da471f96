#!/usr/bin/python3
"""Holds what the platform has said to its own checks to the description of the wire. They keep a copy of each
connection, N.sent and N.received, in a folder for each check. The exit code is 0 only when all of it is described
and no check is without copies.
"""

import argparse
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).parent))

from wire_copy import Copy, judge_connection  # noqa: E402
from wire_schema import WireDescription  # noqa: E402


def judge(folder, description):
    """The offences of one check and the number of its connections."""
    offences, sent = [], sorted(folder.glob("*.sent"), key=lambda path: int(path.stem))
    for path in sent:
        received = path.with_suffix(".received")
        offences += [f"{folder.name} {path.stem}: {offence}" for offence in judge_connection(
            Copy(path.read_bytes()), Copy(received.read_bytes()), description, asked=False)]
    if not sent:
        offences.append(f"{folder.name}: it has kept no copy")
    return offences, len(sent)


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--docs", required=True, type=Path, help="the folder of the description")
    arguments.add_argument("--copies", required=True, type=Path, help="the folder of the checks' folders")
    arguments.add_argument("checks", nargs="+", help="the names of the checks")
    options = arguments.parse_args()
    description = WireDescription(options.docs)
    offences = []
    for check in options.checks:
        found, count = judge(options.copies / check, description)
        print(f"{check}: {count} connections")
        offences += found
    for offence in offences:
        print("FAIL", offence[:400])
    print(f"{len(offences)} offences against the description")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
