"""What a program and all that it has started take: processor time and memory, from /proc."""

import os
from pathlib import Path

TICKS = os.sysconf("SC_CLK_TCK")


def stat_fields(text):
    """Parent, and ticks of the processor used by a process, from its stat; its name may hold anything."""
    fields = text.rpartition(")")[2].split()
    return int(fields[1]), int(fields[11]) + int(fields[12])


def tree_of(root, parents):
    """A process and its descendants, given the parent of each process."""
    found, waiting = set(), [root]
    while waiting:
        process = waiting.pop()
        found.add(process)
        waiting += [child for child, parent in parents.items() if parent == process and child not in found]
    return found


def pss_kib(text):
    """Proportional set size, from smaps_rollup."""
    return next((int(line.split()[1]) for line in text.splitlines() if line.startswith("Pss:")), 0)


def stats(proc=Path("/proc")):
    """Parent and ticks of each process that there is."""
    found = {}
    for path in proc.glob("[0-9]*"):
        try:
            found[int(path.name)] = stat_fields((path / "stat").read_text(errors="replace"))
        except OSError:
            continue  # it has ended meanwhile
    return found


def members(root, proc=Path("/proc")):
    return tree_of(root, {process: parent for process, (parent, _) in stats(proc).items()})


def seconds(root, proc=Path("/proc")):
    """Processor seconds that the tree has used so far."""
    known = stats(proc)
    tree = tree_of(root, {process: parent for process, (parent, _) in known.items()})
    return sum(known[process][1] for process in tree if process in known) / TICKS


def megabytes(root, proc=Path("/proc")):
    """Proportional set size of the tree in MB."""
    total = 0
    for process in members(root, proc):
        try:
            total += pss_kib((proc / str(process) / "smaps_rollup").read_text())
        except OSError:
            continue
    return total * 1024 / 1e6
