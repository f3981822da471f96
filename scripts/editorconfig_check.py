"""Holds files to what .editorconfig says of them: character set, line ends, the end of the file, blanks at
the end of a line and the character that indents. How far a line is indented is left to its language.

Called by scripts/lint: editorconfig_check.py FILE...
"""

import sys
from pathlib import Path

from editorconfig import get_properties

LINE_ENDS = {"lf": b"\n", "crlf": b"\r\n", "cr": b"\r"}
INDENTS = {"space": b"\t", "tab": b" "}  # the character that is out of place


def faults_of_line(line, rules):
    """What is wrong with one line, which still has its end."""
    text = line.rstrip(b"\r\n")
    end = line[len(text):]
    if end and end != LINE_ENDS.get(rules.get("end_of_line"), end):
        yield f"the line does not end with {rules['end_of_line']}"
    if rules.get("trim_trailing_whitespace") == "true" and text != text.rstrip(b" \t"):
        yield "blanks at the end of the line"
    indent = text[:len(text) - len(text.lstrip(b" \t"))]
    if INDENTS.get(rules.get("indent_style"), b"\n") in indent:
        yield f"indented with something else than a {rules['indent_style']}"


def faults_of(content, rules):
    """Number of the line and what is wrong with it, one after the other."""
    if rules.get("charset") == "utf-8":
        if content.startswith(b"\xef\xbb\xbf"):
            yield 1, "begins with a byte order mark"
        try:
            content.decode("utf-8")
        except UnicodeDecodeError as error:
            yield content[:error.start].count(b"\n") + 1, "not utf-8"
    lines = content.splitlines(keepends=True)
    for number, line in enumerate(lines, start=1):
        for fault in faults_of_line(line, rules):
            yield number, fault
    if content and rules.get("insert_final_newline") == "true" and not content.endswith((b"\n", b"\r")):
        yield len(lines), "the last line has no end"


def main(paths):
    clean = True
    for path in paths:
        content = Path(path).read_bytes()
        if b"\0" in content[:8000]:
            continue  # no text
        for number, fault in faults_of(content, get_properties(str(Path(path).resolve()))):
            print(f"{path}:{number}: {fault}")
            clean = False
    sys.exit(0 if clean else 1)


main(sys.argv[1:])
