#!/usr/bin/env python3
"""Whatever the lab is made of is compiled without fused sums, which differ from processor to processor."""

import json
import pathlib
import re
import sys

build = pathlib.Path(sys.argv[1])
rules = (build / "build.ninja").read_text()
program = re.search(r"^build bin/tavoran-lab: .*\n(?:  .*\n)*", rules, re.MULTILINE).group(0)
parts = set(re.findall(r"(\S+)/lib(\w+)\.a", program))
assert len(parts) > 10, parts

seen = {name: 0 for _, name in parts}
wrong = []
for entry in json.loads((build / "compile_commands.json").read_text()):
    output = re.search(r" -o (\S+)", entry["command"]).group(1)
    for folder, name in parts:
        if output.startswith(f"{folder}/CMakeFiles/{name}.dir/"):
            seen[name] += 1
            if "-ffp-contract=off" not in entry["command"]:
                wrong.append(output)
missing = [name for name, count in seen.items() if count == 0]
print(f"{sum(seen.values())} files of {len(parts)} libraries")
if wrong or missing:
    sys.exit("\n".join(["may fuse sums:", *wrong, *missing]))
